// The scripted server's answers to the device's reports: play data and
// log blobs, checked and acknowledged.
#include "server/AnswerWriting.h"

#include "capture/XmlTree.h"

#include <QRXClient/Base64.h>

#include <exception>

namespace zuvocli {
void ScriptedServer::answerPlaydata(const XmlElement& message, Result& result) const {
    if (mticket.empty() || message.child("zuvo:lticket").text != mticket)
        refuse("the play data ticket was not issued by this server");
    const XmlElement report = readXml(openPayload(message.child("zuvo:payload").text));
    if (report.name != "zuvo:playdata" ||
        report.child("zuvo:movieid").text != std::to_string(movieId))
        refuse("the play data report is not about the authorized title");
    report.child("zuvo:playbacktime").child("zuvo:total");
    result.method = "playdata";
}

void ScriptedServer::answerLogblob(const XmlElement& message, Result& result) const {
    message.child("zuvo:sequencenumber");
    try {
        Velmora::QRXClient::Base64::decode(message.child("zuvo:logdata").text);
    } catch (const std::exception& e) {
        refuse(std::string("the log data is not Base64: ") + e.what());
    }
    result.method = "logblob";
}

} // namespace zuvocli
