// Request records of the web API messages.
#ifndef ZUVOLIB_REQUEST_WEBAPIREQUESTDATA_H
#define ZUVOLIB_REQUEST_WEBAPIREQUESTDATA_H

#include "zuvolib/request/RequestData.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// Activates the device's web API access with an OAuth request token.
struct ActivateWebApiRequestData : RequestData {
    std::string oauthRequestToken;
    std::string oauthConsumerKey;
};

/// Asks the server to fetch one web API address for the device.
struct WebApiProxyRequestData : RequestData {
    std::string url; ///< path and query, written unescaped
};

} // namespace zuvolib
} // namespace velmora

#endif
