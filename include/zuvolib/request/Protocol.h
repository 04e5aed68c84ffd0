// Protocol constants shared by every request.
#ifndef ZUVOLIB_REQUEST_PROTOCOL_H
#define ZUVOLIB_REQUEST_PROTOCOL_H

#include "zuvolib/export.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// The protocol version, "2.7"; it ends the namespace URI.
ZUVO_API extern const std::string PROTOCOL_VERSION;

/// Scheme, host and path of the namespace URI, ending in "/qrx/zuvo/"; set
/// when the library is configured (CMake cache variable ZUVO_NAMESPACE_BASE).
ZUVO_API extern const std::string namespaceBase;

} // namespace zuvolib
} // namespace velmora

#endif
