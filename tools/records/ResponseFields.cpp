// Field tables of the response records: every field of `ResponseData`, then
// the message's own, in record order.
#include "records/ResponseFields.h"

#include "records/CatalogueFields.h"

namespace zuvocli {
namespace zl = velmora::zuvolib;

Json Convert<zl::ResponseData::LogCategoryType>::to(zl::ResponseData::LogCategoryType category) {
    switch (category) {
    case zl::ResponseData::CATEGORY_APPLICATION: return "application";
    case zl::ResponseData::CATEGORY_MOVIELOG: return "movielog";
    case zl::ResponseData::CATEGORY_CRASH: return "crash";
    case zl::ResponseData::CATEGORY_PERFORMANCE: return "performance";
    }
    return static_cast<int>(category);
}

namespace {

typedef zl::ResponseData RD;

/// The common response fields every response record starts with.
template <class R> FieldTable<R> headerFields() {
    return {
        printedField<R>("callerTag", &RD::callerTag),
        printedField<R>("callerFlags", &RD::callerFlags),
        printedField<R>("serverTime", &RD::serverTime),
        printedField<R>("clientTime", &RD::clientTime),
        printedField<R>("protocolVersion", &RD::protocolVersion),
        printedField<R>("method", &RD::method),
        printedField<R>("success", &RD::success),
        printedField<R>("code", &RD::code),
        printedField<R>("actionId", &RD::actionId),
        printedField<R>("userText", &RD::userText),
        printedField<R>("retryControl", &RD::retryControl),
        printedField<R>("minTimeout", &RD::minTimeout),
        printedField<R>("logInterval", &RD::logInterval),
        printedField<R>("lowFrequencyPollInterval", &RD::lowFrequencyPollInterval),
        printedField<R>("mediumFrequencyPollInterval", &RD::mediumFrequencyPollInterval),
        printedField<R>("highFrequencyPollInterval", &RD::highFrequencyPollInterval),
        printedField<R>("highToMediumPollSwitchInterval", &RD::highToMediumPollSwitchInterval),
        printedField<R>("mediumToLowPollSwitchInterval", &RD::mediumToLowPollSwitchInterval),
        printedField<R>("testDriverIpAddr", &RD::testDriverIpAddr),
        printedField<R>("logLevel", &RD::logLevel),
        printedField<R>("logUploads", &RD::logUploads),
        printedField<R>("supportPhone", &RD::supportPhone),
    };
}

/// The common fields followed by `own`.
template <class R> FieldTable<R> withHeader(const FieldTable<R>& own) {
    FieldTable<R> table = headerFields<R>();
    table.insert(table.end(), own.begin(), own.end());
    return table;
}

/// The three provisioning records share their one field.
template <class R> FieldTable<R> provisionFields() {
    return withHeader<R>({printedField<R>("provisionData", &R::provisionData)});
}

/// Registration and renewal records share the client ticket fields.
template <class R> FieldTable<R> ticketFields() {
    return {
        printedField<R>("clientTicket", &R::clientTicket),
        printedField<R>("clientTicketExpiration", &R::clientTicketExpiration),
        printedField<R>("rsData", &R::rsData),
    };
}

} // namespace

ZUVO_FIELD_TABLE(zl::ResponseData, headerFields<zl::ResponseData>())

ZUVO_FIELD_TABLE(
    zl::PreregResponseData,
    withHeader<zl::PreregResponseData>({
        printedField<zl::PreregResponseData>("regCode", &zl::PreregResponseData::regCode),
        printedField<zl::PreregResponseData>("retryInterval",
                                             &zl::PreregResponseData::retryInterval),
        printedField<zl::PreregResponseData>("totalTime", &zl::PreregResponseData::totalTime),
    }))

ZUVO_FIELD_TABLE(zl::RegResponseData, [] {
    FieldTable<zl::RegResponseData> own = ticketFields<zl::RegResponseData>();
    own.push_back(printedField<zl::RegResponseData>("userId", &zl::RegResponseData::userId));
    own.push_back(printedField<zl::RegResponseData>("userDescription",
                                                    &zl::RegResponseData::userDescription));
    return withHeader(own);
}())

ZUVO_FIELD_TABLE(zl::AuthrenewResponseData, withHeader(ticketFields<zl::AuthrenewResponseData>()))

ZUVO_FIELD_TABLE(zl::X509ProResponseData, provisionFields<zl::X509ProResponseData>())
ZUVO_FIELD_TABLE(zl::ECCLinkProResponseData, provisionFields<zl::ECCLinkProResponseData>())
ZUVO_FIELD_TABLE(zl::NPTicketProResponseData, provisionFields<zl::NPTicketProResponseData>())

ZUVO_FIELD_TABLE(zl::WebApiProxyResponseData,
                 withHeader<zl::WebApiProxyResponseData>({
                     printedField<zl::WebApiProxyResponseData>(
                         "httpBody", &zl::WebApiProxyResponseData::httpBody),
                 }))

ZUVO_FIELD_TABLE(
    zl::AuthResponseData,
    withHeader<zl::AuthResponseData>({
        printedField<zl::AuthResponseData>("movieId", &zl::AuthResponseData::movieId),
        printedField<zl::AuthResponseData>("movieTicket", &zl::AuthResponseData::movieTicket),
        printedField<zl::AuthResponseData>("movieTicketExpiration",
                                           &zl::AuthResponseData::movieTicketExpiration),
        printedField<zl::AuthResponseData>("trickPlays", &zl::AuthResponseData::trickPlays),
        printedField<zl::AuthResponseData>("videoDownloadables",
                                           &zl::AuthResponseData::videoDownloadables),
        printedField<zl::AuthResponseData>("audioTracks", &zl::AuthResponseData::audioTracks),
        printedField<zl::AuthResponseData>("timedTextTracks",
                                           &zl::AuthResponseData::timedTextTracks),
        printedField<zl::AuthResponseData>("cdns", &zl::AuthResponseData::cdns),
        printedField<zl::AuthResponseData>("streamingParams",
                                           &zl::AuthResponseData::streamingParams),
    }))

#undef ZUVO_FIELD_TABLE

} // namespace zuvocli
