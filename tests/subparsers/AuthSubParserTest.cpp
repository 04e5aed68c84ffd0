#include "subparsers/CatalogueDocs.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const std::string TICKET = "TVRJQ0tFVC03MDE0Mzgz";

std::vector<unsigned char> bytes(const std::string& text) {
    return std::vector<unsigned char>(text.begin(), text.end());
}

TEST(AuthSubParser, FillsTheWholeCatalogueAndAccumulatesStreams) {
    const Context context = keyedContext();
    const AuthResponseData d = sampleCatalogue();
    const std::string doc = catalogueDoc(d, seal(context, ticketFragment(TICKET, "1893456000000")));
    Harness<AuthSubParser, AuthResponseData> h;
    const AuthResponseData& c = h.data;
    ASSERT_TRUE(h.parse(doc, context)) << h.out;
    EXPECT_EQ(h.out, "");
    EXPECT_EQ(c.method, "authorization");
    EXPECT_EQ(c.serverTime, 1000u);
    EXPECT_EQ(c.movieId, 70143836);
    EXPECT_EQ(c.movieTicket, bytes(TICKET));
    EXPECT_EQ(c.movieTicketExpiration, 1893456000000ull);

    // Every other field, through the document writer, which writes each
    // field of every record under its element name.
    ASSERT_EQ(catalogueDoc(c, ""), catalogueDoc(d, ""));

    // What a writer with the same mix-up as the parser would not show.
    const VideoDownloadableData& sd = c.videoDownloadables[0];
    EXPECT_EQ(sd.resolutionWidth, 720u);
    EXPECT_EQ(sd.pixelAspectWidth, 32u);
    EXPECT_EQ(sd.downloadUrls.at(1).cdnId, 12);
    EXPECT_EQ(c.videoDownloadables[1].burnedInSubtitles->iso6391, "de");
    EXPECT_EQ(c.timedTextTracks[1].type, TimedTextTrackData::TYPE_CLOSED_CAPTIONS);
    EXPECT_EQ(c.trickPlays[0].trickPlayInterval, -10000);

    // Parsed again, streams and tracks accumulate; each "cdns" and
    // "streamingparams" list replaces the previous one.
    ASSERT_TRUE(h.parse(doc, context));
    EXPECT_EQ(c.videoDownloadables.size(), 4u);
    EXPECT_EQ(c.trickPlays.size(), 2u);
    ASSERT_EQ(c.audioTracks.size(), 4u);
    EXPECT_EQ(c.audioTracks[2].audioDownloadables.size(), 2u);
    EXPECT_EQ(c.cdns.size(), 3u);
    EXPECT_EQ(c.streamingParams.size(), 2u);

    // An authorization without a movie id is refused and keeps the old one.
    EXPECT_FALSE(h.parse(responseDoc("", block(2, "authorization", ""))));
    EXPECT_EQ(h.out, rejection("AuthSubParser", "authorization", "result response <start> "));
    EXPECT_EQ(c.movieId, 70143836);
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
        {"CDN ids keep their low 8 bits",
         block(3, "cdns",
               block(4, "cdn", el(5, "cdnid", "300")) + block(4, "cdn", el(5, "cdnid", "256"))) +
             block(3, "trickplay", withUrls(url3(el(5, "cdnid", "300")))),
         [](const AuthResponseData& c) {
             ASSERT_EQ(c.cdns.size(), 2u);
             EXPECT_EQ(c.cdns[0].id, 44);
             EXPECT_EQ(c.cdns[1].id, 0);
             EXPECT_EQ(c.trickPlays.at(0).downloadUrls.at(0).cdnId, 44);
         }},
        {"burned-in subtitles without a language take the last one read",
         block(3, "audiotrack", english) +
             block(3, "videodownloadable", block(4, "burnedinsubtitles", "")),
         [](const AuthResponseData& c) {
             ASSERT_TRUE(c.videoDownloadables.at(0).burnedInSubtitles);
             EXPECT_EQ(c.videoDownloadables[0].burnedInSubtitles->iso6392, "eng");
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
        Harness<AuthSubParser, AuthResponseData> h;
        ASSERT_TRUE(h.parse(responseDoc("", block(2, "authorization", q.body, " movie_id=\"1\""))))
            << h.out;
        q.check(h.data);
    }
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

/// Parses an authorization holding only `payload` into `c`.
bool parsePayload(AuthResponseData& c, const std::string& payload, const Context& context,
                  std::string& out) {
    return parseWith<AuthSubParser>(
        c, responseDoc("", block(2, "authorization", el(3, "payload", payload), " movie_id=\"1\"")),
        context, out);
}

TEST(AuthSubParser, PayloadAlwaysGoesThroughTheCipherContextAndMustOpen) {
    ScriptedContext* scripted = new ScriptedContext(ticketFragment("bXQ=", "42"));
    const Context context(scripted);
    AuthResponseData c;
    std::string out;
    ASSERT_TRUE(parsePayload(c, "opaque sealed text", context, out)) << out;
    EXPECT_EQ(scripted->handed, std::vector<std::string>{"opaque sealed text"});
    EXPECT_EQ(c.movieTicket, bytes("bXQ="));
    EXPECT_EQ(c.movieTicketExpiration, 42u);

    // A context with encryption off still decrypts: the key-less stand-in
    // is the identity over Base64.
    ASSERT_TRUE(
        parsePayload(c, base64(ticketFragment("eA==", "1")), Context(new krel::KrelContext()), out))
        << out;
    EXPECT_EQ(c.movieTicket, bytes("eA=="));

    // Text that does not open is rejected or thrown and sets no ticket.
    c = AuthResponseData();
    EXPECT_FALSE(parsePayload(c, "c2VhbGVk", Context(), out));
    EXPECT_EQ(out, rejection("AuthSubParser", "payload",
                             "payload authorization result response <start> "));

    const std::string sealed = seal(keyedContext(1), ticketFragment("t", "1"));
    EXPECT_THROW(parsePayload(c, sealed, keyedContext(2), out), std::runtime_error);
    EXPECT_TRUE(c.movieTicket.empty());
}

} // namespace
