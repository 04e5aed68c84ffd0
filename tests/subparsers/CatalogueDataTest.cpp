// Content profile identifiers and the copy and reset rules of the catalogue.

#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace velmora::zuvolib;

// Every value with an identifier, as the protocol numbers them.
const struct {
    int value;
    const char* identifier;
} PROFILES[] = {
    {0, "wmdrm10-wmv3-asf"},
    {1, "wmdrm10-vc1ap-asf"},
    {2, "playready-vc1ap-asf"},
    {3, "bd-h264-m2ts"},
    {4, "sessiondh1-mpeg4p2-asf"},
    {5, "playready-mpeg4p2-piff"},
    {6, "playready-h264bpl30-piff"},
    {7, "playready-h264mpl30-piff"},
    {8, "playready-h264mpl31-piff"},
    {9, "playready-h264hpl40-piff"},
    {11, "wmdrm10-wma-2-asf"},
    {12, "playready-wma-2-asf"},
    {13, "bd-ac3-2-m2ts"},
    {14, "sessiondh1-oggvorbis-2-asf"},
    {15, "ddplus-5.1-asf"},
    {16, "ddplus-5.1-piff"},
    {17, "heaac-2-piff"},
    {18, "playready-oggvorbis-2-piff"},
    {20, "simplesdh"},
};

TEST(ContentProfile, IdentifiersConvertBothWays) {
    for (const auto& row : PROFILES) {
        SCOPED_TRACE(row.identifier);
        EXPECT_EQ(row.value, stringToProfile(row.identifier));
        EXPECT_EQ(row.identifier, profileToString(static_cast<ContentProfile>(row.value)));
    }
    EXPECT_EQ(PROFILE_DDPLUS_5_1_PIFF, stringToProfile("ddplus-5.1-piff"));
}

TEST(ContentProfile, OtherTextIsUnknown) {
    for (const char* text :
         {"", "WMDRM10-WMV3-ASF", " simplesdh", "simplesdh ", "simplesd", "ddplus-5_1-asf"})
        EXPECT_EQ(PROFILE_UNKNOWN, stringToProfile(text)) << '"' << text << '"';
}

TEST(ContentProfile, ValuesWithoutIdentifierGiveEmptyText) {
    for (int value : {10, 19, 21, 1000, -1, -2, -2147483647 - 1})
        EXPECT_EQ("", profileToString(static_cast<ContentProfile>(value))) << value;
}

TEST(CatalogueData, DefaultsAreEmptyWithUnknownProfile) {
    const VideoDownloadableData video;
    EXPECT_EQ(PROFILE_UNKNOWN, video.profile);
    EXPECT_EQ(0u, video.size);
    EXPECT_FALSE(video.burnedInSubtitles);
    EXPECT_EQ(PROFILE_UNKNOWN, TimedTextDownloadableData().profile);
    EXPECT_EQ(TimedTextTrackData::TYPE_UNSET, TimedTextTrackData().type);
}

TEST(CatalogueData, ClearThroughTheBaseResetsEveryField) {
    std::unique_ptr<VideoDownloadableData> video(new VideoDownloadableData);
    video->downloadableId = "v1";
    video->size = 7;
    video->profile = PROFILE_BD_H264_M2TS;
    video->downloadUrls.resize(2);
    video->bitrate = video->resolutionWidth = video->resolutionHeight = 3;
    video->pixelAspectWidth = video->pixelAspectHeight = 4;
    video->hd = true;
    const std::tr1::shared_ptr<LanguageData> subtitles(new LanguageData);
    video->burnedInSubtitles = subtitles;

    static_cast<DownloadableData&>(*video).clear();
    EXPECT_EQ(1, subtitles.use_count());
    EXPECT_EQ(0u, video->bitrate + video->resolutionWidth + video->resolutionHeight +
                      video->pixelAspectWidth + video->pixelAspectHeight);
    EXPECT_FALSE(video->hd);
    EXPECT_TRUE(video->downloadableId.empty() && video->downloadUrls.empty());
    EXPECT_EQ(0u, video->size);
    EXPECT_EQ(PROFILE_UNKNOWN, video->profile);

    AudioDownloadableData audio;
    audio.bitrate = 128;
    audio.downloadableId = "a1";
    static_cast<DownloadableData&>(audio).clear();
    EXPECT_EQ(0u, audio.bitrate);
    EXPECT_TRUE(audio.downloadableId.empty());
}

TEST(CatalogueData, CopiedVideoSharesItsSubtitlesAndTracksCopyDeep) {
    VideoDownloadableData video;
    video.burnedInSubtitles.reset(new LanguageData);
    video.downloadUrls.resize(1);
    VideoDownloadableData copy(video);
    EXPECT_EQ(video.burnedInSubtitles.get(), copy.burnedInSubtitles.get());
    EXPECT_EQ(2, video.burnedInSubtitles.use_count());
    copy.downloadUrls[0].url = "changed";
    EXPECT_EQ("", video.downloadUrls[0].url);

    AudioTrackData track;
    track.audioDownloadables.resize(1);
    AudioTrackData trackCopy;
    trackCopy = track;
    trackCopy.audioDownloadables[0].bitrate = 9;
    EXPECT_EQ(0u, track.audioDownloadables[0].bitrate);
}

} // namespace
