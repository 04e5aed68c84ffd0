#include "zuvolib/request/Protocol.h"

#ifndef ZUVO_NAMESPACE_BASE
#error "ZUVO_NAMESPACE_BASE must be defined by the build"
#endif

namespace velmora {
namespace zuvolib {

const std::string PROTOCOL_VERSION = "2.7";
const std::string namespaceBase = ZUVO_NAMESPACE_BASE;

} // namespace zuvolib
} // namespace velmora
