// The scripted server of `zuvo demo`: reading a request's envelope and
// header, choosing the answer, and writing the response around it.
#include "server/ScriptedServer.h"

#include "capture/XmlTree.h"
#include "common/Errors.h"
#include "common/Payload.h"
#include "server/AnswerWriting.h"

#include <zuvolib/request/Protocol.h>
#include <zuvolib/xml/XmlEscape.h>

#include <stdexcept>

namespace zuvocli {
namespace zl = velmora::zuvolib;

void refuse(const std::string& what) {
    throw std::runtime_error("scripted server refused the request: " + what);
}

ScriptedServer::ScriptedServer(const CipherContext& context)
    : context(context), sealContext(context), serverTime(1700000000) {}

std::string ScriptedServer::messageName(const std::string& request) {
    try {
        const XmlElement root = readXml(request);
        if (root.name != "zuvo:request" || root.children.size() != 2)
            return std::string();
        const std::string& name = root.children[1].name;
        return name.compare(0, 5, "zuvo:") == 0 ? name.substr(5) : std::string();
    } catch (const std::exception&) {
        return std::string();
    }
}

std::string ScriptedServer::openPayload(const std::string& text) const {
    try {
        return decodePayload(text, encrypted, context);
    } catch (const RejectedError& e) {
        refuse(e.what());
    }
}

std::string ScriptedServer::sealPayload(const std::string& fragment) const {
    return encodePayload(fragment, sealContext->encryptionEnabled != 0, sealContext);
}

std::string ScriptedServer::answer(const std::string& request, const ResponseVariation& variation) {
    sealContext = context;
    XmlElement root;
    try {
        root = readXml(request);
    } catch (const std::exception& e) {
        refuse(e.what());
    }
    const std::string expectedNamespace = zl::namespaceBase + zl::PROTOCOL_VERSION;
    if (root.name != "zuvo:request")
        refuse("the document element is <" + root.name + ">, not <zuvo:request>");
    if (root.attribute("xmlns:zuvo") != expectedNamespace)
        refuse("namespace '" + root.attribute("xmlns:zuvo") + "', expected '" + expectedNamespace +
               "'");
    if (root.children.size() != 2 || root.children[0].name != "zuvo:header")
        refuse("a request holds <zuvo:header> and one message element");

    // The header: versions and the timing payload, in the form it announces.
    const XmlElement& header = root.children[0];
    header.child("zuvo:softwareversion");
    header.child("zuvo:uiversion");
    const XmlElement& timing = header.child("zuvo:payload");
    encrypted = timing.attribute("encrypted") != "false";
    if (encrypted != (context->encryptionEnabled != 0))
        refuse("the header payload is " + std::string(encrypted ? "" : "not ") +
               "encrypted, but this server " + (encrypted ? "has no key" : "expects encryption"));
    const XmlElement times = readXml(openPayload(timing.text));
    if (times.name != "zuvo:clientservertimes")
        refuse("the header payload holds <" + times.name + ">");
    times.child("zuvo:servertime");
    clientTime = static_cast<unsigned int>(std::stoul("0" + times.child("zuvo:clienttime").text));
    ++serverTime;

    const XmlElement& message = root.children[1];
    if (variation.otherKey)
        sealContext = makeCipherContext(randomKey());

    Result result;
    result.dropMethod = variation.dropMethod;
    if (variation.refuse) {
        result.method = message.name.substr(message.name.find(':') + 1);
        result.success = false;
        result.code = variation.code;
        result.userText = zl::escapeXmlText(variation.userText);
    } else if (message.name == "zuvo:ping") {
        result.method = "ping";
    } else if (message.name == "zuvo:preregister") {
        regCode = "K7Q2MX";
        result.method = "preregister";
        result.body = [this](ElementWriter& out) {
            out.leaf("zuvo:regcode", regCode)
                .leaf("zuvo:retryinterval", 5)
                .leaf("zuvo:totaltime", 900);
        };
    } else if (message.name == "zuvo:register") {
        answerRegister(message, result);
    } else if (message.name == "zuvo:authorization") {
        answerAuthorization(message, variation.downloadables, result);
    } else if (message.name == "zuvo:playdata") {
        answerPlaydata(message, result);
    } else if (message.name == "zuvo:logblob") {
        answerLogblob(message, result);
    } else {
        refuse("this server does not answer <" + message.name + ">");
    }
    return respond(result);
}

std::string ScriptedServer::respond(const Result& result) const {
    zl::TagBuilder builder("zuvo:response");
    builder.addAttribute("xmlns:zuvo", zl::namespaceBase + zl::PROTOCOL_VERSION);
    builder.addAttribute("version", zl::PROTOCOL_VERSION);
    ElementWriter out(builder);

    out.open("zuvo:responseheader");
    out.open("zuvo:status")
        .leaf("zuvo:success", result.success ? "true" : "false")
        .leaf("zuvo:code", result.code)
        .leaf("zuvo:usertext", result.userText)
        .close();
    out.open("zuvo:parameters")
        .leaf("zuvo:retrycontrol", 3)
        .leaf("zuvo:mintimeout", 30)
        .leaf("zuvo:lowfrequencypollinterval", 86400)
        .leaf("zuvo:mediumfrequencypollinterval", 3600)
        .leaf("zuvo:highfrequencypollinterval", 60)
        .leaf("zuvo:hightomediumpollswitchinterval", 600)
        .leaf("zuvo:mediumtolowpollswitchinterval", 7200)
        .leaf("zuvo:loglevel", "info")
        .leaf("zuvo:loginterval", 900);
    out.open("zuvo:loguploads").leaf("zuvo:application", "").leaf("zuvo:crash", "").close();
    out.leaf("zuvo:supportphone", "+1-555-0100").close();
    out.leaf("zuvo:payload", sealPayload("<zuvo:servertime>" + std::to_string(serverTime) +
                                         "</zuvo:servertime><zuvo:clienttime>" +
                                         std::to_string(clientTime) + "</zuvo:clienttime>"))
        .attribute("encrypted", encrypted ? "true" : "false");
    out.close();

    out.open("zuvo:result");
    if (!result.dropMethod)
        out.attribute("method", result.method);
    if (result.body)
        result.body(out);
    out.close();
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + builder.toXml();
}

} // namespace zuvocli
