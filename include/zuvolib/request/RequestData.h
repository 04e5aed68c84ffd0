// Request records common to every message, and the envelope-only messages.
#ifndef ZUVOLIB_REQUEST_REQUESTDATA_H
#define ZUVOLIB_REQUEST_REQUESTDATA_H

#include <string>

namespace velmora {
namespace zuvolib {

/// Header fields of every request record.
struct RequestData {
    std::string softwareVersion; ///< text of "zuvo:softwareversion"
    std::string uiVersion;       ///< text of "zuvo:uiversion"
    unsigned int serverTime = 0; ///< "zuvo:servertime" in the header payload
    unsigned int clientTime = 0; ///< "zuvo:clienttime" in the header payload
};

/// Ping: the envelope and an empty "zuvo:ping".
struct PingRequestData : RequestData {};

/// Pre-registration: the envelope and an empty "zuvo:preregister".
struct PreregRequestData : RequestData {};

} // namespace zuvolib
} // namespace velmora

#endif
