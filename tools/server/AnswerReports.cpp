// The scripted server's answers to the device's reports: play data and
// log blobs, checked and acknowledged.
#include "server/AnswerWriting.h"

#include "capture/XmlTree.h"

#include <QRXClient/Base64.h>

#include <exception>

namespace zuvocli {
void ScriptedServer::answerPlaydata(const OpenedRequest& request, Result&) const {
    if (mticket.empty() || request.body().child("zuvo:lticket").text != mticket)
        refuse("the play data ticket was not issued by this server");
    const XmlElement& report = inner(request);
    if (report.name != "zuvo:playdata" ||
        report.child("zuvo:movieid").text != std::to_string(movieId))
        refuse("the play data report is not about the authorized title");
    report.child("zuvo:playbacktime").child("zuvo:total");
}

void ScriptedServer::answerLogblob(const XmlElement& message, Result&) const {
    message.child("zuvo:sequencenumber");
    try {
        Velmora::QRXClient::Base64::decode(message.child("zuvo:logdata").text);
    } catch (const std::exception& e) {
        refuse(std::string("the log data is not Base64: ") + e.what());
    }
}

} // namespace zuvocli
