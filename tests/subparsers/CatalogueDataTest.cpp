// Content profile identifiers, and the reset and move rules of the catalogue
// records.

#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <regex>
#include <sstream>
#include <type_traits>
#include <utility>

namespace {

using namespace velmora::zuvolib;

// The identifiers of the values 0 to 20 in order; "-" marks 10 and 19, which have none.
const char* const IDENTIFIERS =
    "wmdrm10-wmv3-asf wmdrm10-vc1ap-asf playready-vc1ap-asf bd-h264-m2ts sessiondh1-mpeg4p2-asf "
    "playready-mpeg4p2-piff playready-h264bpl30-piff playready-h264mpl30-piff "
    "playready-h264mpl31-piff playready-h264hpl40-piff - wmdrm10-wma-2-asf playready-wma-2-asf "
    "bd-ac3-2-m2ts sessiondh1-oggvorbis-2-asf ddplus-5.1-asf ddplus-5.1-piff heaac-2-piff "
    "playready-oggvorbis-2-piff - simplesdh";

TEST(ContentProfile, IdentifiersConvertBothWays) {
    std::istringstream in(IDENTIFIERS);
    std::string identifier;
    int value = 0;
    for (; in >> identifier; ++value) {
        EXPECT_EQ(identifier == "-" ? "" : identifier,
                  profileToString(static_cast<ContentProfile>(value)));
        EXPECT_EQ(identifier == "-" ? PROFILE_UNKNOWN : value, stringToProfile(identifier));
    }
    EXPECT_EQ(21, value);
}

TEST(ContentProfile, AnythingElseHasNoCounterpart) {
    for (const std::string& text :
         {std::string(""), std::string("WMDRM10-WMV3-ASF"), std::string(" simplesdh"),
          std::string("simplesdh "), std::string("ddplus-5_1-asf"), std::string("ddplus-5.1"),
          std::string("simplesdh\0x", 11), std::string("zzz")})
        EXPECT_EQ(PROFILE_UNKNOWN, stringToProfile(text)) << '"' << text << '"';
    for (int value : {21, 1000, -1, -2147483647 - 1})
        EXPECT_EQ("", profileToString(static_cast<ContentProfile>(value))) << value;
}

// The README's table of wire names is what integrators read: every row must
// be the library's, every named value must have a row, and each enumerator
// must be its wire name upper-cased with "_" for anything not alphanumeric.
TEST(ContentProfile, ReadmeTableIsTheLibrarys) {
    std::ifstream readme(ZUVO_README);
    ASSERT_TRUE(readme) << ZUVO_README;
    const std::regex row(R"(^\| (\d+) \| `(PROFILE_\w+)` \| `([^`]+)` \|$)");
    std::string line;
    std::smatch m;
    int rows = 0;
    while (std::getline(readme, line)) {
        if (!std::regex_match(line, m, row))
            continue;
        ++rows;
        const int value = std::stoi(m[1]);
        const std::string identifier = m[3];
        EXPECT_EQ(identifier, profileToString(static_cast<ContentProfile>(value))) << line;
        std::string enumerator = "PROFILE_";
        for (char c : identifier)
            enumerator += std::isalnum(static_cast<unsigned char>(c))
                              ? static_cast<char>(std::toupper(static_cast<unsigned char>(c)))
                              : '_';
        EXPECT_EQ(enumerator, m[2].str()) << line;
    }
    int named = 0;
    for (int value = 0; value < 64; ++value)
        named += profileToString(static_cast<ContentProfile>(value)).empty() ? 0 : 1;
    EXPECT_EQ(named, rows) << "one README row per profile with a wire name";
}

TEST(CatalogueData, ClearThroughTheBaseResetsEveryField) {
    VideoDownloadableData video;
    video.downloadableId = "v1";
    video.size = video.bitrate = video.resolutionWidth = video.resolutionHeight = 3;
    video.pixelAspectWidth = video.pixelAspectHeight = 4;
    video.profile = PROFILE_BD_H264_M2TS;
    video.downloadUrls.resize(2);
    video.hd = true;
    video.burnedInSubtitles.reset(new LanguageData);
    const std::tr1::shared_ptr<LanguageData> subtitles = video.burnedInSubtitles;

    static_cast<DownloadableData&>(video).clear();
    EXPECT_EQ(1, subtitles.use_count());
    EXPECT_EQ(0u, video.size + video.bitrate + video.resolutionWidth + video.resolutionHeight +
                      video.pixelAspectWidth + video.pixelAspectHeight);
    EXPECT_TRUE(video.downloadableId.empty() && video.downloadUrls.empty() && !video.hd);
    EXPECT_EQ(PROFILE_UNKNOWN, video.profile);

    AudioDownloadableData audio;
    audio.bitrate = 128;
    static_cast<DownloadableData&>(audio).clear();
    EXPECT_EQ(0u, audio.bitrate);
}

// A growing vector copies its entries unless they move without throwing.
template <typename... Records> constexpr bool allMoveWithoutThrowing() {
    return (... && (std::is_nothrow_move_constructible<Records>::value &&
                    std::is_nothrow_move_assignable<Records>::value));
}
static_assert(
    allMoveWithoutThrowing<LanguageData, UrlData, CdnData, StreamingParamData, DownloadableData,
                           VideoDownloadableData, AudioDownloadableData, TimedTextDownloadableData,
                           AudioTrackData, TimedTextTrackData, TrickPlayData, AuthResponseData>(),
    "catalogue records move without throwing");

TEST(CatalogueData, VideoMovesCarryEveryField) {
    VideoDownloadableData video;
    video.downloadableId = "v1";
    video.size = 2;
    video.profile = PROFILE_BD_H264_M2TS;
    video.downloadUrls.resize(2);
    video.bitrate = 3;
    video.resolutionWidth = 4;
    video.resolutionHeight = 5;
    video.pixelAspectWidth = 6;
    video.pixelAspectHeight = 7;
    video.hd = true;
    video.burnedInSubtitles.reset(new LanguageData);
    const std::tr1::shared_ptr<LanguageData> subtitles = video.burnedInSubtitles;
    const auto fields = [](const VideoDownloadableData& v) {
        std::ostringstream out;
        out << v.downloadableId << ' ' << v.size << ' ' << v.profile << ' ' << v.downloadUrls.size()
            << ' ' << v.bitrate << ' ' << v.resolutionWidth << ' ' << v.resolutionHeight << ' '
            << v.pixelAspectWidth << ' ' << v.pixelAspectHeight << ' ' << v.hd << ' '
            << v.burnedInSubtitles.get();
        return out.str();
    };
    const std::string expected = fields(video);

    VideoDownloadableData moved(std::move(video));
    EXPECT_EQ(expected, fields(moved));
    VideoDownloadableData assigned;
    assigned.burnedInSubtitles.reset(new LanguageData);
    assigned = std::move(moved);
    EXPECT_EQ(expected, fields(assigned));
    // The sources let go of the subtitles; only the last holder keeps them.
    EXPECT_TRUE(!video.burnedInSubtitles && !moved.burnedInSubtitles);
    EXPECT_EQ(2, subtitles.use_count());
}

} // namespace
