// Turns request records into request documents.
#ifndef ZUVOLIB_REQUEST_REQUESTBUILDER_H
#define ZUVOLIB_REQUEST_REQUESTBUILDER_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/export.h"
#include "zuvolib/request/AuthRequestData.h"
#include "zuvolib/request/ProvisioningRequestData.h"
#include "zuvolib/request/RegistrationRequestData.h"
#include "zuvolib/request/ReportingRequestData.h"
#include "zuvolib/request/RequestData.h"
#include "zuvolib/request/WebApiRequestData.h"
#include "zuvolib/xml/TagBuilder.h"

#include <krel/KrelContext.h>

#include <string>

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

    /// The authorization document. Its body is clear text: the context only
    /// serves the header.
    static std::string buildRequest(const AuthRequestData& data, const CipherContext& context);

    /// The registration document; `rc` goes into its payload.
    static std::string buildRequest(const RegRequestData& data, const CipherContext& context,
                                    const std::string& rc);

    /// The token (identity cookie) registration document; `rc` goes into its payload.
    static std::string buildRequest(const TokenRegisterRequestData& data,
                                    const CipherContext& context, const std::string& rc);

    /// The authentication renewal document; `rc` goes into its payload.
    /// Throws `std::invalid_argument` for a renewal type other than 0, 1 or 3.
    static std::string buildRequest(const AuthrenewRequestData& data, const CipherContext& context,
                                    const std::string& rc);

    /// The play data document: the ticket in clear, the report as payload.
    static std::string buildRequest(const PlaydataRequestData& data, const CipherContext& context);

    /// The log chunk document; the chunk is sent as Base64, never encrypted.
    static std::string buildRequest(const LogblobRequestData& data, const CipherContext& context);

    /// The X.509 provisioning document, clear text carrying `rc`.
    static std::string buildRequest(const X509ProRequestData& data, const CipherContext& context,
                                    const std::string& rc);

    /// The NP ticket provisioning document, clear text carrying `rc`.
    static std::string buildRequest(const NPTicketProRequestData& data,
                                    const CipherContext& context, const std::string& rc);

    /// The ECC link provisioning document, clear text carrying `rc` and the link token.
    static std::string buildRequest(const ECCLinkProRequestData& data, const CipherContext& context,
                                    const std::string& rc);

    /// The web API enrolment document; token and key travel as payload.
    static std::string buildRequest(const ActivateWebApiRequestData& data,
                                    const CipherContext& context);

    /// The web API proxy document, clear text.
    static std::string buildRequest(const WebApiProxyRequestData& data,
                                    const CipherContext& context);

    /// Payload text of a registration: "zuvo:registrationdata" holding `rc`.
    static std::string makeRegdataPayload(const RegRequestData& data, const std::string& rc,
                                          const CipherContext& context);

    /// Payload text of a token registration: the cookies, then `rc`.
    static std::string makeTokenRegPayload(const TokenRegisterRequestData& data,
                                           const std::string& rc, const CipherContext& context);

    /// Payload text of a renewal: `rc` and the type's own field. Throws
    /// `std::invalid_argument` for a renewal type other than 0, 1 or 3.
    static std::string makeAuthrenewPayload(const AuthrenewRequestData& data, const std::string& rc,
                                            const CipherContext& context);

    /// Payload text of a play data report (a "zuvo:playdata" document).
    static std::string makePlaydataPayload(const PlaydataRequestData& data,
                                           const CipherContext& context);

    /// Appends the play data report's elements under the builder's current
    /// element, which is the report's root.
    static void makePlaydataPayloadBody(const PlaydataRequestData& data, TagBuilder& builder);

    /// Payload text of a web API enrolment: the request token, then the consumer key.
    static std::string makeActivateWebApiPayload(const ActivateWebApiRequestData& data,
                                                 const CipherContext& context);

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
