// Field tables of the playback catalogue records, in record order.
#include "records/CatalogueFields.h"

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

/// Fields every downloadable starts with, followed by `own`.
template <class R> FieldTable<R> downloadableFields(const FieldTable<R>& own) {
    FieldTable<R> table = {
        printedField<R>("downloadableId", &zl::DownloadableData::downloadableId),
        printedField<R>("size", &zl::DownloadableData::size),
        printedField<R>("profile", &zl::DownloadableData::profile),
        printedField<R>("downloadUrls", &zl::DownloadableData::downloadUrls),
    };
    table.insert(table.end(), own.begin(), own.end());
    return table;
}

} // namespace

ZUVO_FIELD_TABLE(zl::LanguageData,
                 {
                     printedField<zl::LanguageData>("displayText", &zl::LanguageData::displayText),
                     printedField<zl::LanguageData>("iso6391", &zl::LanguageData::iso6391),
                     printedField<zl::LanguageData>("iso6392", &zl::LanguageData::iso6392),
                     printedField<zl::LanguageData>("iso6393", &zl::LanguageData::iso6393),
                 })

ZUVO_FIELD_TABLE(zl::UrlData, {
                                  printedField<zl::UrlData>("expiration", &zl::UrlData::expiration),
                                  printedField<zl::UrlData>("cdnId", &zl::UrlData::cdnId),
                                  printedField<zl::UrlData>("url", &zl::UrlData::url),
                              })

ZUVO_FIELD_TABLE(zl::CdnData, {
                                  printedField<zl::CdnData>("name", &zl::CdnData::name),
                                  printedField<zl::CdnData>("id", &zl::CdnData::id),
                                  printedField<zl::CdnData>("rank", &zl::CdnData::rank),
                                  printedField<zl::CdnData>("weight", &zl::CdnData::weight),
                              })

ZUVO_FIELD_TABLE(zl::StreamingParamData,
                 {
                     printedField<zl::StreamingParamData>("name", &zl::StreamingParamData::name),
                     printedField<zl::StreamingParamData>("value", &zl::StreamingParamData::value),
                 })

ZUVO_FIELD_TABLE(
    zl::VideoDownloadableData,
    downloadableFields<zl::VideoDownloadableData>({
        printedField<zl::VideoDownloadableData>("bitrate", &zl::VideoDownloadableData::bitrate),
        printedField<zl::VideoDownloadableData>("resolutionWidth",
                                                &zl::VideoDownloadableData::resolutionWidth),
        printedField<zl::VideoDownloadableData>("resolutionHeight",
                                                &zl::VideoDownloadableData::resolutionHeight),
        printedField<zl::VideoDownloadableData>("pixelAspectWidth",
                                                &zl::VideoDownloadableData::pixelAspectWidth),
        printedField<zl::VideoDownloadableData>("pixelAspectHeight",
                                                &zl::VideoDownloadableData::pixelAspectHeight),
        printedField<zl::VideoDownloadableData>("hd", &zl::VideoDownloadableData::hd),
        printedField<zl::VideoDownloadableData>("burnedInSubtitles",
                                                &zl::VideoDownloadableData::burnedInSubtitles),
    }))

ZUVO_FIELD_TABLE(zl::AudioDownloadableData,
                 downloadableFields<zl::AudioDownloadableData>({
                     printedField<zl::AudioDownloadableData>("bitrate",
                                                             &zl::AudioDownloadableData::bitrate),
                 }))

ZUVO_FIELD_TABLE(zl::TimedTextDownloadableData,
                 downloadableFields<zl::TimedTextDownloadableData>({}))

ZUVO_FIELD_TABLE(zl::AudioTrackData,
                 {
                     printedField<zl::AudioTrackData>("language", &zl::AudioTrackData::language),
                     printedField<zl::AudioTrackData>("isNative", &zl::AudioTrackData::isNative),
                     printedField<zl::AudioTrackData>("audioDownloadables",
                                                      &zl::AudioTrackData::audioDownloadables),
                 })

ZUVO_FIELD_TABLE(
    zl::TimedTextTrackData,
    {
        printedField<zl::TimedTextTrackData>("type", &zl::TimedTextTrackData::type),
        printedField<zl::TimedTextTrackData>("language", &zl::TimedTextTrackData::language),
        printedField<zl::TimedTextTrackData>("timedTextDownloadables",
                                             &zl::TimedTextTrackData::timedTextDownloadables),
    })

ZUVO_FIELD_TABLE(
    zl::TrickPlayData,
    {
        printedField<zl::TrickPlayData>("downloadUrls", &zl::TrickPlayData::downloadUrls),
        printedField<zl::TrickPlayData>("resolutionWidth", &zl::TrickPlayData::resolutionWidth),
        printedField<zl::TrickPlayData>("resolutionHeight", &zl::TrickPlayData::resolutionHeight),
        printedField<zl::TrickPlayData>("pixelAspectWidth", &zl::TrickPlayData::pixelAspectWidth),
        printedField<zl::TrickPlayData>("pixelAspectHeight", &zl::TrickPlayData::pixelAspectHeight),
        printedField<zl::TrickPlayData>("trickPlayInterval", &zl::TrickPlayData::trickPlayInterval),
        printedField<zl::TrickPlayData>("size", &zl::TrickPlayData::size),
        printedField<zl::TrickPlayData>("trickPlayId", &zl::TrickPlayData::trickPlayId),
    })

#undef ZUVO_FIELD_TABLE

} // namespace zuvocli
