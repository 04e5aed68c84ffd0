// Field tables of the request records.
#ifndef ZUVO_TOOL_REQUESTFIELDS_H
#define ZUVO_TOOL_REQUESTFIELDS_H

#include "JsonFields.h"

#include <zuvolib/zuvolib.h>

namespace zuvocli {

template <> const FieldTable<velmora::zuvolib::PingRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::PreregRequestData>& fieldTable();

} // namespace zuvocli

#endif
