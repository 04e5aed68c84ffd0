// The playback catalogue: what an authorization response offers for one
// title. Plain value records with public fields, filled by the authorization
// response parser and read by the caller; every container holds its elements
// by value, and copying a record copies everything it holds, except the
// burned-in subtitles of a video downloadable, which copies share.
#ifndef ZUVOLIB_SUBPARSERS_CATALOGUEDATA_H
#define ZUVOLIB_SUBPARSERS_CATALOGUEDATA_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/export.h"
#include "zuvolib/subparsers/ContentProfile.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// A language: display text and its ISO 639 codes.
struct LanguageData {
    std::string displayText; ///< "displaytext"
    std::string iso6391;     ///< "iso639-1", two letters
    std::string iso6392;     ///< "iso639-2", three letters
    std::string iso6393;     ///< "iso639-3", three letters
};

/// One download URL of a stream.
struct UrlData {
    unsigned long long expiration = 0; ///< "expiration"
    unsigned short cdnId = 0;          ///< "cdnid": the `CdnData::id` serving this URL
    std::string url;                   ///< "url"
};

/// One content delivery network.
struct CdnData {
    std::string name;        ///< "name"
    unsigned short id = 0;   ///< "cdnid"
    unsigned int rank = 0;   ///< "rank"
    unsigned int weight = 0; ///< "weight"
};

/// One streaming parameter, a name and its value.
struct StreamingParamData {
    std::string name;
    std::string value;
};

/// Fields common to every downloadable stream. Polymorphic so that a parser
/// can reset whichever kind it is filling through `clear`.
struct ZUVO_API DownloadableData {
    DownloadableData() = default;
    DownloadableData(const DownloadableData&) = default;
    DownloadableData(DownloadableData&&) = default;
    DownloadableData& operator=(const DownloadableData&) = default;
    DownloadableData& operator=(DownloadableData&&) = default;
    virtual ~DownloadableData();

    /// Back to the default state: empty id and URLs, size 0, profile unknown.
    virtual void clear();

    std::string downloadableId;               ///< "downloadableid"
    unsigned long long size = 0;              ///< "size", in bytes
    ContentProfile profile = PROFILE_UNKNOWN; ///< from the profile identifier
    std::vector<UrlData> downloadUrls;        ///< where the stream can be fetched
};

/// A video stream. Copies share `burnedInSubtitles`.
struct ZUVO_API VideoDownloadableData : DownloadableData {
    VideoDownloadableData() = default;
    VideoDownloadableData(const VideoDownloadableData&) = default;
    VideoDownloadableData& operator=(const VideoDownloadableData&) = default;
    /// Moves never throw, whatever the standard library's `std::tr1::shared_ptr`
    /// can do, so that a growing vector moves its entries instead of copying
    /// them. `other` is left valid, without burned-in subtitles.
    VideoDownloadableData(VideoDownloadableData&& other) noexcept;
    VideoDownloadableData& operator=(VideoDownloadableData&& other) noexcept;

    /// Also zeroes the video fields and releases the burned-in subtitles.
    void clear() override;

    unsigned int bitrate = 0; ///< "bitrate"
    unsigned int resolutionWidth = 0;
    unsigned int resolutionHeight = 0;
    unsigned int pixelAspectWidth = 0;
    unsigned int pixelAspectHeight = 0;
    bool hd = false; ///< "hd"
    /// The subtitles burned into the picture; empty when there are none.
    std::tr1::shared_ptr<LanguageData> burnedInSubtitles;
};

/// An audio stream.
struct ZUVO_API AudioDownloadableData : DownloadableData {
    /// Also zeroes the bitrate.
    void clear() override;

    unsigned int bitrate = 0; ///< "bitrate"
};

/// A timed-text (subtitle or caption) stream; nothing beyond the common fields.
struct ZUVO_API TimedTextDownloadableData : DownloadableData {};

/// An audio track: one language offered in one or more audio streams.
struct AudioTrackData {
    LanguageData language;
    bool isNative = false; ///< "isnative": the title's original language
    std::vector<AudioDownloadableData> audioDownloadables;
};

/// A timed-text track: one language offered in one or more timed-text streams.
struct TimedTextTrackData {
    /// Values of `type`, from the "timedtexttype" text.
    enum { TYPE_UNSET = -1, TYPE_SUBTITLES = 0, TYPE_CLOSED_CAPTIONS = 1 };

    int type = TYPE_UNSET; ///< "subtitles" or "closedcaptions"
    LanguageData language;
    std::vector<TimedTextDownloadableData> timedTextDownloadables;
};

/// One trick-play (seek preview) image stream.
struct TrickPlayData {
    std::vector<UrlData> downloadUrls;
    unsigned int resolutionWidth = 0;
    unsigned int resolutionHeight = 0;
    unsigned int pixelAspectWidth = 0;
    unsigned int pixelAspectHeight = 0;
    int trickPlayInterval = 0;    ///< "trickplayinterval", signed
    unsigned long long size = 0;  ///< "size", in bytes
    unsigned int trickPlayId = 0; ///< "trickplayid"
};

} // namespace zuvolib
} // namespace velmora

#endif
