// Web API enrolment (OAuth token and key as payload) and the web API proxy
// (one address in clear text).

#include "request/Envelope.h"

namespace velmora {
namespace zuvolib {

std::string RequestBuilder::buildRequest(const ActivateWebApiRequestData& data,
                                         const CipherContext& context) {
    TagBuilder builder = beginRequest(data, context, "zuvo:webapienroll");
    builder.addChild("zuvo:payload");
    builder.addValue(makeActivateWebApiPayload(data, context));
    return getXml(builder);
}

std::string RequestBuilder::makeActivateWebApiPayload(const ActivateWebApiRequestData& data,
                                                      const CipherContext& context) {
    TagBuilder inner("zuvo:enrolldata");
    inner.addChild("zuvo:oauthrequesttoken");
    inner.addValue(data.oauthRequestToken);
    inner.addSibling("zuvo:oauthconsumerkey");
    inner.addValue(data.oauthConsumerKey);
    return encryptEncode(inner, context);
}

std::string RequestBuilder::buildRequest(const WebApiProxyRequestData& data,
                                         const CipherContext& context) {
    TagBuilder builder = beginRequest(data, context, "zuvo:webapiproxy");
    builder.addChild("zuvo:url");
    builder.addValue(data.url);
    return getXml(builder);
}

} // namespace zuvolib
} // namespace velmora
