// Response documents laid out as a server writes them: prefixed names, tab
// indentation, one element per line.

#include "ResponseGenerator.h"

#include <QRXClient/Base64.h>

#include <vector>

namespace zuvobench {
namespace {

const char kNamespace[] = "http://www.zuvo.example/qrx/zuvo/2.7";

class Writer {
public:
    void open(const std::string& name, const std::string& attrs = "") {
        indent();
        out_ += "<zuvo:" + name + attrs + ">\n";
        ++depth_;
    }
    void close(const std::string& name) {
        --depth_;
        indent();
        out_ += "</zuvo:" + name + ">\n";
    }
    void leaf(const std::string& name, const std::string& text, const std::string& attrs = "") {
        indent();
        out_ += "<zuvo:" + name + attrs + ">" + text + "</zuvo:" + name + ">\n";
    }
    void empty(const std::string& name) {
        indent();
        out_ += "<zuvo:" + name + "/>\n";
    }
    std::string& text() { return out_; }

private:
    void indent() { out_.append(static_cast<std::size_t>(depth_), '\t'); }
    std::string out_;
    int depth_ = 0;
};

// A small deterministic sequence for ids and sizes.
class Sequence {
public:
    unsigned long long next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return state_ >> 33;
    }

private:
    unsigned long long state_ = 42;
};

std::string seal(krel::KrelContext& context, const std::string& fragment) {
    const std::vector<unsigned char> sealed =
        context.encrypt(std::vector<unsigned char>(fragment.begin(), fragment.end()));
    return std::string(sealed.begin(), sealed.end());
}

void header(Writer& w, krel::KrelContext& context) {
    w.open("responseheader");
    w.leaf("protocolversion", "2.7");
    w.open("status");
    w.leaf("success", "true");
    w.leaf("code", "0");
    w.leaf("usertext", "OK");
    w.close("status");
    w.open("parameters");
    w.leaf("retrycontrol", "3");
    w.leaf("mintimeout", "30");
    w.leaf("lowfrequencypollinterval", "86400");
    w.leaf("mediumfrequencypollinterval", "3600");
    w.leaf("highfrequencypollinterval", "60");
    w.leaf("hightomediumpollswitchinterval", "600");
    w.leaf("mediumtolowpollswitchinterval", "7200");
    w.leaf("loginterval", "900");
    w.leaf("loglevel", "warning");
    w.open("loguploads");
    w.empty("application");
    w.empty("crash");
    w.close("loguploads");
    w.leaf("supportphone", "+1-555-0100");
    w.close("parameters");
    w.leaf("payload",
           seal(context, "<zuvo:servertime>1700000000</zuvo:servertime>"
                         "<zuvo:clienttime>1700000042</zuvo:clienttime>"),
           " encrypted=\"true\"");
    w.close("responseheader");
}

void language(Writer& w, const char* name, const char* code) {
    w.open("language");
    w.leaf("displaytext", name);
    w.leaf("iso639-1", code);
    w.leaf("iso639-2", std::string(code) + "g");
    w.leaf("iso639-3", std::string(code) + "g");
    w.close("language");
}

void downloadUrls(Writer& w, Sequence& seq, const CatalogueShape& s, const std::string& id) {
    w.open("downloadurls");
    for (int i = 0; i < s.urlsPerStream; ++i) {
        const int cdn = i % s.cdns + 1;
        w.open("downloadurl");
        w.leaf("expiration", std::to_string(1700086400ULL + seq.next() % 1000));
        w.leaf("cdnid", std::to_string(cdn));
        w.leaf("url", "http://cdn" + std::to_string(cdn) + ".media.example/stream/" + id + "?t=" +
                          std::to_string(seq.next()) + "&amp;sig=" + std::to_string(seq.next()));
        w.close("downloadurl");
    }
    w.close("downloadurls");
}

void pair(Writer& w, const char* outer, const std::string& width, const std::string& height) {
    w.open(outer);
    w.leaf("width", width);
    w.leaf("height", height);
    w.close(outer);
}

const char* const kVideoProfiles[] = {"playready-h264mpl30-piff", "playready-h264mpl31-piff",
                                      "playready-h264hpl40-piff", "playready-vc1ap-asf"};
const char* const kAudioProfiles[] = {"heaac-2-piff", "ddplus-5.1-piff", "playready-wma-2-asf"};

} // namespace

std::string authorizationResponse(const CatalogueShape& s, krel::KrelContext& context) {
    Sequence seq;
    Writer w;
    w.text() = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    w.open("response", std::string(" xmlns:zuvo=\"") + kNamespace + "\" version=\"2.7\"");
    header(w, context);
    w.open("result", " method=\"authorization\"");
    w.open("authorization", " movie_id=\"70012345\"");

    w.open("cdns");
    for (int i = 1; i <= s.cdns; ++i) {
        w.open("cdn");
        w.leaf("name", "cdn" + std::to_string(i) + ".media.example");
        w.leaf("cdnid", std::to_string(i));
        w.leaf("rank", std::to_string(i));
        w.leaf("weight", std::to_string(100 / i));
        w.close("cdn");
    }
    w.close("cdns");

    for (int v = 0; v < s.videoDownloadables; ++v) {
        const std::string id = "v" + std::to_string(100000 + v);
        w.open("videodownloadable");
        w.leaf("downloadableid", id);
        w.leaf("size", std::to_string(100000000 + seq.next() % 900000000));
        w.leaf("bitrate", std::to_string(500 + 250 * (v % 16)));
        if (v % 3 == 0)
            w.leaf("hd", "true");
        w.leaf("videoprofile", kVideoProfiles[v % 4]);
        pair(w, "resolution", v % 3 == 0 ? "1920" : "1280", v % 3 == 0 ? "1080" : "720");
        pair(w, "pixelaspect", "1", "1");
        if (v % 5 == 4) {
            w.open("burnedinsubtitles");
            language(w, "Deutsch", "de");
            w.close("burnedinsubtitles");
        }
        downloadUrls(w, seq, s, id);
        w.close("videodownloadable");
    }

    for (int a = 0; a < s.audioTracks; ++a) {
        w.open("audiotrack");
        language(w, a % 2 ? "English" : "Francais", a % 2 ? "en" : "fr");
        if (a == 0)
            w.empty("isnative");
        for (int d = 0; d < s.audioDownloadablesPerTrack; ++d) {
            const std::string id = "a" + std::to_string(200000 + a * 10 + d);
            w.open("audiodownloadable");
            w.leaf("downloadableid", id);
            w.leaf("size", std::to_string(10000000 + seq.next() % 90000000));
            w.leaf("bitrate", std::to_string(64 + 64 * d));
            w.leaf("audioprofile", kAudioProfiles[d % 3]);
            downloadUrls(w, seq, s, id);
            w.close("audiodownloadable");
        }
        w.close("audiotrack");
    }

    for (int t = 0; t < s.timedTextTracks; ++t) {
        const std::string id = "t" + std::to_string(300000 + t);
        w.open("timedtexttrack");
        w.leaf("timedtexttype", t % 2 ? "closedcaptions" : "subtitles");
        language(w, "Espanol", "es");
        w.open("timedtextdownloadable");
        w.leaf("downloadableid", id);
        w.leaf("size", std::to_string(10000 + seq.next() % 90000));
        w.leaf("timedtextprofile", "simplesdh");
        downloadUrls(w, seq, s, id);
        w.close("timedtextdownloadable");
        w.close("timedtexttrack");
    }

    for (int p = 0; p < s.trickPlays; ++p) {
        const std::string id = "p" + std::to_string(400000 + p);
        w.open("trickplay");
        w.leaf("trickplayid", std::to_string(400000 + p));
        w.leaf("trickplayinterval", "10");
        w.leaf("size", std::to_string(1000000 + seq.next() % 9000000));
        pair(w, "resolution", "320", "180");
        pair(w, "pixelaspect", "1", "1");
        downloadUrls(w, seq, s, id);
        w.close("trickplay");
    }

    w.open("streamingparams");
    for (int i = 0; i < s.streamingParams; ++i) {
        w.open("streamingparam");
        w.leaf("name", "param" + std::to_string(i));
        w.leaf("value", std::to_string(seq.next()));
        w.close("streamingparam");
    }
    w.close("streamingparams");

    const std::string ticket = Velmora::QRXClient::Base64::encode(std::string(96, '\x5a'));
    w.leaf("payload",
           seal(context, "<zuvo:mticket expiration=\"1700172800\">" + ticket + "</zuvo:mticket>"));
    w.close("authorization");
    w.close("result");
    w.close("response");
    return w.text();
}

CatalogueShape shapeForSize(std::size_t bytes, krel::KrelContext& context) {
    for (int units = 1;; units += units < 16 ? 1 : units / 8) {
        CatalogueShape s;
        s.cdns = units < 4 ? 1 : 4;
        s.urlsPerStream = s.cdns;
        s.videoDownloadables = units;
        s.audioTracks = 1 + units / 8;
        s.audioDownloadablesPerTrack = 2;
        s.timedTextTracks = units / 6;
        s.trickPlays = units / 10;
        s.streamingParams = 2 + units / 20;
        if (authorizationResponse(s, context).size() >= bytes)
            return s;
    }
}

namespace {

std::string envelope(krel::KrelContext& context, const char* method, const std::string& body) {
    Writer w;
    w.text() = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    w.open("response", std::string(" xmlns:zuvo=\"") + kNamespace + "\" version=\"2.7\"");
    header(w, context);
    w.open("result", std::string(" method=\"") + method + "\"");
    w.text() += body;
    w.close("result");
    w.close("response");
    return w.text();
}

std::string ticketPayload(krel::KrelContext& context) {
    return seal(context, "<zuvo:cticket expiration=\"1800000000\">" +
                             Velmora::QRXClient::Base64::encode(std::string(64, 'c')) +
                             "</zuvo:cticket><zuvo:rs>" +
                             Velmora::QRXClient::Base64::encode(std::string(32, 'r')) +
                             "</zuvo:rs>");
}

} // namespace

std::string preregResponse(krel::KrelContext& context) {
    return envelope(context, "preregister",
                    "\t\t<zuvo:regcode>ABC123</zuvo:regcode>\n"
                    "\t\t<zuvo:retryinterval>5</zuvo:retryinterval>\n"
                    "\t\t<zuvo:totaltime>600</zuvo:totaltime>\n");
}

std::string registrationResponse(krel::KrelContext& context) {
    return envelope(context, "register",
                    "\t\t<zuvo:registrationdata>\n\t\t\t<zuvo:userid>u-1234</zuvo:userid>\n"
                    "\t\t\t<zuvo:userdescription>Living room</zuvo:userdescription>\n"
                    "\t\t\t<zuvo:payload>" +
                        ticketPayload(context) + "</zuvo:payload>\n\t\t</zuvo:registrationdata>\n");
}

std::string renewalResponse(krel::KrelContext& context) {
    return envelope(context, "authenticationrenewal",
                    "\t\t<zuvo:authenticationrenewal>\n\t\t\t<zuvo:payload>" +
                        ticketPayload(context) +
                        "</zuvo:payload>\n\t\t</zuvo:authenticationrenewal>\n");
}

} // namespace zuvobench
