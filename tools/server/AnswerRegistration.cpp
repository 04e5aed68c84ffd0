// The scripted server's answer to registration by rendezvous code: the
// client ticket and the registration secret, sealed in the payload.
#include "server/AnswerWriting.h"

#include "capture/XmlTree.h"

#include <QRXClient/Base64.h>

namespace zuvocli {
void ScriptedServer::answerRegister(const XmlElement& message, Result& result) {
    const XmlElement* byCode = message.find("zuvo:rendezvousreg");
    if (!byCode)
        refuse("only registration by rendezvous code is scripted");
    if (regCode.empty() || byCode->child("zuvo:regcode").text != regCode)
        refuse("registration code '" + byCode->child("zuvo:regcode").text +
               "' was not issued by this server");
    const XmlElement data = readXml(openPayload(byCode->child("zuvo:payload").text));
    const XmlElement& rc = data.child("zuvo:rc");
    if (data.name != "zuvo:registrationdata" || rc.attribute("version") != "1" || rc.text.empty())
        refuse("the registration payload lacks a version 1 <zuvo:rc>");

    const std::string ticket = "CT-" + std::to_string(serverTime) + "-" + rc.text;
    const std::string payload =
        sealPayload("<zuvo:cticket expiration=\"" + std::to_string(serverTime + 2592000u) + "\">" +
                    Velmora::QRXClient::Base64::encode(ticket) + "</zuvo:cticket><zuvo:rs>" +
                    Velmora::QRXClient::Base64::encode("rs:" + rc.text) + "</zuvo:rs>");
    result.method = "register";
    result.body = [payload](ElementWriter& out) {
        out.open("zuvo:registrationdata")
            .leaf("zuvo:userid", "subscriber-1042")
            .leaf("zuvo:userdescription", "Living room player")
            .leaf("zuvo:payload", payload)
            .close();
    };
}

} // namespace zuvocli
