// Authorization responses written from a catalogue description: the test
// fills the records it expects and gets the document the server would send.
#ifndef ZUVOLIB_TESTS_SUBPARSERS_CATALOGUEDOCS_H
#define ZUVOLIB_TESTS_SUBPARSERS_CATALOGUEDOCS_H

#include "parse/ResponseDocs.h"

#include <string>
#include <tuple>
#include <vector>

namespace zuvotest {

namespace zl = velmora::zuvolib;

inline std::string num(unsigned long long value) {
    return std::to_string(value);
}

inline std::string languageXml(int d, const zl::LanguageData& l) {
    return block(d, "language",
                 el(d + 1, "displaytext", l.displayText) + el(d + 1, "iso639-1", l.iso6391) +
                     el(d + 1, "iso639-2", l.iso6392) + el(d + 1, "iso639-3", l.iso6393));
}

/// "resolution" or "pixelaspect".
inline std::string extentXml(int d, const char* name, unsigned int width, unsigned int height) {
    return block(d, name, el(d + 1, "width", num(width)) + el(d + 1, "height", num(height)));
}

inline std::string urlsXml(int d, const std::vector<zl::UrlData>& urls) {
    std::string lines;
    for (const zl::UrlData& u : urls)
        lines += block(d + 1, "downloadurl",
                       el(d + 2, "expiration", num(u.expiration)) +
                           el(d + 2, "cdnid", num(u.cdnId)) + el(d + 2, "url", u.url));
    return block(d, "downloadurls", lines);
}

/// Id, size, the profile element `profileName` and, after `middle`, the URLs.
inline std::string downloadableXml(int d, const char* name, const zl::DownloadableData& x,
                                   const char* profileName, const std::string& middle) {
    return block(d, name,
                 el(d + 1, "downloadableid", x.downloadableId) + el(d + 1, "size", num(x.size)) +
                     el(d + 1, profileName, zl::profileToString(x.profile)) + middle +
                     urlsXml(d + 1, x.downloadUrls));
}

inline std::string videoXml(int d, const zl::VideoDownloadableData& v) {
    std::string middle = el(d + 1, "bitrate", num(v.bitrate)) +
                         extentXml(d + 1, "resolution", v.resolutionWidth, v.resolutionHeight) +
                         extentXml(d + 1, "pixelaspect", v.pixelAspectWidth, v.pixelAspectHeight);
    if (v.hd)
        middle += el(d + 1, "hd", "true");
    if (v.burnedInSubtitles)
        middle += block(d + 1, "burnedinsubtitles", languageXml(d + 2, *v.burnedInSubtitles));
    return downloadableXml(d, "videodownloadable", v, "videoprofile", middle);
}

inline std::string audioTrackXml(int d, const zl::AudioTrackData& t) {
    std::string lines = languageXml(d + 1, t.language);
    if (t.isNative)
        lines += el(d + 1, "isnative", "true");
    for (const zl::AudioDownloadableData& a : t.audioDownloadables)
        lines += downloadableXml(d + 1, "audiodownloadable", a, "audioprofile",
                                 el(d + 2, "bitrate", num(a.bitrate)));
    return block(d, "audiotrack", lines);
}

inline std::string timedTextTrackXml(int d, const zl::TimedTextTrackData& t) {
    std::string lines;
    if (t.type != zl::TimedTextTrackData::TYPE_UNSET)
        lines += el(d + 1, "timedtexttype", t.type == 0 ? "subtitles" : "closedcaptions");
    lines += languageXml(d + 1, t.language);
    for (const zl::TimedTextDownloadableData& x : t.timedTextDownloadables)
        lines += downloadableXml(d + 1, "timedtextdownloadable", x, "timedtextprofile", "");
    return block(d, "timedtexttrack", lines);
}

inline std::string trickPlayXml(int d, const zl::TrickPlayData& t) {
    return block(d, "trickplay",
                 el(d + 1, "trickplayid", num(t.trickPlayId)) +
                     el(d + 1, "trickplayinterval", std::to_string(t.trickPlayInterval)) +
                     el(d + 1, "size", num(t.size)) +
                     extentXml(d + 1, "resolution", t.resolutionWidth, t.resolutionHeight) +
                     extentXml(d + 1, "pixelaspect", t.pixelAspectWidth, t.pixelAspectHeight) +
                     urlsXml(d + 1, t.downloadUrls));
}

/// A whole authorization response for `c` with the basic header: its lists
/// in the order the server writes them, with `payload` (already sealed) when
/// not empty.
inline std::string catalogueDoc(const zl::AuthResponseData& c, const std::string& payload) {
    std::string cdns;
    for (const zl::CdnData& x : c.cdns)
        cdns += block(4, "cdn",
                      el(5, "name", x.name) + el(5, "cdnid", num(x.id)) +
                          el(5, "rank", num(x.rank)) + el(5, "weight", num(x.weight)));
    std::string lines = block(3, "cdns", cdns);
    for (const zl::VideoDownloadableData& v : c.videoDownloadables)
        lines += videoXml(3, v);
    for (const zl::AudioTrackData& t : c.audioTracks)
        lines += audioTrackXml(3, t);
    for (const zl::TimedTextTrackData& t : c.timedTextTracks)
        lines += timedTextTrackXml(3, t);
    for (const zl::TrickPlayData& t : c.trickPlays)
        lines += trickPlayXml(3, t);
    std::string params;
    for (const zl::StreamingParamData& p : c.streamingParams)
        params += block(4, "streamingparam", el(5, "name", p.name) + el(5, "value", p.value));
    lines += block(3, "streamingparams", params);
    if (!payload.empty())
        lines += el(3, "payload", payload);
    return responseDoc(
        basicHeader(),
        block(2, "authorization", lines, " movie_id=\"" + std::to_string(c.movieId) + "\""),
        " method=\"authorization\"");
}

inline zl::UrlData url(unsigned short cdn, const std::string& path) {
    return zl::UrlData{1893456000000ull + cdn, cdn, "http://cdn" + num(cdn) + ".example/" + path};
}

inline zl::LanguageData lang(const std::string& text, const std::string& a, const std::string& b) {
    return zl::LanguageData{text, a, b, b};
}

template <typename D>
inline D stream(const std::string& id, unsigned long long size, zl::ContentProfile profile,
                const std::vector<zl::UrlData>& urls) {
    D d;
    std::tie(d.downloadableId, d.size, d.profile, d.downloadUrls) =
        std::tie(id, size, profile, urls);
    return d;
}

inline zl::VideoDownloadableData video(const std::string& id, unsigned long long size,
                                       zl::ContentProfile profile, unsigned int bitrate,
                                       unsigned int w, unsigned int h, unsigned int pw,
                                       unsigned int ph, const std::vector<zl::UrlData>& urls) {
    zl::VideoDownloadableData v = stream<zl::VideoDownloadableData>(id, size, profile, urls);
    std::tie(v.bitrate, v.resolutionWidth, v.resolutionHeight, v.pixelAspectWidth,
             v.pixelAspectHeight) = std::tie(bitrate, w, h, pw, ph);
    return v;
}

inline zl::AudioDownloadableData audio(const std::string& id, zl::ContentProfile profile,
                                       unsigned int bitrate) {
    zl::AudioDownloadableData a =
        stream<zl::AudioDownloadableData>(id, 64000000, profile, {url(11, id)});
    a.bitrate = bitrate;
    return a;
}

/// A title as the server offers it: three CDNs, two video streams (one in HD
/// with burned-in subtitles), two audio tracks, two timed-text tracks, a
/// trick-play stream and streaming parameters.
inline zl::AuthResponseData sampleCatalogue() {
    zl::AuthResponseData c;
    c.movieId = 70143836;
    c.cdns = {{"alpha", 11, 1, 60}, {"beta", 12, 2, 30}, {"gamma", 200, 3, 10}};
    c.videoDownloadables = {video("v-1001", 812345678, zl::PROFILE_PLAYREADY_H264MPL30_PIFF, 1750,
                                  720, 480, 32, 27, {url(11, "v1001?t=a"), url(12, "v1001?t=b")}),
                            video("v-1002", 5368709120ull, zl::PROFILE_PLAYREADY_H264HPL40_PIFF,
                                  4800, 1920, 1080, 1, 1, {url(200, "v1002")})};
    c.videoDownloadables[1].hd = true;
    c.videoDownloadables[1].burnedInSubtitles.reset(
        new zl::LanguageData(lang("Deutsch", "de", "deu")));
    const zl::LanguageData english = lang("English", "en", "eng");
    c.audioTracks = {
        {english,
         true,
         {audio("a-2001", zl::PROFILE_HEAAC_2_PIFF, 96),
          audio("a-2002", zl::PROFILE_DDPLUS_5_1_PIFF, 384)}},
        {lang("Francais", "fr", "fra"), false, {audio("a-2003", zl::PROFILE_HEAAC_2_PIFF, 96)}}};
    const zl::TimedTextDownloadableData sdh = stream<zl::TimedTextDownloadableData>(
        "t-3001", 52000, zl::PROFILE_SIMPLESDH, {url(12, "t3001")});
    c.timedTextTracks = {
        {zl::TimedTextTrackData::TYPE_SUBTITLES, lang("Espanol", "es", "spa"), {sdh}},
        {zl::TimedTextTrackData::TYPE_CLOSED_CAPTIONS, english, {sdh}}};
    c.trickPlays = {{{url(11, "bif"), url(200, "bif")}, 240, 135, 1, 1, -10000, 2400000, 9}};
    c.streamingParams = {{"minbuffer", "4000"}, {"maxbitrate", ""}};
    return c;
}

/// The payload fragment carrying the movie ticket.
inline std::string ticketFragment(const std::string& ticket, const std::string& expiration) {
    return "<zuvo:mticket expiration=\"" + expiration + "\">" + ticket + "</zuvo:mticket>\n";
}

} // namespace zuvotest

#endif
