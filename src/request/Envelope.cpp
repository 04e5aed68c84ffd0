// The request envelope: root, namespace, header with its timing payload, and
// the payload encoding shared by every message.

#include "request/Envelope.h"

#include "zuvolib/ZuvoExceptionNoCipherContext.h"
#include "zuvolib/request/Protocol.h"

#include <QRXClient/Base64.h>
#include <QRXClient/lexical_cast.h>

#include <vector>

namespace velmora {
namespace zuvolib {

using Velmora::QRXClient::lexical_cast;

void requireContext(const RequestBuilder::CipherContext& context) {
    if (!context)
        throw ZuvoExceptionNoCipherContext();
}

TagBuilder beginRequest(const RequestData& data, const RequestBuilder::CipherContext& context,
                        const char* messageElement) {
    requireContext(context);
    TagBuilder builder("zuvo:request");
    RequestBuilder::buildHeader(builder, data, context);
    builder.addToParent("zuvo:request", messageElement);
    return builder;
}

void RequestBuilder::buildHeader(TagBuilder& builder, const RequestData& data,
                                 const CipherContext& context) {
    requireContext(context);
    builder.addAttribute("xmlns:zuvo", namespaceBase + PROTOCOL_VERSION);
    builder.addChild("zuvo:header");
    builder.addToParent("zuvo:header", "zuvo:softwareversion");
    builder.addValue(data.softwareVersion);
    builder.addSibling("zuvo:uiversion");
    builder.addValue(data.uiVersion);
    builder.addSibling("zuvo:payload");
    // The attribute tells the server which branch of encryptEncode made the payload.
    builder.addAttribute("encrypted", context->encryptionEnabled ? "true" : "false");
    builder.addValue(makeHeaderPayload(data.serverTime, data.clientTime, context));
}

std::string RequestBuilder::makeHeaderPayload(unsigned int serverTime, unsigned int clientTime,
                                              const CipherContext& context) {
    TagBuilder inner("zuvo:clientservertimes");
    inner.addChild("zuvo:servertime");
    inner.addValue(lexical_cast<std::string>(serverTime));
    inner.addSibling("zuvo:clienttime");
    inner.addValue(lexical_cast<std::string>(clientTime));
    return encryptEncode(inner, context);
}

std::string RequestBuilder::encryptEncode(TagBuilder& builder, const CipherContext& context) {
    requireContext(context);
    const std::string xml = builder.toXml();
    if (!context->encryptionEnabled)
        return base64encode(xml);
    // The context's output is used verbatim; it is text safe inside an element.
    const std::vector<unsigned char> sealed =
        context->encrypt(std::vector<unsigned char>(xml.begin(), xml.end()));
    return std::string(sealed.begin(), sealed.end());
}

std::string RequestBuilder::base64encode(const std::string& data) {
    return Velmora::QRXClient::Base64::encode(data);
}

std::string RequestBuilder::getXml(TagBuilder& builder) {
    static const std::string XML_DECLARATION = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    std::string out;
    // One allocation in the common case: the builder's estimate covers the tree.
    out.reserve(XML_DECLARATION.size() + builder.bufSize);
    out += XML_DECLARATION;
    builder.appendContentsTo(out);
    return out;
}

} // namespace zuvolib
} // namespace velmora
