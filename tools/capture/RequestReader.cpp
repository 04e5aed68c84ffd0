// Reading request documents back into request records.
//
// Each message reader walks the elements the builder writes for its message
// and gathers the record's fields as JSON, in the form `zuvo build --in`
// reads. The record's own field table then checks and converts them, so a
// value the record cannot hold is reported here just as `build` would.
#include "capture/RequestReader.h"

#include "capture/XmlTree.h"
#include "common/Errors.h"
#include "common/Payload.h"
#include "records/RequestMessages.h"

#include <zuvolib/request/Protocol.h>

#include <deque>
#include <initializer_list>

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

[[noreturn]] void malformed(const std::string& what) {
    throw RejectedError("malformed request: " + what);
}

/// The fields of one request as they are read, and its payloads.
class Reading {
public:
    Reading(const CipherContext& context, bool encrypted)
        : context(context), encrypted(encrypted) {}

    Json fields = Json::object();
    Json payloads = Json::array();
    std::string rc;
    bool hasRc = false;
    /// Fields whose payload could not be opened: left out of the output.
    std::vector<std::string> unread;

    /// The first child `name` ("zuvo:" is added) of `parent`.
    static const XmlElement& need(const XmlElement& parent, const std::string& name) {
        const XmlElement* found = parent.find("zuvo:" + name);
        if (!found)
            malformed("<" + parent.name + "> has no <zuvo:" + name + ">");
        return *found;
    }

    /// Text fields are written byte for byte, so their value is the text as
    /// the document holds it, references included.
    void text(const char* field, const XmlElement& element) { fields[field] = element.raw; }

    void number(const char* field, const XmlElement& element) {
        fields[field] = numberJson(element.text);
    }

    /// Integers as JSON numbers; anything else stays text, which the field
    /// table then refuses with the value in the message.
    static Json numberJson(const std::string& t) {
        const std::size_t sign = !t.empty() && t[0] == '-' ? 1 : 0;
        const bool integer =
            t.size() > sign && t.find_first_not_of("0123456789", sign) == std::string::npos;
        return integer ? Json::parse(t) : Json(t);
    }

    /// The "zuvo:rc" element of a payload or provisioning body.
    void readRc(const XmlElement& parent) {
        rc = need(parent, "rc").raw;
        hasRc = true;
    }

    /// Opens the payload text of `element` (named `path` in the output) and
    /// reads it as XML. Returns its document element, or null when it does
    /// not open: the payload is then marked with the reason and `carries`,
    /// the fields it would have given, are left out.
    const XmlElement* open(const XmlElement& element, const std::string& path,
                           std::initializer_list<const char*> carries) {
        Json entry = {{"element", path}, {"encrypted", encrypted}};
        std::vector<std::string> names(carries.begin(), carries.end());
        try {
            if (encrypted && !context->encryptionEnabled)
                throw RejectedError("payload is encrypted: give the key (--key or --key-file)");
            const std::string document = decodePayload(element.text, encrypted, context);
            inner.push_back(readXml(document));
            entry["document"] = document;
            entry["fields"] = names;
            payloads.push_back(entry);
            return &inner.back();
        } catch (const std::exception& e) {
            entry["error"] = e.what();
            payloads.push_back(entry);
            unread.insert(unread.end(), names.begin(), names.end());
            return nullptr;
        }
    }

private:
    const CipherContext& context;
    bool encrypted;
    std::deque<XmlElement> inner; ///< opened payloads; stable addresses
};

typedef void (*ReadBody)(const XmlElement& message, Reading& r);

void readNothing(const XmlElement&, Reading&) {}

void readAuthorization(const XmlElement& message, Reading& r) {
    r.number("movieId", Reading::need(message, "movieid"));
    r.number("trackId", Reading::need(message, "trackid"));
    const XmlElement& profiles = Reading::need(message, "contentprofiles");
    const char* const lists[][3] = {
        {"videoProfiles", "videoprofiles", "zuvo:videoprofile"},
        {"audioProfiles", "audioprofiles", "zuvo:audioprofile"},
        {"timedTextProfiles", "timedtextprofiles", "zuvo:timedtextprofile"}};
    for (const auto& list : lists) {
        Json values = Json::array();
        // An empty element stands for a value without identifier.
        for (const XmlElement* p : Reading::need(profiles, list[1]).all(list[2]))
            values.push_back(p->text.empty() ? Json(zl::PROFILE_UNKNOWN) : Json(p->text));
        r.fields[list[0]] = values;
    }
}

void readRegister(const XmlElement& message, Reading& r) {
    const XmlElement* byCode = message.find("zuvo:rendezvousreg");
    const XmlElement* body = byCode ? byCode : &Reading::need(message, "shopperidreg");
    // Any type but 0 registers by subscriber identifier; 1 stands for them.
    r.fields["regType"] = byCode ? 0 : 1;
    if (byCode)
        r.text("regCode", Reading::need(*byCode, "regcode"));
    const std::string path = "register/" + body->name.substr(5) + "/payload";
    if (const XmlElement* data = r.open(Reading::need(*body, "payload"), path, {"rc"}))
        r.readRc(*data);
}

void readTokenRegister(const XmlElement& message, Reading& r) {
    const XmlElement& body = Reading::need(message, "idcookiereg");
    const XmlElement* data =
        r.open(Reading::need(body, "payload"), "register/idcookiereg/payload", {"idCookies", "rc"});
    if (!data)
        return;
    Json cookies = Json::array();
    for (const XmlElement* cookie : Reading::need(*data, "idcookies").all("zuvo:idcookie"))
        cookies.push_back({{"name", Reading::need(*cookie, "name").raw},
                           {"value", Reading::need(*cookie, "value").raw}});
    r.fields["idCookies"] = cookies;
    r.readRc(*data);
}

void readAuthrenew(const XmlElement& message, Reading& r) {
    const XmlElement* data =
        r.open(Reading::need(message, "payload"), "authenticationrenewal/payload",
               {"renewalType", "shopperId", "nasToken", "rc"});
    if (!data)
        return;
    if (data->name == "zuvo:stbrenew") {
        r.fields["renewalType"] = 0;
    } else if (data->name == "zuvo:shopperidrenew") {
        r.fields["renewalType"] = 1;
        r.text("shopperId", Reading::need(*data, "shopperid"));
    } else if (data->name == "zuvo:linkrenew") {
        r.fields["renewalType"] = 3;
        r.text("nasToken", Reading::need(*data, "nastoken"));
    } else {
        malformed("the renewal payload holds <" + data->name + ">");
    }
    r.readRc(*data);
}

void readPlaydata(const XmlElement& message, Reading& r) {
    // The ticket's bytes are the element's text: Base64 of that text in JSON.
    r.fields["lticket"] = toBase64(Reading::need(message, "lticket").raw);
    const XmlElement* data =
        r.open(Reading::need(message, "payload"), "playdata/payload",
               {"movieId", "totalPlaybackTime", "laMovieTime", "eventMovieTime",
                "videoStreamPlayTimes", "audioStreamPlayTimes", "timedTextStreamPlayTimes"});
    if (!data)
        return;
    r.number("movieId", Reading::need(*data, "movieid"));
    r.number("laMovieTime", Reading::need(*data, "lamovietime"));
    r.number("eventMovieTime", Reading::need(*data, "eventmovietime"));
    const XmlElement& playback = Reading::need(*data, "playbacktime");
    r.number("totalPlaybackTime", Reading::need(playback, "total"));
    const char* const lists[][2] = {{"videoStreamPlayTimes", "zuvo:videostreamplaytimes"},
                                    {"audioStreamPlayTimes", "zuvo:audiostreamplaytimes"},
                                    {"timedTextStreamPlayTimes", "zuvo:timedtextstreamplaytimes"}};
    for (const auto& list : lists) {
        Json times = Json::array();
        if (const XmlElement* wrapper = playback.find(list[1])) {
            for (const XmlElement* entry : wrapper->all("zuvo:streamplaytime"))
                times.push_back(
                    {{"downloadableId", Reading::need(*entry, "downloadableid").raw},
                     {"playTime", Reading::numberJson(Reading::need(*entry, "playtime").text)}});
        }
        r.fields[list[0]] = times;
    }
}

void readLogblob(const XmlElement& message, Reading& r) {
    r.number("sequenceNumber", Reading::need(message, "sequencenumber"));
    r.text("logData", Reading::need(message, "logdata")); // already Base64
}

void readProvision(const XmlElement& message, Reading& r) {
    r.readRc(Reading::need(message, "provisiondata"));
}

void readEccLinkProvision(const XmlElement& message, Reading& r) {
    const XmlElement& data = Reading::need(message, "ecclinkprovisiondata");
    r.readRc(data);
    r.text("nasToken", Reading::need(data, "nastoken"));
}

void readWebApiEnroll(const XmlElement& message, Reading& r) {
    const XmlElement* data = r.open(Reading::need(message, "payload"), "webapienroll/payload",
                                    {"oauthRequestToken", "oauthConsumerKey"});
    if (!data)
        return;
    r.text("oauthRequestToken", Reading::need(*data, "oauthrequesttoken"));
    r.text("oauthConsumerKey", Reading::need(*data, "oauthconsumerkey"));
}

void readWebApiProxy(const XmlElement& message, Reading& r) {
    r.text("url", Reading::need(message, "url"));
}

/// One message: its element, the child that tells it apart from another
/// message with the same element (or null), its `zuvo build` name.
struct MessageReader {
    const char* element;
    const char* variant;
    const char* name;
    ReadBody read;
};

const MessageReader MESSAGE_READERS[] = {
    {"zuvo:ping", nullptr, "ping", readNothing},
    {"zuvo:preregister", nullptr, "prereg", readNothing},
    {"zuvo:authorization", nullptr, "authorization", readAuthorization},
    {"zuvo:register", "zuvo:idcookiereg", "tokenregister", readTokenRegister},
    {"zuvo:register", nullptr, "register", readRegister},
    {"zuvo:authenticationrenewal", nullptr, "authrenew", readAuthrenew},
    {"zuvo:playdata", nullptr, "playdata", readPlaydata},
    {"zuvo:logblob", nullptr, "logblob", readLogblob},
    {"zuvo:x509provision", nullptr, "x509provision", readProvision},
    {"zuvo:ecclinkprovision", nullptr, "ecclinkprovision", readEccLinkProvision},
    {"zuvo:npticketprovision", nullptr, "npticketprovision", readProvision},
    {"zuvo:webapienroll", nullptr, "webapienroll", readWebApiEnroll},
    {"zuvo:webapiproxy", nullptr, "webapiproxy", readWebApiProxy},
};

const MessageReader& findReader(const XmlElement& message) {
    for (const MessageReader& m : MESSAGE_READERS) {
        if (message.name == m.element && (!m.variant || message.find(m.variant)))
            return m;
    }
    malformed("unknown message element <" + message.name + ">");
}

/// Reads the header's versions and times into `r`.
void readHeader(const XmlElement& header, Reading& r) {
    r.text("softwareVersion", Reading::need(header, "softwareversion"));
    r.text("uiVersion", Reading::need(header, "uiversion"));
    const XmlElement* times =
        r.open(Reading::need(header, "payload"), "header/payload", {"serverTime", "clientTime"});
    if (!times)
        return;
    if (times->name != "zuvo:clientservertimes")
        malformed("the header payload holds <" + times->name + ">");
    r.number("serverTime", Reading::need(*times, "servertime"));
    r.number("clientTime", Reading::need(*times, "clienttime"));
}

} // namespace

Json readRequest(const XmlElement& root, const CipherContext& context) {
    if (root.name != "zuvo:request")
        malformed("the document element is <" + root.name + ">, not <zuvo:request>");
    if (root.children.size() != 2 || root.children[0].name != "zuvo:header")
        malformed("<zuvo:request> holds <zuvo:header> and one message element");

    const XmlElement& header = root.children[0];
    const bool encrypted = Reading::need(header, "payload").attribute("encrypted") != "false";
    Reading r(context, encrypted);
    readHeader(header, r);
    const XmlElement& messageElement = root.children[1];
    const MessageReader& reader = findReader(messageElement);
    reader.read(messageElement, r);

    const RequestMessage& message = findRequestMessage(reader.name);
    Json decoded = {{"request", message.name}, {"record", message.record}};
    // Another namespace (another host, another protocol version) does not
    // stop the reading, as it does not stop the library's parsers; it is
    // worth a note.
    const std::string expectedNamespace = zl::namespaceBase + zl::PROTOCOL_VERSION;
    if (root.attribute("xmlns:zuvo") != expectedNamespace)
        decoded["namespace"] =
            root.attribute("xmlns:zuvo") + " (this build writes " + expectedNamespace + ")";
    // The record's table checks the gathered fields and adds the defaults.
    Json fields;
    try {
        fields = message.normalize(r.fields);
    } catch (const UsageError& e) {
        malformed("<" + messageElement.name + ">: " + e.what());
    }
    for (const std::string& name : r.unread)
        fields.erase(name);
    decoded["fields"] = fields;
    if (message.takesRc && r.hasRc)
        decoded["rc"] = r.rc;
    // Each opened payload shows the values it carried.
    for (Json& payload : r.payloads) {
        if (!payload.contains("fields"))
            continue;
        Json values = Json::object();
        for (const Json& name : payload["fields"]) {
            const std::string key = name.get<std::string>();
            values[key] = key == "rc" ? Json(r.rc) : decoded["fields"][key];
        }
        payload["fields"] = values;
    }
    decoded["payloads"] = r.payloads;
    return decoded;
}

} // namespace zuvocli
