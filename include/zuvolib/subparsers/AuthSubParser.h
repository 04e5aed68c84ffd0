// Authorization response: the playback catalogue.
#ifndef ZUVOLIB_SUBPARSERS_AUTHSUBPARSER_H
#define ZUVOLIB_SUBPARSERS_AUTHSUBPARSER_H

#include "zuvolib/export.h"
#include "zuvolib/subparsers/AuthResponseData.h"
#include "zuvolib/subparsers/BufferedSubParser.h"

#include <map>
#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// Reads an authorization response into an `AuthResponseData`: the header
/// as `ParentParser` does, and the body "authorization" (attribute
/// "movie_id") with its CDNs, video downloadables, audio and timed-text
/// tracks, trick plays, streaming parameters and an encrypted "payload"
/// holding "zuvo:mticket" (attribute "expiration").
///
/// Elements are read by name wherever they stand; the parent is not checked.
/// Small values ("size", "bitrate", "width", "cdnid", "url", a language...)
/// go to scratch values that the record elements pick up at their end, and
/// the scratch values are reset only at the start of the elements that own
/// them. This gives the protocol's observable behaviour, kept on purpose:
/// - the scratch language is emptied only at the start of "language", so a
///   "burnedinsubtitles" without language children takes the language last
///   read (that of an earlier track, say);
/// - "expiration" and "cdnid" are reset only by "downloadurls" (and "cdn"),
///   so a "downloadurl" lacking them repeats the previous URL's values, and
///   a "downloadurl" lacking "url" repeats the previous URL text;
/// - "size" is reset only at the start of a downloadable or trick play and
///   goes to whichever of them ends next;
/// - CDN ids keep only their low 8 bits ("300" gives 44);
/// - any "hd" element sets `hd`, whatever its text; "isnative" likewise;
/// - "timedtexttype" is "subtitles" or "closedcaptions", case-sensitive;
///   other text leaves the type as it was;
/// - each "cdns" or "streamingparams" list replaces the previous one, while
///   downloadables, tracks and trick plays accumulate across the document.
///
/// Rejects (see `ParentParser`) an "authorization" without "movie_id", and a
/// payload that cannot be decrypted because the cipher context is empty.
/// Other payload failures throw as `ParentParser::parse` documents.
class ZUVO_API AuthSubParser : public BufferedSubParser {
public:
    /// Ids of the elements of the authorization body.
    enum OwnTagType : unsigned int {
        TAG_AUTHORIZATION = 31,
        TAG_TRICKPLAY,
        TAG_RESOLUTION,
        TAG_PIXELASPECT,
        TAG_WIDTH,
        TAG_HEIGHT,
        TAG_TRICKPLAYINTERVAL,
        TAG_DOWNLOADURL,
        TAG_EXPIRATION,
        TAG_DOWNLOADABLEID, // 40
        TAG_SIZE,
        TAG_BITRATE,
        TAG_HD,
        TAG_CDNS,
        TAG_CDN,
        TAG_NAME,
        TAG_RANK,
        TAG_WEIGHT,
        TAG_DOWNLOADURLS,
        TAG_CDNID, // 50
        TAG_URL,
        TAG_STREAMINGPARAMS,
        TAG_STREAMINGPARAM,
        TAG_VALUE,
        TAG_TRICKPLAYID,
        TAG_VIDEODOWNLOADABLE,
        TAG_AUDIODOWNLOADABLE,
        TAG_AUDIOTRACK,
        TAG_TIMEDTEXTDOWNLOADABLE,
        TAG_TIMEDTEXTTRACK, // 60
        TAG_BURNEDINSUBTITLES,
        TAG_ISNATIVE,
        TAG_TIMEDTEXTTYPE,
        TAG_LANGUAGE,
        TAG_DISPLAYTEXT,
        TAG_ISO639_1,
        TAG_ISO639_2,
        TAG_ISO639_3,
        TAG_VIDEOPROFILE,
        TAG_AUDIOPROFILE, // 70
        TAG_TIMEDTEXTPROFILE
    };

    /// Keeps references to `expat` and `responseData`; both must outlive it.
    /// The record is not cleared: catalogue entries are appended to what it
    /// holds (the "cdns" and "streamingparams" lists excepted).
    AuthSubParser(Expat& expat, AuthResponseData& responseData);

    const char* getParserName() const override { return "AuthSubParser"; }

protected:
    bool canParseResultSubTag(unsigned int tagType) const override;
    bool onResultSubTagStartEvent(unsigned int parentTagType, unsigned int tagType,
                                  const std::string& name,
                                  const std::map<std::string, std::string>& attributes) override;
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) override;

private:
    void readPayload(const std::string& text);
    void beginStream();
    void beginDownloadable(DownloadableData& downloadable);
    void endTrickPlay();
    void endVideoDownloadable();
    void endAudioDownloadable();
    void endTimedTextDownloadable();
    void fillDownloadable(DownloadableData& downloadable);
    template <typename Track>
    void endTrack(Track& track, unsigned int& open, std::vector<Track>& tracks);
    template <typename T> void handOver(T& scratch, T& target, bool keep);

    AuthResponseData& data;

    // The records being filled.
    VideoDownloadableData video;
    AudioDownloadableData audio;
    TimedTextDownloadableData timedText;
    AudioTrackData audioTrack;
    TimedTextTrackData timedTextTrack;
    TrickPlayData trickPlay;

    // Scratch values, picked up by the record elements at their end.
    std::vector<UrlData> urls;
    LanguageData language;
    std::string downloadableId;
    std::string nameText;
    std::string valueText;
    std::string urlText;
    unsigned long long size = 0;
    unsigned long long expiration = 0;
    unsigned int bitrate = 0;
    unsigned int width = 0;
    unsigned int height = 0;
    unsigned int resolutionWidth = 0;
    unsigned int resolutionHeight = 0;
    unsigned int pixelAspectWidth = 0;
    unsigned int pixelAspectHeight = 0;
    unsigned int rank = 0;
    unsigned int weight = 0;
    unsigned char cdnId = 0; ///< CDN ids are 8-bit on the wire

    // Open record elements of each kind. A record element that ends inside
    // another one of its kind copies the scratch values it shares with it;
    // otherwise it moves them (they are reset before anything reads them).
    unsigned int openStreams = 0; ///< trick plays and downloadables (they share `urls`)
    unsigned int openAudioTracks = 0;
    unsigned int openTimedTextTracks = 0;
};

} // namespace zuvolib
} // namespace velmora

#endif
