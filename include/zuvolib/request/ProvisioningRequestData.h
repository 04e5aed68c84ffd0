// Request records of device credential provisioning. Each travels with the
// caller's `rc` text.
#ifndef ZUVOLIB_REQUEST_PROVISIONINGREQUESTDATA_H
#define ZUVOLIB_REQUEST_PROVISIONINGREQUESTDATA_H

#include "zuvolib/request/RequestData.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// Asks for an X.509 certificate.
struct X509ProRequestData : RequestData {};

/// Asks for an NP ticket credential.
struct NPTicketProRequestData : RequestData {};

/// Asks for an elliptic-curve link credential bound to a link token.
struct ECCLinkProRequestData : RequestData {
    std::string nasToken;
};

} // namespace zuvolib
} // namespace velmora

#endif
