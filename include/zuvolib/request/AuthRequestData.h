// Request record of the authorization message.
#ifndef ZUVOLIB_REQUEST_AUTHREQUESTDATA_H
#define ZUVOLIB_REQUEST_AUTHREQUESTDATA_H

#include "zuvolib/request/RequestData.h"
#include "zuvolib/subparsers/ContentProfile.h"

#include <vector>

namespace velmora {
namespace zuvolib {

/// Asks to play one track of a title and lists the content profiles the
/// device can play. Each list is written in the order given, one element per
/// entry; a value without an identifier gives an empty element.
struct AuthRequestData : RequestData {
    int movieId = 0; ///< title to play
    int trackId = 0; ///< track of that title
    std::vector<ContentProfile> videoProfiles;
    std::vector<ContentProfile> audioProfiles;
    std::vector<ContentProfile> timedTextProfiles;
};

} // namespace zuvolib
} // namespace velmora

#endif
