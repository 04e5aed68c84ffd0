// Field tables of the playback catalogue records, for printing.
#ifndef ZUVO_TOOL_CATALOGUEFIELDS_H
#define ZUVO_TOOL_CATALOGUEFIELDS_H

#include "records/JsonFields.h"

#include <zuvolib/subparsers/CatalogueData.h>

namespace zuvocli {

/// Catalogue records print through their tables; they are never read.
template <class R> struct PrintedRecord {
    static Json to(const R& record) { return RecordConvert<R>::to(record); }
};

#define ZUVO_PRINTED_RECORD(R)                                                                     \
    template <> const FieldTable<R>& fieldTable();                                                 \
    template <> struct Convert<R> : PrintedRecord<R> {};

ZUVO_PRINTED_RECORD(velmora::zuvolib::LanguageData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::UrlData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::CdnData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::StreamingParamData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::VideoDownloadableData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::AudioDownloadableData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::TimedTextDownloadableData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::AudioTrackData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::TimedTextTrackData)
ZUVO_PRINTED_RECORD(velmora::zuvolib::TrickPlayData)

#undef ZUVO_PRINTED_RECORD

} // namespace zuvocli

#endif
