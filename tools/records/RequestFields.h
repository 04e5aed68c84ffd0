// Field tables of the request records.
#ifndef ZUVO_TOOL_REQUESTFIELDS_H
#define ZUVO_TOOL_REQUESTFIELDS_H

#include "records/JsonFields.h"

#include <zuvolib/zuvolib.h>

namespace zuvocli {

// Records inside lists of request records.
template <> const FieldTable<velmora::zuvolib::IdCookie>& fieldTable();
template <> const FieldTable<velmora::zuvolib::StreamPlayTime>& fieldTable();
template <>
struct Convert<velmora::zuvolib::IdCookie> : RecordConvert<velmora::zuvolib::IdCookie> {};
template <>
struct Convert<velmora::zuvolib::StreamPlayTime> : RecordConvert<velmora::zuvolib::StreamPlayTime> {
};

// One table per message record.
template <> const FieldTable<velmora::zuvolib::PingRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::PreregRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::AuthRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::RegRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::TokenRegisterRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::AuthrenewRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::PlaydataRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::LogblobRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::X509ProRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::ECCLinkProRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::NPTicketProRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::ActivateWebApiRequestData>& fieldTable();
template <> const FieldTable<velmora::zuvolib::WebApiProxyRequestData>& fieldTable();

} // namespace zuvocli

#endif
