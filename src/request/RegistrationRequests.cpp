// Registration by rendezvous code or subscriber identifier, registration by
// identity cookies, and authentication renewal. Each carries an inner
// document with the caller's `rc` as its "zuvo:payload" text.

#include "request/Envelope.h"
#include "request/RcElement.h"

#include <stdexcept>

namespace velmora {
namespace zuvolib {

namespace {

// The renewal types: root of the inner document, and the element written
// after "zuvo:rc" with the field that fills it (none for the plain renewal).
struct RenewalForm {
    int type;
    const char* root;
    const char* extraElement;
    std::string AuthrenewRequestData::*extraField;
};

const RenewalForm RENEWAL_FORMS[] = {
    {AuthrenewRequestData::RENEWAL_STB, "zuvo:stbrenew", nullptr, nullptr},
    {AuthrenewRequestData::RENEWAL_SHOPPER_ID, "zuvo:shopperidrenew", "zuvo:shopperid",
     &AuthrenewRequestData::shopperId},
    {AuthrenewRequestData::RENEWAL_LINK, "zuvo:linkrenew", "zuvo:nastoken",
     &AuthrenewRequestData::nasToken},
};

const RenewalForm& renewalForm(int type) {
    for (const RenewalForm& form : RENEWAL_FORMS) {
        if (form.type == type)
            return form;
    }
    throw std::invalid_argument("authentication renewal type " + std::to_string(type) +
                                " is not one of 0, 1, 3");
}

} // namespace

std::string RequestBuilder::buildRequest(const RegRequestData& data, const CipherContext& context,
                                         const std::string& rc) {
    TagBuilder builder = beginRequest(data, context, "zuvo:register");
    if (data.regType == RegRequestData::REG_RENDEZVOUS) {
        builder.addChild("zuvo:rendezvousreg");
        builder.addChild("zuvo:regcode");
        builder.addValue(data.regCode);
        builder.addSibling("zuvo:payload");
    } else {
        builder.addChild("zuvo:shopperidreg");
        builder.addChild("zuvo:payload");
    }
    builder.addValue(makeRegdataPayload(data, rc, context));
    return getXml(builder);
}

std::string RequestBuilder::makeRegdataPayload(const RegRequestData& /*data*/,
                                               const std::string& rc,
                                               const CipherContext& context) {
    TagBuilder inner("zuvo:registrationdata");
    inner.addChild("zuvo:rc");
    fillRc(inner, rc);
    return encryptEncode(inner, context);
}

std::string RequestBuilder::buildRequest(const TokenRegisterRequestData& data,
                                         const CipherContext& context, const std::string& rc) {
    TagBuilder builder = beginRequest(data, context, "zuvo:register");
    builder.addChild("zuvo:idcookiereg");
    builder.addChild("zuvo:payload");
    builder.addValue(makeTokenRegPayload(data, rc, context));
    return getXml(builder);
}

std::string RequestBuilder::makeTokenRegPayload(const TokenRegisterRequestData& data,
                                                const std::string& rc,
                                                const CipherContext& context) {
    TagBuilder inner("zuvo:idcookieregdata");
    inner.addChild("zuvo:idcookies");
    inner.current->children.reserve(data.idCookies.size()); // room for the entries at once
    for (const IdCookie& cookie : data.idCookies) {
        inner.addToParent("zuvo:idcookies", "zuvo:idcookie");
        inner.addChild("zuvo:name");
        inner.addValue(cookie.name);
        inner.addToParent("zuvo:idcookie", "zuvo:value");
        inner.addValue(cookie.value);
    }
    inner.addToParent("zuvo:idcookieregdata", "zuvo:rc");
    fillRc(inner, rc);
    return encryptEncode(inner, context);
}

std::string RequestBuilder::buildRequest(const AuthrenewRequestData& data,
                                         const CipherContext& context, const std::string& rc) {
    // Refuse an unknown type before the header's payload is encrypted.
    requireContext(context);
    renewalForm(data.renewalType);
    TagBuilder builder = beginRequest(data, context, "zuvo:authenticationrenewal");
    builder.addChild("zuvo:payload");
    builder.addValue(makeAuthrenewPayload(data, rc, context));
    return getXml(builder);
}

std::string RequestBuilder::makeAuthrenewPayload(const AuthrenewRequestData& data,
                                                 const std::string& rc,
                                                 const CipherContext& context) {
    const RenewalForm& form = renewalForm(data.renewalType);
    TagBuilder inner(form.root);
    inner.addToParent(form.root, "zuvo:rc");
    fillRc(inner, rc);
    if (form.extraElement) {
        inner.addSibling(form.extraElement);
        inner.addValue(data.*form.extraField);
    }
    return encryptEncode(inner, context);
}

} // namespace zuvolib
} // namespace velmora
