// The authorization response: the playback catalogue of one title.
#ifndef ZUVOLIB_SUBPARSERS_AUTHRESPONSEDATA_H
#define ZUVOLIB_SUBPARSERS_AUTHRESPONSEDATA_H

#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/subparsers/CatalogueData.h"

#include <vector>

namespace velmora {
namespace zuvolib {

/// What the server offers for one title, filled by `AuthSubParser`. Records
/// are appended in document order; nothing is merged or deduplicated.
struct AuthResponseData : ResponseData {
    int movieId = 0; ///< attribute "movie_id" of "authorization"
    /// Text of "zuvo:mticket" in the decrypted payload, one byte per
    /// character, not decoded: the ticket is handed back to the server as is.
    std::vector<unsigned char> movieTicket;
    unsigned long long movieTicketExpiration = 0; ///< attribute "expiration" of "zuvo:mticket"
    std::vector<TrickPlayData> trickPlays;
    std::vector<VideoDownloadableData> videoDownloadables;
    std::vector<AudioTrackData> audioTracks;
    std::vector<TimedTextTrackData> timedTextTracks;
    /// Replaced by each "cdns" list: only the last list's CDNs remain.
    std::vector<CdnData> cdns;
    /// Replaced by each "streamingparams" list.
    std::vector<StreamingParamData> streamingParams;
};

} // namespace zuvolib
} // namespace velmora

#endif
