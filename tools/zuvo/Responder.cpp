// The scripted server of `zuvo demo`.
#include "Responder.h"

#include "Errors.h"
#include "Payload.h"
#include "XmlTree.h"

#include <QRXClient/Base64.h>
#include <zuvolib/request/Protocol.h>
#include <zuvolib/subparsers/ContentProfile.h>
#include <zuvolib/xml/TagBuilder.h>
#include <zuvolib/xml/XmlEscape.h>

#include <functional>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

/// Writes nested elements through the library's tag builder: `open` starts
/// an element that later ones go into until `close`, `leaf` adds one with
/// text.
class ElementWriter {
public:
    explicit ElementWriter(zl::TagBuilder& builder) : builder(builder), open_{builder.root} {}

    ElementWriter& open(const std::string& name) {
        builder.addTo(open_.back(), name);
        open_.push_back(builder.current);
        return *this;
    }
    ElementWriter& attribute(const std::string& name, const std::string& value) {
        builder.addAttribute(name, value);
        return *this;
    }
    ElementWriter& leaf(const std::string& name, const std::string& text) {
        builder.addTo(open_.back(), name);
        builder.addValue(text);
        return *this;
    }
    template <class Number,
              class = typename std::enable_if<std::is_arithmetic<Number>::value>::type>
    ElementWriter& leaf(const std::string& name, Number number) {
        return leaf(name, std::to_string(number));
    }
    ElementWriter& close() {
        open_.pop_back();
        return *this;
    }

private:
    zl::TagBuilder& builder;
    std::vector<std::tr1::shared_ptr<zl::TagNode>> open_;
};

[[noreturn]] void refuse(const std::string& what) {
    throw std::runtime_error("scripted server refused the request: " + what);
}

/// The two content delivery networks of the demo: name, id, rank, weight.
struct Cdn {
    const char* name;
    unsigned int id, rank, weight;
    const char* host;
};
const Cdn CDNS[] = {
    {"cdn-alpha", 1, 1, 70, "http://alpha.cdn.example"},
    {"cdn-beta", 2, 2, 30, "http://beta.cdn.example"},
};

/// The demo's video ladder, one rung per requested video profile.
struct Rung {
    unsigned int bitrate, width, height;
};
const Rung VIDEO_LADDER[] = {{1750, 1280, 720}, {3000, 1280, 720}, {5800, 1920, 1080}};

/// "downloadurls" with one URL per CDN for `id`.
void writeDownloadUrls(ElementWriter& out, const std::string& id, unsigned int expiration) {
    out.open("zuvo:downloadurls");
    for (const Cdn& cdn : CDNS) {
        out.open("zuvo:downloadurl")
            .leaf("zuvo:expiration", expiration)
            .leaf("zuvo:cdnid", cdn.id)
            .leaf("zuvo:url", std::string(cdn.host) + "/" + id)
            .close();
    }
    out.close();
}

void writeLanguage(ElementWriter& out, const char* display, const char* iso1, const char* iso2) {
    out.open("zuvo:language")
        .leaf("zuvo:displaytext", display)
        .leaf("zuvo:iso639-1", iso1)
        .leaf("zuvo:iso639-2", iso2)
        .leaf("zuvo:iso639-3", iso2)
        .close();
}

/// The identifiers of the profile elements under `list` that have one.
std::vector<std::string> requestedProfiles(const XmlElement& list, const std::string& item) {
    std::vector<std::string> identifiers;
    for (const XmlElement* profile : list.all(item)) {
        if (zl::stringToProfile(profile->text) != zl::PROFILE_UNKNOWN)
            identifiers.push_back(profile->text);
    }
    return identifiers;
}

} // namespace

/// The result section of one response: its method and what goes inside.
struct ScriptedServer::Result {
    std::string method;
    std::function<void(ElementWriter&)> body;
    bool success = true;
    int code = 0;
    std::string userText = "OK";
    bool dropMethod = false; ///< leave out the method attribute
};

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

void ScriptedServer::answerAuthorization(const XmlElement& message, std::size_t downloadables,
                                         Result& result) {
    movieId = std::stoi("0" + message.child("zuvo:movieid").text);
    if (movieId <= 0)
        refuse("movie id '" + message.child("zuvo:movieid").text + "' is not a title");
    const XmlElement& profiles = message.child("zuvo:contentprofiles");
    const std::vector<std::string> video =
        requestedProfiles(profiles.child("zuvo:videoprofiles"), "zuvo:videoprofile");
    const std::vector<std::string> audio =
        requestedProfiles(profiles.child("zuvo:audioprofiles"), "zuvo:audioprofile");
    const std::vector<std::string> timedText =
        requestedProfiles(profiles.child("zuvo:timedtextprofiles"), "zuvo:timedtextprofile");
    if (video.empty() || audio.empty())
        refuse("no known video or audio profile was offered");

    mticket = Velmora::QRXClient::Base64::encode("MT-" + std::to_string(movieId) + "-" +
                                                 std::to_string(serverTime));
    const unsigned int expiration = serverTime + 86400u;
    const std::string payload =
        sealPayload("<zuvo:mticket expiration=\"" + std::to_string(expiration) + "\">" + mticket +
                    "</zuvo:mticket>");
    const std::string movie = std::to_string(movieId);

    result.method = "authorization";
    result.body = [=](ElementWriter& out) {
        out.open("zuvo:authorization").attribute("movie_id", movie);
        out.open("zuvo:cdns");
        for (const Cdn& cdn : CDNS) {
            out.open("zuvo:cdn")
                .leaf("zuvo:name", cdn.name)
                .leaf("zuvo:cdnid", cdn.id)
                .leaf("zuvo:rank", cdn.rank)
                .leaf("zuvo:weight", cdn.weight)
                .close();
        }
        out.close();

        // One rung per requested profile, or as many as asked for, the
        // profiles taken round.
        const std::size_t rungs = sizeof VIDEO_LADDER / sizeof VIDEO_LADDER[0];
        const std::size_t count = downloadables ? downloadables : video.size();
        for (std::size_t i = 0; i < count; ++i) {
            const Rung& rung = VIDEO_LADDER[i < rungs ? i : rungs - 1];
            const std::string id = "v" + movie + "-" + std::to_string(i + 1);
            out.open("zuvo:videodownloadable")
                .leaf("zuvo:downloadableid", id)
                .leaf("zuvo:size", 1000ull * rung.bitrate / 8 * 5400)
                .leaf("zuvo:bitrate", rung.bitrate);
            if (rung.height >= 1080)
                out.leaf("zuvo:hd", "true");
            out.leaf("zuvo:videoprofile", video[i % video.size()]);
            out.open("zuvo:resolution")
                .leaf("zuvo:width", rung.width)
                .leaf("zuvo:height", rung.height)
                .close();
            out.open("zuvo:pixelaspect").leaf("zuvo:width", 1).leaf("zuvo:height", 1).close();
            writeDownloadUrls(out, id, expiration);
            out.close();
        }

        const char* const languages[][3] = {{"English", "en", "eng"}, {"French", "fr", "fra"}};
        for (std::size_t t = 0; t < 2; ++t) {
            out.open("zuvo:audiotrack");
            writeLanguage(out, languages[t][0], languages[t][1], languages[t][2]);
            if (t == 0)
                out.leaf("zuvo:isnative", "true");
            for (std::size_t i = 0; i < audio.size(); ++i) {
                const std::string id = "a" + movie + "-" + languages[t][1] + std::to_string(i + 1);
                const unsigned int bitrate = i == 0 ? 96 : 384;
                out.open("zuvo:audiodownloadable")
                    .leaf("zuvo:downloadableid", id)
                    .leaf("zuvo:size", 5400ull * bitrate * 1000 / 8)
                    .leaf("zuvo:bitrate", bitrate)
                    .leaf("zuvo:audioprofile", audio[i]);
                writeDownloadUrls(out, id, expiration);
                out.close();
            }
            out.close();
        }

        if (!timedText.empty()) {
            out.open("zuvo:timedtexttrack").leaf("zuvo:timedtexttype", "subtitles");
            writeLanguage(out, "English", "en", "eng");
            for (std::size_t i = 0; i < timedText.size(); ++i) {
                const std::string id = "t" + movie + "-en" + std::to_string(i + 1);
                out.open("zuvo:timedtextdownloadable")
                    .leaf("zuvo:downloadableid", id)
                    .leaf("zuvo:size", 48213)
                    .leaf("zuvo:timedtextprofile", timedText[i]);
                writeDownloadUrls(out, id, expiration);
                out.close();
            }
            out.close();
        }

        out.open("zuvo:trickplay")
            .leaf("zuvo:trickplayid", 1)
            .leaf("zuvo:trickplayinterval", 10)
            .leaf("zuvo:size", 2097152);
        out.open("zuvo:resolution").leaf("zuvo:width", 320).leaf("zuvo:height", 180).close();
        out.open("zuvo:pixelaspect").leaf("zuvo:width", 1).leaf("zuvo:height", 1).close();
        writeDownloadUrls(out, "trick" + movie, expiration);
        out.close();

        out.open("zuvo:streamingparams");
        out.open("zuvo:streamingparam")
            .leaf("zuvo:name", "minbuffermillis")
            .leaf("zuvo:value", "2000")
            .close();
        out.open("zuvo:streamingparam")
            .leaf("zuvo:name", "maxbitrate")
            .leaf("zuvo:value", "5800")
            .close();
        out.close();

        out.leaf("zuvo:payload", payload);
        out.close();
    };
}

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
