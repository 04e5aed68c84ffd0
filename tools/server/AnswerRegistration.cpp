// The scripted server's answers to registration (by rendezvous code, by
// subscriber identifier, by identity cookies) and to authentication
// renewal: a client ticket and the registration secret, sealed in the
// payload. The rc a device registers with identifies it afterwards.
#include "server/AnswerWriting.h"

#include "capture/XmlTree.h"

#include <QRXClient/Base64.h>

#include <algorithm>
#include <iterator>

namespace zuvocli {
namespace {

/// The version 1 "zuvo:rc" of an inner registration or renewal document.
const std::string& rcOf(const XmlElement& data) {
    const XmlElement& rc = data.child("zuvo:rc");
    if (rc.attribute("version") != "1" || rc.text.empty())
        refuse("<" + data.name + "> lacks a version 1 <zuvo:rc>");
    return rc.text;
}

/// The inner document each way of registering carries.
struct RegistrationKind {
    const char* element; ///< child of "zuvo:register"
    const char* inner;   ///< root of its payload
};
const RegistrationKind REGISTRATION_KINDS[] = {
    {"zuvo:rendezvousreg", "zuvo:registrationdata"},
    {"zuvo:shopperidreg", "zuvo:registrationdata"},
    {"zuvo:idcookiereg", "zuvo:idcookieregdata"},
};

/// The inner roots of authentication renewal and the element each adds.
const char* const RENEWALS[][2] = {
    {"zuvo:stbrenew", nullptr},
    {"zuvo:shopperidrenew", "zuvo:shopperid"},
    {"zuvo:linkrenew", "zuvo:nastoken"},
};

} // namespace

void ScriptedServer::checkRc(const std::string& text) const {
    if (rc.empty() || text != rc)
        refuse("rc '" + text + "' was not registered with this server");
}

std::string ScriptedServer::issueClientTicket(const std::string& rcText) {
    rc = rcText;
    const std::string ticket = "CT-" + std::to_string(serverTime) + "-" + rc;
    return sealPayload("<zuvo:cticket expiration=\"" + std::to_string(serverTime + 2592000u) +
                       "\">" + Velmora::QRXClient::Base64::encode(ticket) +
                       "</zuvo:cticket><zuvo:rs>" + Velmora::QRXClient::Base64::encode("rs:" + rc) +
                       "</zuvo:rs>");
}

void ScriptedServer::answerRegister(const OpenedRequest& request, Result& result) {
    const XmlElement& message = request.body();
    const RegistrationKind* kind = nullptr;
    for (const RegistrationKind& k : REGISTRATION_KINDS) {
        if (message.find(k.element))
            kind = &k;
    }
    if (!kind)
        refuse("<zuvo:register> holds none of <zuvo:rendezvousreg>, <zuvo:shopperidreg>, "
               "<zuvo:idcookiereg>");
    if (kind == &REGISTRATION_KINDS[0]) {
        const std::string& code = message.child(kind->element).child("zuvo:regcode").text;
        if (regCode.empty() || code != regCode)
            refuse("registration code '" + code + "' was not issued by this server");
    }
    const XmlElement& data = inner(request);
    if (data.name != kind->inner)
        refuse("the registration payload holds <" + data.name + ">, expected <" + kind->inner +
               ">");
    if (kind == &REGISTRATION_KINDS[2]) {
        for (const XmlElement* cookie : data.child("zuvo:idcookies").all("zuvo:idcookie")) {
            if (cookie->child("zuvo:name").text.empty())
                refuse("an identity cookie has no name");
            cookie->child("zuvo:value");
        }
    }
    const std::string payload = issueClientTicket(rcOf(data));
    if (kind == &REGISTRATION_KINDS[0])
        regCode.clear(); // a code registers one device once
    result.body = [payload](ElementWriter& out) {
        out.open("zuvo:registrationdata")
            .leaf("zuvo:userid", "subscriber-1042")
            .leaf("zuvo:userdescription", "Living room player")
            .leaf("zuvo:payload", payload)
            .close();
    };
}

void ScriptedServer::answerAuthrenew(const OpenedRequest& request, Result& result) {
    const XmlElement& data = inner(request);
    const auto* renewal = std::find_if(std::begin(RENEWALS), std::end(RENEWALS),
                                       [&](const auto& r) { return data.name == r[0]; });
    if (renewal == std::end(RENEWALS))
        refuse("the renewal payload holds <" + data.name + ">");
    checkRc(rcOf(data));
    if ((*renewal)[1] && data.child((*renewal)[1]).text.empty())
        refuse("<" + data.name + "> has an empty <" + (*renewal)[1] + ">");
    const std::string payload = issueClientTicket(rc);
    result.body = [payload](ElementWriter& out) {
        out.open("zuvo:authenticationrenewal").leaf("zuvo:payload", payload).close();
    };
}

} // namespace zuvocli
