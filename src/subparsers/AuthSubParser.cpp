// Authorization result body: the playback catalogue.

#include "zuvolib/subparsers/AuthSubParser.h"

#include "zuvolib/parse/PayloadDecryptor.h"

#include <QRXClient/lexical_cast.h>

#include <utility>

namespace velmora {
namespace zuvolib {

namespace {

typedef AuthSubParser S;
using Velmora::QRXClient::lexical_cast;

const ParentParser::TagConfigTable config[] = {
    {S::TAG_AUTHORIZATION, "authorization"},
    {S::TAG_TRICKPLAY, "trickplay"},
    {S::TAG_RESOLUTION, "resolution"},
    {S::TAG_PIXELASPECT, "pixelaspect"},
    {S::TAG_WIDTH, "width"},
    {S::TAG_HEIGHT, "height"},
    {S::TAG_TRICKPLAYINTERVAL, "trickplayinterval"},
    {S::TAG_DOWNLOADURL, "downloadurl"},
    {S::TAG_EXPIRATION, "expiration"},
    {S::TAG_DOWNLOADABLEID, "downloadableid"},
    {S::TAG_SIZE, "size"},
    {S::TAG_BITRATE, "bitrate"},
    {S::TAG_HD, "hd"},
    {S::TAG_CDNS, "cdns"},
    {S::TAG_CDN, "cdn"},
    {S::TAG_NAME, "name"},
    {S::TAG_RANK, "rank"},
    {S::TAG_WEIGHT, "weight"},
    {S::TAG_DOWNLOADURLS, "downloadurls"},
    {S::TAG_CDNID, "cdnid"},
    {S::TAG_URL, "url"},
    {S::TAG_STREAMINGPARAMS, "streamingparams"},
    {S::TAG_STREAMINGPARAM, "streamingparam"},
    {S::TAG_VALUE, "value"},
    {S::TAG_TRICKPLAYID, "trickplayid"},
    {S::TAG_VIDEODOWNLOADABLE, "videodownloadable"},
    {S::TAG_AUDIODOWNLOADABLE, "audiodownloadable"},
    {S::TAG_AUDIOTRACK, "audiotrack"},
    {S::TAG_TIMEDTEXTDOWNLOADABLE, "timedtextdownloadable"},
    {S::TAG_TIMEDTEXTTRACK, "timedtexttrack"},
    {S::TAG_BURNEDINSUBTITLES, "burnedinsubtitles"},
    {S::TAG_ISNATIVE, "isnative"},
    {S::TAG_LANGUAGE, "language"},
    {S::TAG_DISPLAYTEXT, "displaytext"},
    {S::TAG_ISO639_1, "iso639-1"},
    {S::TAG_ISO639_2, "iso639-2"},
    {S::TAG_ISO639_3, "iso639-3"},
    {S::TAG_TIMEDTEXTTYPE, "timedtexttype"},
    {S::TAG_VIDEOPROFILE, "videoprofile"},
    {S::TAG_AUDIOPROFILE, "audioprofile"},
    {S::TAG_TIMEDTEXTPROFILE, "timedtextprofile"},
};
static_assert(sizeof(config) / sizeof(config[0]) == 41, "one row per element of the body");

unsigned int toUint(const std::string& text) {
    return lexical_cast<unsigned int>(text);
}
unsigned long long toUint64(const std::string& text) {
    return lexical_cast<unsigned long long>(text);
}

} // namespace

AuthSubParser::AuthSubParser(Expat& expat, AuthResponseData& responseData)
    : BufferedSubParser(expat, responseData, config, sizeof(config) / sizeof(config[0])),
      data(responseData) {}

bool AuthSubParser::canParseResultSubTag(unsigned int tagType) const {
    return tagType == TAG_AUTHORIZATION;
}

bool AuthSubParser::onResultSubTagStartEvent(unsigned int parentTagType, unsigned int tagType,
                                             const std::string& name,
                                             const std::map<std::string, std::string>& attributes) {
    BufferedSubParser::onResultSubTagStartEvent(parentTagType, tagType, name, attributes);
    if (parentTagType == TAG_RESULT)
        openStreams = openAudioTracks = openTimedTextTracks = 0;

    switch (tagType) {
    case TAG_AUTHORIZATION: {
        const std::map<std::string, std::string>::const_iterator id = attributes.find("movie_id");
        if (id == attributes.end())
            return false;
        data.movieId = lexical_cast<int>(id->second);
        break;
    }
    case TAG_TRICKPLAY:
        beginStream();
        trickPlay = TrickPlayData();
        resolutionWidth = resolutionHeight = pixelAspectWidth = pixelAspectHeight = 0;
        break;
    case TAG_RESOLUTION: width = height = resolutionWidth = resolutionHeight = 0; break;
    case TAG_PIXELASPECT: width = height = pixelAspectWidth = pixelAspectHeight = 0; break;
    case TAG_CDNS: data.cdns.clear(); break;
    case TAG_CDN:
        nameText.clear();
        cdnId = 0;
        rank = weight = 0;
        break;
    case TAG_DOWNLOADURLS:
        urls.clear();
        cdnId = 0;
        expiration = 0;
        break;
    case TAG_STREAMINGPARAMS: data.streamingParams.clear(); break;
    case TAG_STREAMINGPARAM:
        nameText.clear();
        valueText.clear();
        break;
    case TAG_VIDEODOWNLOADABLE:
        beginDownloadable(video);
        bitrate = 0;
        resolutionWidth = resolutionHeight = pixelAspectWidth = pixelAspectHeight = 0;
        break;
    case TAG_AUDIODOWNLOADABLE:
        beginDownloadable(audio);
        bitrate = 0;
        break;
    case TAG_TIMEDTEXTDOWNLOADABLE: beginDownloadable(timedText); break;
    case TAG_AUDIOTRACK:
        ++openAudioTracks;
        audioTrack = AudioTrackData();
        break;
    case TAG_TIMEDTEXTTRACK:
        ++openTimedTextTracks;
        timedTextTrack = TimedTextTrackData();
        break;
    case TAG_LANGUAGE: language = LanguageData(); break;
    default: break;
    }
    return true;
}

bool AuthSubParser::onResultSubTagEndEvent(unsigned int tagType, const std::string&) {
    const std::string& text = bufferedText();
    switch (tagType) {
    case TAG_PAYLOAD: readPayload(text); break;
    case TAG_WIDTH: width = toUint(text); break;
    case TAG_HEIGHT: height = toUint(text); break;
    case TAG_RESOLUTION:
        resolutionWidth = width;
        resolutionHeight = height;
        break;
    case TAG_PIXELASPECT:
        pixelAspectWidth = width;
        pixelAspectHeight = height;
        break;
    case TAG_TRICKPLAYINTERVAL: trickPlay.trickPlayInterval = lexical_cast<int>(text); break;
    case TAG_TRICKPLAYID: trickPlay.trickPlayId = toUint(text); break;
    case TAG_EXPIRATION: expiration = toUint64(text); break;
    case TAG_DOWNLOADABLEID: downloadableId = text; break;
    case TAG_SIZE: size = toUint64(text); break;
    case TAG_BITRATE: bitrate = toUint(text); break;
    case TAG_HD: video.hd = true; break;
    case TAG_NAME: nameText = text; break;
    case TAG_RANK: rank = toUint(text); break;
    case TAG_WEIGHT: weight = toUint(text); break;
    // Read as 16 bits, kept as 8: "300" gives 44.
    case TAG_CDNID: cdnId = static_cast<unsigned char>(lexical_cast<unsigned short>(text)); break;
    case TAG_URL: urlText = text; break;
    case TAG_VALUE: valueText = text; break;
    case TAG_DOWNLOADURL: urls.push_back(UrlData{expiration, cdnId, urlText}); break;
    case TAG_CDN: data.cdns.push_back(CdnData{nameText, cdnId, rank, weight}); break;
    case TAG_STREAMINGPARAM: data.streamingParams.push_back({nameText, valueText}); break;
    case TAG_TRICKPLAY: endTrickPlay(); break;
    case TAG_VIDEODOWNLOADABLE: endVideoDownloadable(); break;
    case TAG_AUDIODOWNLOADABLE: endAudioDownloadable(); break;
    case TAG_TIMEDTEXTDOWNLOADABLE: endTimedTextDownloadable(); break;
    case TAG_AUDIOTRACK: endTrack(audioTrack, openAudioTracks, data.audioTracks); break;
    case TAG_TIMEDTEXTTRACK:
        endTrack(timedTextTrack, openTimedTextTracks, data.timedTextTracks);
        break;
    case TAG_BURNEDINSUBTITLES:
        video.burnedInSubtitles = std::tr1::shared_ptr<LanguageData>(new LanguageData(language));
        break;
    case TAG_ISNATIVE: audioTrack.isNative = true; break;
    case TAG_TIMEDTEXTTYPE:
        if (text == "subtitles")
            timedTextTrack.type = TimedTextTrackData::TYPE_SUBTITLES;
        else if (text == "closedcaptions")
            timedTextTrack.type = TimedTextTrackData::TYPE_CLOSED_CAPTIONS;
        break;
    case TAG_DISPLAYTEXT: language.displayText = text; break;
    case TAG_ISO639_1: language.iso6391 = text; break;
    case TAG_ISO639_2: language.iso6392 = text; break;
    case TAG_ISO639_3: language.iso6393 = text; break;
    case TAG_VIDEOPROFILE: video.profile = stringToProfile(text); break;
    case TAG_AUDIOPROFILE: audio.profile = stringToProfile(text); break;
    case TAG_TIMEDTEXTPROFILE: timedText.profile = stringToProfile(text); break;
    default: break;
    }
    clearText();
    return true;
}

void AuthSubParser::readPayload(const std::string& text) {
    const PayloadDecryptor plain(getCipherContext(), text, true);
    data.movieTicket = plain.getValueUcVector("zuvo:mticket");
    data.movieTicketExpiration = toUint64(plain.getAttr("zuvo:mticket", "expiration"));
}

// Gives `target` the value of `scratch`: a copy while an enclosing element
// may still read the scratch value, otherwise the value itself, leaving the
// scratch empty (the next reader's start resets it anyway).
template <typename T> void AuthSubParser::handOver(T& scratch, T& target, bool keep) {
    if (keep) {
        target = scratch;
        return;
    }
    target = std::move(scratch);
    scratch.clear();
}

// Start of a trick play or downloadable: they share the size and the URLs.
void AuthSubParser::beginStream() {
    ++openStreams;
    size = 0;
    urls.clear();
}

void AuthSubParser::beginDownloadable(DownloadableData& downloadable) {
    beginStream();
    downloadable.clear();
    downloadableId.clear();
}

void AuthSubParser::fillDownloadable(DownloadableData& downloadable) {
    --openStreams;
    const bool nested = openStreams != 0;
    handOver(downloadableId, downloadable.downloadableId, nested);
    downloadable.size = size;
    handOver(urls, downloadable.downloadUrls, nested);
}

void AuthSubParser::endTrickPlay() {
    --openStreams;
    trickPlay.size = size;
    trickPlay.resolutionWidth = resolutionWidth;
    trickPlay.resolutionHeight = resolutionHeight;
    trickPlay.pixelAspectWidth = pixelAspectWidth;
    trickPlay.pixelAspectHeight = pixelAspectHeight;
    handOver(urls, trickPlay.downloadUrls, openStreams != 0);
    // The moved-from record keeps its interval and id, all a later end of
    // an enclosing trick play would not refill.
    data.trickPlays.push_back(std::move(trickPlay));
}

void AuthSubParser::endVideoDownloadable() {
    fillDownloadable(video);
    video.bitrate = bitrate;
    video.resolutionWidth = resolutionWidth;
    video.resolutionHeight = resolutionHeight;
    video.pixelAspectWidth = pixelAspectWidth;
    video.pixelAspectHeight = pixelAspectHeight;
    data.videoDownloadables.push_back(std::move(video));
    // Set by its own element, not refilled at the end: the current record
    // keeps sharing it.
    video.burnedInSubtitles = data.videoDownloadables.back().burnedInSubtitles;
}

void AuthSubParser::endAudioDownloadable() {
    fillDownloadable(audio);
    audio.bitrate = bitrate;
    audioTrack.audioDownloadables.push_back(std::move(audio));
}

void AuthSubParser::endTimedTextDownloadable() {
    fillDownloadable(timedText);
    timedTextTrack.timedTextDownloadables.push_back(std::move(timedText));
}

// Appends `track`, with the scratch language, to `tracks`: a copy while an
// enclosing track of its kind is open (it goes on filling the record),
// otherwise the record itself, which the next track's start resets.
template <typename Track>
void AuthSubParser::endTrack(Track& track, unsigned int& open, std::vector<Track>& tracks) {
    track.language = language;
    if (--open != 0) {
        tracks.push_back(track);
        return;
    }
    tracks.push_back(std::move(track));
}

} // namespace zuvolib
} // namespace velmora
