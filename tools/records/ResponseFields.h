// Field tables of the response records, for printing.
#ifndef ZUVO_TOOL_RESPONSEFIELDS_H
#define ZUVO_TOOL_RESPONSEFIELDS_H

#include "records/JsonFields.h"

#include <zuvolib/zuvolib.h>

namespace zuvocli {

/// Log upload categories print as their element names ("crash").
template <> struct Convert<velmora::zuvolib::ResponseData::LogCategoryType> {
    static Json to(velmora::zuvolib::ResponseData::LogCategoryType category);
};

template <> const FieldTable<velmora::zuvolib::ResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::PreregResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::RegResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::AuthrenewResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::X509ProResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::ECCLinkProResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::NPTicketProResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::WebApiProxyResponseData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::AuthResponseData>& fieldTable();

} // namespace zuvocli

#endif
