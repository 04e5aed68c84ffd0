#include "subparsers/CatalogueDocs.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

typedef std::vector<unsigned char> Bytes;

const std::string TICKET = "TVRJQ0tFVC03MDE0Mzgz";

Bytes bytes(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

UrlData url(unsigned short cdn, const std::string& path) {
    return UrlData{1893456000000ull + cdn, cdn, "http://cdn" + num(cdn) + ".example/" + path};
}

LanguageData lang(const std::string& text, const std::string& a, const std::string& b) {
    return LanguageData{text, a, b, b};
}

// A title as the server offers it: three CDNs, two video streams (one in HD
// with burned-in subtitles), two audio tracks, two timed-text tracks, a
// trick-play stream and streaming parameters.
AuthResponseData sampleCatalogue() {
    AuthResponseData c;
    c.movieId = 70143836;
    c.cdns = {{"alpha", 11, 1, 60}, {"beta", 12, 2, 30}, {"gamma", 200, 3, 10}};

    VideoDownloadableData sd;
    sd.downloadableId = "v-1001";
    sd.size = 812345678ull;
    sd.profile = PROFILE_PLAYREADY_H264MPL30_PIFF;
    sd.bitrate = 1750;
    sd.resolutionWidth = 720;
    sd.resolutionHeight = 480;
    sd.pixelAspectWidth = 32;
    sd.pixelAspectHeight = 27;
    sd.downloadUrls = {url(11, "v1001?t=a"), url(12, "v1001?t=b")};
    VideoDownloadableData hd = sd;
    hd.downloadableId = "v-1002";
    hd.size = 5368709120ull;
    hd.profile = PROFILE_PLAYREADY_H264HPL40_PIFF;
    hd.bitrate = 4800;
    hd.resolutionWidth = 1920;
    hd.resolutionHeight = 1080;
    hd.pixelAspectWidth = hd.pixelAspectHeight = 1;
    hd.hd = true;
    hd.burnedInSubtitles.reset(new LanguageData(lang("Deutsch", "de", "deu")));
    hd.downloadUrls = {url(200, "v1002")};
    c.videoDownloadables = {sd, hd};

    AudioTrackData english;
    english.language = lang("English", "en", "eng");
    english.isNative = true;
    AudioDownloadableData stereo;
    stereo.downloadableId = "a-2001";
    stereo.size = 64000000;
    stereo.profile = PROFILE_HEAAC_2_PIFF;
    stereo.bitrate = 96;
    stereo.downloadUrls = {url(11, "a2001")};
    AudioDownloadableData surround = stereo;
    surround.downloadableId = "a-2002";
    surround.profile = PROFILE_DDPLUS_5_1_PIFF;
    surround.bitrate = 384;
    english.audioDownloadables = {stereo, surround};
    AudioTrackData french;
    french.language = lang("Francais", "fr", "fra");
    french.audioDownloadables = {stereo};
    c.audioTracks = {english, french};

    TimedTextDownloadableData sdh;
    sdh.downloadableId = "t-3001";
    sdh.size = 52000;
    sdh.profile = PROFILE_SIMPLESDH;
    sdh.downloadUrls = {url(12, "t3001")};
    TimedTextTrackData subtitles;
    subtitles.type = TimedTextTrackData::TYPE_SUBTITLES;
    subtitles.language = lang("Espanol", "es", "spa");
    subtitles.timedTextDownloadables = {sdh};
    TimedTextTrackData captions = subtitles;
    captions.type = TimedTextTrackData::TYPE_CLOSED_CAPTIONS;
    captions.language = english.language;
    c.timedTextTracks = {subtitles, captions};

    TrickPlayData trick;
    trick.trickPlayId = 9;
    trick.trickPlayInterval = -10000;
    trick.size = 2400000;
    trick.resolutionWidth = 240;
    trick.resolutionHeight = 135;
    trick.pixelAspectWidth = trick.pixelAspectHeight = 1;
    trick.downloadUrls = {url(11, "bif"), url(200, "bif")};
    c.trickPlays = {trick};

    c.streamingParams = {{"minbuffer", "4000"}, {"maxbitrate", ""}};
    return c;
}

bool parseAuth(AuthResponseData& data, const std::string& doc, const Context& context,
               std::string& out) {
    CoutCapture capture;
    ExpatParser expat;
    AuthSubParser parser(expat, data);
    const bool ok = parser.parse(doc, context);
    out = capture.text();
    return ok;
}

TEST(AuthSubParser, FillsTheWholeCatalogue) {
    const Context context = keyedContext();
    const AuthResponseData described = sampleCatalogue();
    const std::string doc =
        catalogueDoc(described, seal(context, ticketFragment(TICKET, "1893456000000")));
    AuthResponseData c;
    std::string out;
    ASSERT_TRUE(parseAuth(c, doc, context, out)) << out;
    EXPECT_EQ(out, "");

    EXPECT_EQ(c.method, "authorization");
    EXPECT_EQ(c.serverTime, 1000u);
    EXPECT_EQ(c.movieId, 70143836);
    EXPECT_EQ(c.movieTicket, bytes(TICKET));
    EXPECT_EQ(c.movieTicketExpiration, 1893456000000ull);

    ASSERT_EQ(c.cdns.size(), 3u);
    EXPECT_EQ(c.cdns[2].name, "gamma");
    EXPECT_EQ(c.cdns[2].id, 200);
    EXPECT_EQ(c.cdns[2].rank, 3u);
    EXPECT_EQ(c.cdns[2].weight, 10u);

    ASSERT_EQ(c.videoDownloadables.size(), 2u);
    const VideoDownloadableData& sd = c.videoDownloadables[0];
    EXPECT_EQ(sd.downloadableId, "v-1001");
    EXPECT_EQ(sd.size, 812345678ull);
    EXPECT_EQ(sd.profile, PROFILE_PLAYREADY_H264MPL30_PIFF);
    EXPECT_EQ(sd.bitrate, 1750u);
    EXPECT_EQ(sd.resolutionWidth, 720u);
    EXPECT_EQ(sd.resolutionHeight, 480u);
    EXPECT_EQ(sd.pixelAspectWidth, 32u);
    EXPECT_EQ(sd.pixelAspectHeight, 27u);
    EXPECT_FALSE(sd.hd);
    EXPECT_FALSE(sd.burnedInSubtitles);
    ASSERT_EQ(sd.downloadUrls.size(), 2u);
    EXPECT_EQ(sd.downloadUrls[1].expiration, 1893456000012ull);
    EXPECT_EQ(sd.downloadUrls[1].cdnId, 12);
    EXPECT_EQ(sd.downloadUrls[1].url, "http://cdn12.example/v1001?t=b");
    const VideoDownloadableData& hd = c.videoDownloadables[1];
    EXPECT_EQ(hd.size, 5368709120ull);
    EXPECT_TRUE(hd.hd);
    ASSERT_TRUE(hd.burnedInSubtitles);
    EXPECT_EQ(hd.burnedInSubtitles->displayText, "Deutsch");
    EXPECT_EQ(hd.burnedInSubtitles->iso6391, "de");
    EXPECT_EQ(hd.burnedInSubtitles->iso6393, "deu");

    ASSERT_EQ(c.audioTracks.size(), 2u);
    EXPECT_EQ(c.audioTracks[0].language.iso6392, "eng");
    EXPECT_TRUE(c.audioTracks[0].isNative);
    EXPECT_FALSE(c.audioTracks[1].isNative);
    ASSERT_EQ(c.audioTracks[0].audioDownloadables.size(), 2u);
    const AudioDownloadableData& surround = c.audioTracks[0].audioDownloadables[1];
    EXPECT_EQ(surround.downloadableId, "a-2002");
    EXPECT_EQ(surround.size, 64000000u);
    EXPECT_EQ(surround.bitrate, 384u);
    EXPECT_EQ(surround.profile, PROFILE_DDPLUS_5_1_PIFF);
    ASSERT_EQ(surround.downloadUrls.size(), 1u);
    EXPECT_EQ(surround.downloadUrls[0].url, "http://cdn11.example/a2001");

    ASSERT_EQ(c.timedTextTracks.size(), 2u);
    EXPECT_EQ(c.timedTextTracks[0].type, TimedTextTrackData::TYPE_SUBTITLES);
    EXPECT_EQ(c.timedTextTracks[1].type, TimedTextTrackData::TYPE_CLOSED_CAPTIONS);
    EXPECT_EQ(c.timedTextTracks[0].language.displayText, "Espanol");
    ASSERT_EQ(c.timedTextTracks[0].timedTextDownloadables.size(), 1u);
    EXPECT_EQ(c.timedTextTracks[0].timedTextDownloadables[0].profile, PROFILE_SIMPLESDH);
    EXPECT_EQ(c.timedTextTracks[0].timedTextDownloadables[0].size, 52000u);

    ASSERT_EQ(c.trickPlays.size(), 1u);
    const TrickPlayData& trick = c.trickPlays[0];
    EXPECT_EQ(trick.trickPlayId, 9u);
    EXPECT_EQ(trick.trickPlayInterval, -10000);
    EXPECT_EQ(trick.size, 2400000u);
    EXPECT_EQ(trick.resolutionWidth, 240u);
    EXPECT_EQ(trick.resolutionHeight, 135u);
    EXPECT_EQ(trick.pixelAspectHeight, 1u);
    ASSERT_EQ(trick.downloadUrls.size(), 2u);
    EXPECT_EQ(trick.downloadUrls[1].cdnId, 200);

    ASSERT_EQ(c.streamingParams.size(), 2u);
    EXPECT_EQ(c.streamingParams[0].name, "minbuffer");
    EXPECT_EQ(c.streamingParams[0].value, "4000");
    EXPECT_EQ(c.streamingParams[1].value, "");

    // Everything else: the parsed catalogue writes the same document again.
    EXPECT_EQ(catalogueDoc(c, ""), catalogueDoc(described, ""));
}

TEST(AuthSubParser, RecordsAccumulateAndListsAreReplaced) {
    const Context context = keyedContext();
    const std::string doc = catalogueDoc(sampleCatalogue(), seal(context, ticketFragment("t", "")));
    AuthResponseData c;
    ExpatParser expat;
    AuthSubParser parser(expat, c);
    ASSERT_TRUE(parser.parse(doc, context));
    ASSERT_TRUE(parser.parse(doc, context));
    EXPECT_EQ(c.videoDownloadables.size(), 4u);
    EXPECT_EQ(c.audioTracks.size(), 4u);
    EXPECT_EQ(c.trickPlays.size(), 2u);
    EXPECT_EQ(c.audioTracks[2].audioDownloadables.size(), 2u);
    EXPECT_EQ(c.cdns.size(), 3u);
    EXPECT_EQ(c.streamingParams.size(), 2u);
}

// Bodies written by hand, inside "authorization" (depth 3).
std::string url3(const std::string& lines) {
    return block(4, "downloadurl", lines);
}
std::string withUrls(const std::string& lines) {
    return block(3, "downloadurls", lines);
}

struct Quirk {
    const char* what;
    std::string body;
    std::function<void(const AuthResponseData&)> check;
};

TEST(AuthSubParser, ObservableQuirks) {
    const std::string english = languageXml(4, lang("English", "en", "eng"));
    const Quirk quirks[] = {
        {"any hd element means hd", block(3, "videodownloadable", el(4, "hd", "false")),
         [](const AuthResponseData& c) { EXPECT_TRUE(c.videoDownloadables.at(0).hd); }},
        {"timed-text type is case-sensitive; other text keeps the type",
         block(3, "timedtexttrack", el(4, "timedtexttype", "Subtitles")) +
             block(3, "timedtexttrack",
                   el(4, "timedtexttype", "closedcaptions") + el(4, "timedtexttype", "none")),
         [](const AuthResponseData& c) {
             EXPECT_EQ(c.timedTextTracks.at(0).type, TimedTextTrackData::TYPE_UNSET);
             EXPECT_EQ(c.timedTextTracks.at(1).type, TimedTextTrackData::TYPE_CLOSED_CAPTIONS);
         }},
        {"a second cdns list replaces the first; ids keep their low 8 bits",
         block(3, "cdns", block(4, "cdn", el(5, "name", "old"))) +
             block(3, "cdns",
                   block(4, "cdn", el(5, "name", "a") + el(5, "cdnid", "300")) +
                       block(4, "cdn", el(5, "name", "b") + el(5, "cdnid", "256"))) +
             block(3, "videodownloadable", withUrls(url3(el(5, "cdnid", "300")))),
         [](const AuthResponseData& c) {
             ASSERT_EQ(c.cdns.size(), 2u);
             EXPECT_EQ(c.cdns[0].name, "a");
             EXPECT_EQ(c.cdns[0].id, 44);
             EXPECT_EQ(c.cdns[1].id, 0);
             EXPECT_EQ(c.videoDownloadables.at(0).downloadUrls.at(0).cdnId, 44);
         }},
        {"a second streamingparams list replaces the first",
         block(3, "streamingparams", block(4, "streamingparam", el(5, "name", "x"))) +
             block(3, "streamingparams", ""),
         [](const AuthResponseData& c) { EXPECT_TRUE(c.streamingParams.empty()); }},
        {"burned-in subtitles without a language take the last one read",
         block(3, "audiotrack", english) +
             block(3, "videodownloadable", block(4, "burnedinsubtitles", "")),
         [](const AuthResponseData& c) {
             ASSERT_TRUE(c.videoDownloadables.at(0).burnedInSubtitles);
             EXPECT_EQ(c.videoDownloadables[0].burnedInSubtitles->iso6392, "eng");
         }},
        {"burned-in subtitles may hold the language children directly",
         block(3, "videodownloadable",
               block(4, "burnedinsubtitles", el(5, "displaytext", "Dansk"))),
         [](const AuthResponseData& c) {
             EXPECT_EQ(c.videoDownloadables.at(0).burnedInSubtitles->displayText, "Dansk");
         }},
        {"size goes to the stream that ends next, and is reset at each stream's start",
         block(3, "trickplay", block(4, "resolution", el(5, "size", "77"))) + el(3, "size", "5") +
             block(3, "videodownloadable", ""),
         [](const AuthResponseData& c) {
             EXPECT_EQ(c.trickPlays.at(0).size, 77u);
             EXPECT_EQ(c.videoDownloadables.at(0).size, 0u);
         }},
        {"a downloadurl repeats the previous url, expiration and cdnid it lacks",
         block(3, "audiotrack",
               block(4, "audiodownloadable",
                     withUrls(
                         url3(el(5, "expiration", "9") + el(5, "cdnid", "3") + el(5, "url", "u")) +
                         url3("")))),
         [](const AuthResponseData& c) {
             const std::vector<UrlData>& urls =
                 c.audioTracks.at(0).audioDownloadables.at(0).downloadUrls;
             ASSERT_EQ(urls.size(), 2u);
             EXPECT_EQ(urls[1].url, "u");
             EXPECT_EQ(urls[1].expiration, 9u);
             EXPECT_EQ(urls[1].cdnId, 3);
         }},
        {"a downloadurl outside downloadurls joins the current list",
         block(3, "trickplay", withUrls(url3(el(5, "url", "a"))) + url3(el(5, "url", "b"))),
         [](const AuthResponseData& c) { EXPECT_EQ(c.trickPlays.at(0).downloadUrls.size(), 2u); }},
        {"a stream inside another leaves its values to the enclosing one too",
         block(
             3, "trickplay",
             block(4, "videodownloadable", el(5, "size", "8") + withUrls(url3(el(6, "url", "v"))))),
         [](const AuthResponseData& c) {
             EXPECT_EQ(c.videoDownloadables.at(0).downloadUrls.size(), 1u);
             ASSERT_EQ(c.trickPlays.at(0).downloadUrls.size(), 1u);
             EXPECT_EQ(c.trickPlays[0].downloadUrls[0].url, "v");
             EXPECT_EQ(c.trickPlays[0].size, 8u);
         }},
        {"a track inside another: the outer one holds the inner one's streams",
         block(3, "audiotrack",
               block(4, "audiotrack",
                     english + block(5, "audiodownloadable", el(6, "downloadableid", "a")))),
         [](const AuthResponseData& c) {
             ASSERT_EQ(c.audioTracks.size(), 2u);
             EXPECT_EQ(c.audioTracks[1].language.displayText, "English");
             ASSERT_EQ(c.audioTracks[1].audioDownloadables.size(), 1u);
             EXPECT_EQ(c.audioTracks[1].audioDownloadables[0].downloadableId, "a");
         }},
    };
    for (const Quirk& q : quirks) {
        SCOPED_TRACE(q.what);
        AuthResponseData c;
        std::string out;
        ASSERT_TRUE(parseAuth(c,
                              responseDoc("", block(2, "authorization", q.body, " movie_id=\"1\"")),
                              Context(), out))
            << out;
        q.check(c);
    }
}

TEST(AuthSubParser, RejectsAnAuthorizationWithoutMovieId) {
    AuthResponseData c;
    c.movieId = 5;
    std::string out;
    EXPECT_FALSE(parseAuth(c, responseDoc("", block(2, "authorization", "")), Context(), out));
    EXPECT_EQ(out, rejection("AuthSubParser", "authorization", "result response <start> "));
    EXPECT_EQ(c.movieId, 5);
}

// Decrypts to a fixed fragment and keeps what it was handed.
class ScriptedContext : public krel::KrelContext {
public:
    explicit ScriptedContext(const std::string& plain) : plain(plain) {}
    std::vector<unsigned char> decrypt(const std::vector<unsigned char>& cipher) override {
        handed.push_back(std::string(cipher.begin(), cipher.end()));
        return bytes(plain);
    }
    std::string plain;
    std::vector<std::string> handed;
};

std::string payloadDoc(const std::string& payload) {
    return responseDoc("", block(2, "authorization", el(3, "payload", payload), " movie_id=\"1\""));
}

TEST(AuthSubParser, PayloadAlwaysGoesThroughTheCipherContext) {
    ScriptedContext* scripted = new ScriptedContext(ticketFragment("bXQ=", "42"));
    const Context context(scripted);
    AuthResponseData c;
    std::string out;
    ASSERT_TRUE(parseAuth(c, payloadDoc("opaque sealed text"), context, out)) << out;
    EXPECT_EQ(scripted->handed, std::vector<std::string>{"opaque sealed text"});
    EXPECT_EQ(c.movieTicket, bytes("bXQ="));
    EXPECT_EQ(c.movieTicketExpiration, 42u);

    // A context with encryption off still has to decrypt: the stand-in
    // cannot without a key, even for Base64 text.
    EXPECT_THROW(parseAuth(c, payloadDoc(base64(ticketFragment("x", "1"))),
                           Context(new krel::KrelContext()), out),
                 std::runtime_error);
}

TEST(AuthSubParser, UndecryptablePayloads) {
    AuthResponseData c;
    std::string out;
    EXPECT_FALSE(parseAuth(c, payloadDoc("c2VhbGVk"), Context(), out));
    EXPECT_EQ(out, rejection("AuthSubParser", "payload",
                             "payload authorization result response <start> "));

    const std::string sealed = seal(keyedContext(1), ticketFragment("t", "1"));
    EXPECT_THROW(parseAuth(c, payloadDoc(sealed), keyedContext(2), out), std::runtime_error);
    EXPECT_TRUE(c.movieTicket.empty());
}

} // namespace
