// The record list: the only thing written here is which C++ record has
// which name; the fields come from the tool's tables.
#include "Layouts.h"

#include "records/CatalogueFields.h"
#include "records/RequestFields.h"
#include "records/ResponseFields.h"

namespace zuvopy {

namespace {

namespace zl = velmora::zuvolib;

template <class R> RecordLayout layout(const char* name, bool response) {
    RecordLayout l;
    l.name = name;
    l.response = response;
    for (const zuvocli::Field<R>& f : zuvocli::fieldTable<R>())
        l.fields.push_back(f.name);
    l.defaults = zuvocli::RecordConvert<R>::to(R());
    return l;
}

template <class R> RecordLayout request(const char* name) {
    return layout<R>(name, false);
}

template <class R> RecordLayout response(const char* name) {
    return layout<R>(name, true);
}

} // namespace

const std::vector<RecordLayout>& recordLayouts() {
    static const std::vector<RecordLayout> layouts = {
        request<zl::PingRequestData>("PingRequestData"),
        request<zl::PreregRequestData>("PreregRequestData"),
        request<zl::AuthRequestData>("AuthRequestData"),
        request<zl::RegRequestData>("RegRequestData"),
        request<zl::TokenRegisterRequestData>("TokenRegisterRequestData"),
        request<zl::AuthrenewRequestData>("AuthrenewRequestData"),
        request<zl::PlaydataRequestData>("PlaydataRequestData"),
        request<zl::LogblobRequestData>("LogblobRequestData"),
        request<zl::X509ProRequestData>("X509ProRequestData"),
        request<zl::ECCLinkProRequestData>("ECCLinkProRequestData"),
        request<zl::NPTicketProRequestData>("NPTicketProRequestData"),
        request<zl::ActivateWebApiRequestData>("ActivateWebApiRequestData"),
        request<zl::WebApiProxyRequestData>("WebApiProxyRequestData"),
        request<zl::IdCookie>("IdCookie"),
        request<zl::StreamPlayTime>("StreamPlayTime"),
        response<zl::ResponseData>("ResponseData"),
        response<zl::PreregResponseData>("PreregResponseData"),
        response<zl::RegResponseData>("RegResponseData"),
        response<zl::AuthrenewResponseData>("AuthrenewResponseData"),
        response<zl::X509ProResponseData>("X509ProResponseData"),
        response<zl::ECCLinkProResponseData>("ECCLinkProResponseData"),
        response<zl::NPTicketProResponseData>("NPTicketProResponseData"),
        response<zl::WebApiProxyResponseData>("WebApiProxyResponseData"),
        response<zl::AuthResponseData>("AuthResponseData"),
        response<zl::LanguageData>("LanguageData"),
        response<zl::UrlData>("UrlData"),
        response<zl::CdnData>("CdnData"),
        response<zl::StreamingParamData>("StreamingParamData"),
        response<zl::VideoDownloadableData>("VideoDownloadableData"),
        response<zl::AudioDownloadableData>("AudioDownloadableData"),
        response<zl::TimedTextDownloadableData>("TimedTextDownloadableData"),
        response<zl::AudioTrackData>("AudioTrackData"),
        response<zl::TimedTextTrackData>("TimedTextTrackData"),
        response<zl::TrickPlayData>("TrickPlayData"),
    };
    return layouts;
}

} // namespace zuvopy
