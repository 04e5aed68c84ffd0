// Field tables of the request records: the JSON keys are the records' field
// names, in record order.
#include "RequestFields.h"

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

/// The header fields every request record starts with.
template <class R> FieldTable<R> headerFields() {
    return {
        field<R>("softwareVersion", &zl::RequestData::softwareVersion),
        field<R>("uiVersion", &zl::RequestData::uiVersion),
        field<R>("serverTime", &zl::RequestData::serverTime),
        field<R>("clientTime", &zl::RequestData::clientTime),
    };
}

/// The header fields followed by `own`.
template <class R> FieldTable<R> withHeader(FieldTable<R> own) {
    FieldTable<R> table = headerFields<R>();
    table.insert(table.end(), own.begin(), own.end());
    return table;
}

} // namespace

template <> const FieldTable<zl::PingRequestData>& fieldTable() {
    static const FieldTable<zl::PingRequestData> table = headerFields<zl::PingRequestData>();
    return table;
}

template <> const FieldTable<zl::PreregRequestData>& fieldTable() {
    static const FieldTable<zl::PreregRequestData> table = headerFields<zl::PreregRequestData>();
    return table;
}

} // namespace zuvocli
