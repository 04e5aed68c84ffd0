// The scripted server of `zuvo demo`: reading a request's envelope and
// header, choosing the answer, and writing the response around it.
#include "server/ScriptedServer.h"

#include "capture/XmlTree.h"
#include "common/Errors.h"
#include "common/Payload.h"
#include "server/AnswerWriting.h"

#include <zuvolib/request/Protocol.h>
#include <zuvolib/xml/XmlEscape.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace zuvocli {
namespace zl = velmora::zuvolib;

void refuse(const std::string& what) {
    throw std::runtime_error("scripted server refused the request: " + what);
}

namespace {

/// The server's clock, shared by every device session so that each answer
/// carries a time no other answer carries: a device echoes the last one,
/// and that finds its session again.
std::atomic<unsigned int> serverClock{1700000000};

/// Registration codes are drawn from 32 characters without 0, 1, I and O.
const char CODE_ALPHABET[] = "23456789ABCDEFGHJKLMNPQRSTUVWXYZ";
std::atomic<unsigned long> codesIssued{0};

/// The message's own "zuvo:payload": a child, or a grandchild as in the
/// three ways of registering.
const XmlElement* messagePayload(const XmlElement& message) {
    if (const XmlElement* payload = message.find("zuvo:payload"))
        return payload;
    for (const XmlElement& child : message.children) {
        if (const XmlElement* payload = child.find("zuvo:payload"))
            return payload;
    }
    return nullptr;
}

} // namespace

std::string nextRegistrationCode() {
    // Six characters hold 2^30 codes; n -> first + n * odd constant is a
    // bijection modulo 2^30, so codes repeat only after 2^30 of them.
    const unsigned long mask = (1ul << 30) - 1;
    unsigned long first = 0;
    for (char c : std::string("K7Q2MX"))
        first =
            first * 32 + static_cast<unsigned long>(std::strchr(CODE_ALPHABET, c) - CODE_ALPHABET);
    unsigned long value = (first + codesIssued++ * 0x2f6a5b1ul) & mask;
    std::string code(6, ' ');
    for (std::size_t i = 6; i-- > 0; value /= 32)
        code[i] = CODE_ALPHABET[value % 32];
    return code;
}

const XmlElement& OpenedRequest::body() const {
    return root->children[1];
}

ScriptedServer::ScriptedServer(const CipherContext& context)
    : context(context), sealContext(context) {}

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

std::string ScriptedServer::sealPayload(const std::string& fragment) const {
    return encodePayload(fragment, sealContext->encryptionEnabled != 0, sealContext);
}

const XmlElement& ScriptedServer::inner(const OpenedRequest& request) {
    if (!request.inner)
        refuse("<zuvo:" + request.message + "> carries no <zuvo:payload>");
    return *request.inner;
}

OpenedRequest ScriptedServer::open(const std::string& request, const CipherContext& context) {
    OpenedRequest opened;
    auto root = std::make_shared<XmlElement>();
    try {
        *root = readXml(request);
    } catch (const std::exception& e) {
        refuse(e.what());
    }
    opened.root = root;
    const std::string expectedNamespace = zl::namespaceBase + zl::PROTOCOL_VERSION;
    if (root->name != "zuvo:request")
        refuse("the document element is <" + root->name + ">, not <zuvo:request>");
    if (root->attribute("xmlns:zuvo") != expectedNamespace)
        refuse("namespace '" + root->attribute("xmlns:zuvo") + "', expected '" + expectedNamespace +
               "'");
    if (root->children.size() != 2 || root->children[0].name != "zuvo:header" ||
        root->children[1].name.compare(0, 5, "zuvo:") != 0)
        refuse("a request holds <zuvo:header> and one message element");
    opened.message = root->children[1].name.substr(5);

    // The header: versions and the timing payload, in the form it announces.
    const XmlElement& header = root->children[0];
    header.child("zuvo:softwareversion");
    header.child("zuvo:uiversion");
    const XmlElement& timing = header.child("zuvo:payload");
    opened.encrypted = timing.attribute("encrypted") != "false";
    if (opened.encrypted != (context->encryptionEnabled != 0))
        refuse("the header payload is " + std::string(opened.encrypted ? "" : "not ") +
               "encrypted, but this server " +
               (opened.encrypted ? "has no key" : "expects encryption"));
    const auto openText = [&](const std::string& text) {
        try {
            return readXml(decodePayload(text, opened.encrypted, context));
        } catch (const RejectedError& e) {
            refuse(e.what());
        }
    };
    const XmlElement times = openText(timing.text);
    if (times.name != "zuvo:clientservertimes")
        refuse("the header payload holds <" + times.name + ">");
    opened.serverTime =
        static_cast<unsigned int>(std::stoul("0" + times.child("zuvo:servertime").text));
    opened.clientTime =
        static_cast<unsigned int>(std::stoul("0" + times.child("zuvo:clienttime").text));
    if (const XmlElement* payload = messagePayload(opened.body()))
        opened.inner = std::make_shared<XmlElement>(openText(payload->text));
    return opened;
}

std::string ScriptedServer::answer(const std::string& request, const ResponseVariation& variation) {
    return answer(open(request, context), variation);
}

std::string ScriptedServer::answer(const OpenedRequest& request,
                                   const ResponseVariation& variation) {
    sealContext = variation.otherKey ? makeCipherContext(randomKey()) : context;
    encrypted = request.encrypted;
    clientTime = request.clientTime;
    serverTime = ++serverClock;

    const XmlElement& message = request.body();
    Result result;
    result.method = request.message;
    result.dropMethod = variation.dropMethod;
    if (variation.refuse) {
        result.success = false;
        result.code = variation.code;
        result.userText = zl::escapeXmlText(variation.userText);
        return respond(result);
    }
    const std::string& name = request.message;
    if (name == "ping") {
    } else if (name == "preregister") {
        regCode = nextRegistrationCode();
        result.body = [this](ElementWriter& out) {
            out.leaf("zuvo:regcode", regCode)
                .leaf("zuvo:retryinterval", 5)
                .leaf("zuvo:totaltime", 900);
        };
    } else if (name == "register") {
        answerRegister(request, result);
    } else if (name == "authenticationrenewal") {
        answerAuthrenew(request, result);
    } else if (name == "authorization") {
        answerAuthorization(message, variation.downloadables, result);
    } else if (name == "playdata") {
        answerPlaydata(request, result);
    } else if (name == "logblob") {
        answerLogblob(message, result);
    } else if (name == "x509provision" || name == "ecclinkprovision" ||
               name == "npticketprovision") {
        answerProvision(request, result);
    } else if (name == "webapienroll" || name == "webapiproxy") {
        answerWebApi(request, result);
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
