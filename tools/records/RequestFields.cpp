// Field tables of the request records: the JSON keys are the records' field
// names, in record order.
#include "records/RequestFields.h"

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
template <class R> FieldTable<R> withHeader(const FieldTable<R>& own) {
    FieldTable<R> table = headerFields<R>();
    table.insert(table.end(), own.begin(), own.end());
    return table;
}

} // namespace

ZUVO_FIELD_TABLE(zl::IdCookie, {
                                   field<zl::IdCookie>("name", &zl::IdCookie::name),
                                   field<zl::IdCookie>("value", &zl::IdCookie::value),
                               })

ZUVO_FIELD_TABLE(zl::StreamPlayTime,
                 {
                     field<zl::StreamPlayTime>("downloadableId",
                                               &zl::StreamPlayTime::downloadableId),
                     field<zl::StreamPlayTime>("playTime", &zl::StreamPlayTime::playTime),
                 })

ZUVO_FIELD_TABLE(zl::PingRequestData, headerFields<zl::PingRequestData>())
ZUVO_FIELD_TABLE(zl::PreregRequestData, headerFields<zl::PreregRequestData>())

ZUVO_FIELD_TABLE(
    zl::AuthRequestData,
    withHeader<zl::AuthRequestData>({
        field<zl::AuthRequestData>("movieId", &zl::AuthRequestData::movieId),
        field<zl::AuthRequestData>("trackId", &zl::AuthRequestData::trackId),
        field<zl::AuthRequestData>("videoProfiles", &zl::AuthRequestData::videoProfiles),
        field<zl::AuthRequestData>("audioProfiles", &zl::AuthRequestData::audioProfiles),
        field<zl::AuthRequestData>("timedTextProfiles", &zl::AuthRequestData::timedTextProfiles),
    }))

ZUVO_FIELD_TABLE(zl::RegRequestData,
                 withHeader<zl::RegRequestData>({
                     field<zl::RegRequestData>("regType", &zl::RegRequestData::regType),
                     field<zl::RegRequestData>("regCode", &zl::RegRequestData::regCode),
                 }))

ZUVO_FIELD_TABLE(zl::TokenRegisterRequestData,
                 withHeader<zl::TokenRegisterRequestData>({
                     field<zl::TokenRegisterRequestData>("idCookies",
                                                         &zl::TokenRegisterRequestData::idCookies),
                 }))

ZUVO_FIELD_TABLE(
    zl::AuthrenewRequestData,
    withHeader<zl::AuthrenewRequestData>({
        field<zl::AuthrenewRequestData>("renewalType", &zl::AuthrenewRequestData::renewalType),
        field<zl::AuthrenewRequestData>("shopperId", &zl::AuthrenewRequestData::shopperId),
        field<zl::AuthrenewRequestData>("nasToken", &zl::AuthrenewRequestData::nasToken),
    }))

ZUVO_FIELD_TABLE(
    zl::PlaydataRequestData,
    withHeader<zl::PlaydataRequestData>({
        field<zl::PlaydataRequestData>("lticket", &zl::PlaydataRequestData::lticket),
        field<zl::PlaydataRequestData>("movieId", &zl::PlaydataRequestData::movieId),
        field<zl::PlaydataRequestData>("totalPlaybackTime",
                                       &zl::PlaydataRequestData::totalPlaybackTime),
        field<zl::PlaydataRequestData>("laMovieTime", &zl::PlaydataRequestData::laMovieTime),
        field<zl::PlaydataRequestData>("eventMovieTime", &zl::PlaydataRequestData::eventMovieTime),
        field<zl::PlaydataRequestData>("videoStreamPlayTimes",
                                       &zl::PlaydataRequestData::videoStreamPlayTimes),
        field<zl::PlaydataRequestData>("audioStreamPlayTimes",
                                       &zl::PlaydataRequestData::audioStreamPlayTimes),
        field<zl::PlaydataRequestData>("timedTextStreamPlayTimes",
                                       &zl::PlaydataRequestData::timedTextStreamPlayTimes),
    }))

// The log chunk is a std::string of raw bytes: Base64 text in JSON.
ZUVO_FIELD_TABLE(
    zl::LogblobRequestData,
    withHeader<zl::LogblobRequestData>({
        field<zl::LogblobRequestData>("sequenceNumber", &zl::LogblobRequestData::sequenceNumber),
        byteStringField<zl::LogblobRequestData>("logData", &zl::LogblobRequestData::logData),
    }))

ZUVO_FIELD_TABLE(zl::X509ProRequestData, headerFields<zl::X509ProRequestData>())
ZUVO_FIELD_TABLE(zl::NPTicketProRequestData, headerFields<zl::NPTicketProRequestData>())
ZUVO_FIELD_TABLE(zl::ECCLinkProRequestData,
                 withHeader<zl::ECCLinkProRequestData>({
                     field<zl::ECCLinkProRequestData>("nasToken",
                                                      &zl::ECCLinkProRequestData::nasToken),
                 }))

ZUVO_FIELD_TABLE(
    zl::ActivateWebApiRequestData,
    withHeader<zl::ActivateWebApiRequestData>({
        field<zl::ActivateWebApiRequestData>("oauthRequestToken",
                                             &zl::ActivateWebApiRequestData::oauthRequestToken),
        field<zl::ActivateWebApiRequestData>("oauthConsumerKey",
                                             &zl::ActivateWebApiRequestData::oauthConsumerKey),
    }))

ZUVO_FIELD_TABLE(zl::WebApiProxyRequestData,
                 withHeader<zl::WebApiProxyRequestData>({
                     field<zl::WebApiProxyRequestData>("url", &zl::WebApiProxyRequestData::url),
                 }))

#undef ZUVO_FIELD_TABLE

} // namespace zuvocli
