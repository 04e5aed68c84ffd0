// The scripted server's answers to credential provisioning (an X.509
// certificate, an elliptic-curve link credential, an NP ticket) and to the
// web API messages (enrolment, proxied fetches). Provisioning needs the rc
// the device registered with; the credentials are Base64 of bytes shaped
// like the real thing (a DER certificate header, an uncompressed curve
// point, a ticket with its expiry and signature) so that a device's
// handling of them can be exercised, but they are not usable credentials.
#include "server/AnswerWriting.h"

#include "capture/XmlTree.h"

#include <QRXClient/Base64.h>
#include <nlohmann/json.hpp>
#include <zuvolib/xml/XmlEscape.h>

#include <functional>
#include <random>

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

/// `count` bytes drawn from a generator seeded with `seed`: the same
/// request of the same device gets the same credential.
std::string pseudoBytes(const std::string& seed, std::size_t count) {
    std::mt19937 generator(static_cast<std::mt19937::result_type>(std::hash<std::string>()(seed)));
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator() & 0xff);
    return bytes;
}

/// A DER length of two bytes after 0x82.
std::string derLength(std::size_t length) {
    return std::string{'\x82', static_cast<char>(length >> 8), static_cast<char>(length & 0xff)};
}

/// Shaped like a DER certificate: SEQUENCE { SEQUENCE { [0] version 3,
/// serial number, ... }, ... } over pseudo-random content.
std::string certificateBytes(const std::string& seed) {
    const std::string serial = "\x02\x10" + pseudoBytes(seed + "/serial", 16);
    const std::string tbs =
        std::string("\xa0\x03\x02\x01\x02", 5) + serial + pseudoBytes(seed + "/tbs", 420);
    const std::string tbsSequence = "\x30" + derLength(tbs.size()) + tbs;
    const std::string body = tbsSequence + pseudoBytes(seed + "/signature", 80);
    return "\x30" + derLength(body.size()) + body;
}

/// The bytes of each credential, made from the device's rc, the request's
/// link token and the server time.
struct Credential {
    const char* message;
    const char* data; ///< the request's data element
    std::string (*make)(const std::string& seed, const XmlElement& data, unsigned int now);
};
const Credential CREDENTIALS[] = {
    {"x509provision", "zuvo:provisiondata",
     [](const std::string& seed, const XmlElement&, unsigned int) {
         return certificateBytes(seed);
     }},
    {"ecclinkprovision", "zuvo:ecclinkprovisiondata",
     [](const std::string& seed, const XmlElement& data, unsigned int) {
         const std::string& token = data.child("zuvo:nastoken").text;
         if (token.empty())
             refuse("<zuvo:ecclinkprovisiondata> has an empty <zuvo:nastoken>");
         // An uncompressed point on a 256-bit curve.
         return "\x04" + pseudoBytes(seed + "/" + token, 64);
     }},
    {"npticketprovision", "zuvo:provisiondata",
     [](const std::string& seed, const XmlElement&, unsigned int now) {
         const unsigned int expiry = now + 604800u;
         std::string bytes = "NPT\x01";
         for (int shift = 24; shift >= 0; shift -= 8)
             bytes += static_cast<char>((expiry >> shift) & 0xff);
         return bytes + seed + pseudoBytes(seed + "/ticket", 56);
     }},
};

} // namespace

void ScriptedServer::answerProvision(const OpenedRequest& request, Result& result) const {
    const Credential* credential = nullptr;
    for (const Credential& c : CREDENTIALS) {
        if (request.message == c.message)
            credential = &c;
    }
    const XmlElement& data = request.body().child(credential->data);
    const XmlElement& rcElement = data.child("zuvo:rc");
    if (rcElement.attribute("version") != "1")
        refuse("<" + data.name + "> lacks a version 1 <zuvo:rc>");
    checkRc(rcElement.text);
    const std::string bytes = credential->make(rc + "/" + request.message, data, serverTime);
    const std::string text = Velmora::QRXClient::Base64::encode(bytes);
    result.body = [text](ElementWriter& out) {
        out.open("zuvo:provisionresponsedata").leaf("zuvo:rs", text).close();
    };
}

void ScriptedServer::answerWebApi(const OpenedRequest& request, Result& result) const {
    if (request.message == "webapienroll") {
        const XmlElement& data = inner(request);
        if (data.name != "zuvo:enrolldata")
            refuse("the enrolment payload holds <" + data.name + ">");
        if (data.child("zuvo:oauthrequesttoken").text.empty() ||
            data.child("zuvo:oauthconsumerkey").text.empty())
            refuse("enrolment needs an OAuth request token and consumer key");
        return;
    }
    const std::string& url = request.body().child("zuvo:url").text;
    if (url.empty() || url[0] != '/')
        refuse("the proxied address '" + url + "' is not a path on the web API");
    // What the web API would answer: the address fetched and a short list.
    const nlohmann::json fetched = {
        {"url", url},
        {"status", 200},
        {"items",
         {{{"id", 42}, {"title", "The Long Afternoon"}},
          {{"id", 43}, {"title", "Harbour Lights"}}}},
    };
    const std::string body = zl::escapeXmlText(fetched.dump());
    result.body = [body](ElementWriter& out) {
        out.open("zuvo:webapiproxy").leaf("zuvo:httpbody", body).close();
    };
}

} // namespace zuvocli
