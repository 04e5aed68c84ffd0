// Turns request records into request documents.
#ifndef ZUVOLIB_REQUEST_REQUESTBUILDER_H
#define ZUVOLIB_REQUEST_REQUESTBUILDER_H

#include "zuvolib/export.h"
#include "zuvolib/request/RequestData.h"
#include "zuvolib/xml/TagBuilder.h"

#include <krel/KrelContext.h>

#include <string>
#include <tr1/memory>

namespace velmora {
namespace zuvolib {

/// Stateless builder of request documents. Every document is the XML
/// declaration, a "zuvo:request" root declaring the protocol namespace, the
/// "zuvo:header" (software and UI versions and the timing payload) and one
/// message element.
///
/// Payloads are encrypted with the cipher context when its
/// `encryptionEnabled` is non-zero, and Base64-encoded otherwise.
///
/// Text is written without escaping: callers hand in XML-safe text.
///
/// Every `buildRequest` throws `ZuvoExceptionNoCipherContext` for an empty
/// cipher context before anything is built, and passes on whatever the
/// context's `encrypt` throws. The returned string belongs to the caller.
class ZUVO_API RequestBuilder {
public:
    typedef std::tr1::shared_ptr<krel::KrelContext> CipherContext;

    /// The ping document.
    static std::string buildRequest(const PingRequestData& data, const CipherContext& context);

    /// The pre-registration document.
    static std::string buildRequest(const PreregRequestData& data, const CipherContext& context);

    /// Adds the namespace attribute and the header to a builder made with
    /// root "zuvo:request"; leaves the header's "zuvo:payload" current.
    static void buildHeader(TagBuilder& builder, const RequestData& data,
                            const CipherContext& context);

    /// The header payload text for the two times.
    static std::string makeHeaderPayload(unsigned int serverTime, unsigned int clientTime,
                                         const CipherContext& context);

    /// The builder's document as payload text: exactly the bytes returned by
    /// the context's `encrypt` when encryption is enabled, else its Base64 text.
    static std::string encryptEncode(TagBuilder& builder, const CipherContext& context);

    /// Standard Base64 text of `data`.
    static std::string base64encode(const std::string& data);

    /// The XML declaration line followed by the builder's document.
    static std::string getXml(TagBuilder& builder);
};

} // namespace zuvolib
} // namespace velmora

#endif
