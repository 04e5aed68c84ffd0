// Device credential provisioning: X.509, NP ticket and ECC link. The three
// messages share one shape and differ only by the rows of FORMS; their body
// is clear text.

#include "request/Envelope.h"
#include "request/RcElement.h"

namespace velmora {
namespace zuvolib {

namespace {

struct ProvisioningForm {
    const char* messageElement;
    const char* dataElement;
    bool withNasToken; ///< "zuvo:nastoken" follows "zuvo:rc"
};

enum ProvisioningKind { X509, NP_TICKET, ECC_LINK };

// Indexed by ProvisioningKind.
const ProvisioningForm FORMS[] = {
    {"zuvo:x509provision", "zuvo:provisiondata", false},
    {"zuvo:npticketprovision", "zuvo:provisiondata", false},
    {"zuvo:ecclinkprovision", "zuvo:ecclinkprovisiondata", true},
};

std::string buildProvisioning(const ProvisioningForm& form, const RequestData& data,
                              const RequestBuilder::CipherContext& context, const std::string& rc,
                              const std::string& nasToken) {
    TagBuilder builder = beginRequest(data, context, form.messageElement);
    builder.addChild(form.dataElement);
    builder.addChild("zuvo:rc");
    fillRc(builder, rc);
    if (form.withNasToken) {
        builder.addSibling("zuvo:nastoken");
        builder.addValue(nasToken);
    }
    return RequestBuilder::getXml(builder);
}

} // namespace

std::string RequestBuilder::buildRequest(const X509ProRequestData& data,
                                         const CipherContext& context, const std::string& rc) {
    return buildProvisioning(FORMS[X509], data, context, rc, std::string());
}

std::string RequestBuilder::buildRequest(const NPTicketProRequestData& data,
                                         const CipherContext& context, const std::string& rc) {
    return buildProvisioning(FORMS[NP_TICKET], data, context, rc, std::string());
}

std::string RequestBuilder::buildRequest(const ECCLinkProRequestData& data,
                                         const CipherContext& context, const std::string& rc) {
    return buildProvisioning(FORMS[ECC_LINK], data, context, rc, data.nasToken);
}

} // namespace zuvolib
} // namespace velmora
