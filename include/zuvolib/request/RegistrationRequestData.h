// Request records of registration, token registration and authentication
// renewal. Each travels with the caller's `rc` text in its payload.
#ifndef ZUVOLIB_REQUEST_REGISTRATIONREQUESTDATA_H
#define ZUVOLIB_REQUEST_REGISTRATIONREQUESTDATA_H

#include "zuvolib/request/RequestData.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// Registers the device by rendezvous code or by subscriber identifier.
struct RegRequestData : RequestData {
    /// `regType` value for registration by rendezvous code; any other value
    /// registers by subscriber identifier.
    enum { REG_RENDEZVOUS = 0 };

    int regType = REG_RENDEZVOUS;
    std::string regCode; ///< the rendezvous code; written only for REG_RENDEZVOUS
};

/// One identity cookie.
struct IdCookie {
    std::string name;
    std::string value;
};

/// Registers the device with identity cookies obtained earlier.
struct TokenRegisterRequestData : RequestData {
    std::vector<IdCookie> idCookies; ///< written in this order
};

/// Renews the device's credentials.
struct AuthrenewRequestData : RequestData {
    /// The renewal types; other values are refused with std::invalid_argument.
    enum { RENEWAL_STB = 0, RENEWAL_SHOPPER_ID = 1, RENEWAL_LINK = 3 };

    int renewalType = RENEWAL_STB;
    std::string shopperId; ///< written only for RENEWAL_SHOPPER_ID
    std::string nasToken;  ///< link token; written only for RENEWAL_LINK
};

} // namespace zuvolib
} // namespace velmora

#endif
