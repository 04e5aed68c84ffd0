// Request records of the reports sent after playback: play data and log chunks.
#ifndef ZUVOLIB_REQUEST_REPORTINGREQUESTDATA_H
#define ZUVOLIB_REQUEST_REPORTINGREQUESTDATA_H

#include "zuvolib/request/RequestData.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// How long one downloadable stream was played.
struct StreamPlayTime {
    std::string downloadableId; ///< as received in the authorization response
    int playTime = 0;
};

/// Reports how a viewing went. Times are written as given; the caller and the
/// server agree on their unit.
struct PlaydataRequestData : RequestData {
    std::vector<unsigned char> lticket; ///< playback ticket, returned byte for byte
    int movieId = 0;
    int totalPlaybackTime = 0;
    int laMovieTime = 0;    ///< last position reached in the title
    int eventMovieTime = 0; ///< position at which the reported event happened
    std::vector<StreamPlayTime> videoStreamPlayTimes;
    std::vector<StreamPlayTime> audioStreamPlayTimes;
    std::vector<StreamPlayTime> timedTextStreamPlayTimes;
};

/// Uploads one numbered chunk of the device log.
struct LogblobRequestData : RequestData {
    int sequenceNumber = 0;
    std::string logData; ///< any bytes, zero included; sent as Base64
};

} // namespace zuvolib
} // namespace velmora

#endif
