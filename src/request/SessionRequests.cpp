// Messages made of the envelope alone: ping and pre-registration.

#include "request/Envelope.h"

namespace velmora {
namespace zuvolib {

std::string RequestBuilder::buildRequest(const PingRequestData& data,
                                         const CipherContext& context) {
    TagBuilder builder = beginRequest(data, context, "zuvo:ping");
    return getXml(builder);
}

std::string RequestBuilder::buildRequest(const PreregRequestData& data,
                                         const CipherContext& context) {
    TagBuilder builder = beginRequest(data, context, "zuvo:preregister");
    return getXml(builder);
}

} // namespace zuvolib
} // namespace velmora
