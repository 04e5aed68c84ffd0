#include "zuvolib/ZuvoExceptionNoCipherContext.h"

namespace velmora {
namespace zuvolib {

ZuvoExceptionNoCipherContext::ZuvoExceptionNoCipherContext()
    : std::runtime_error("No ZUVO cipher context") {}

ZuvoExceptionNoCipherContext::~ZuvoExceptionNoCipherContext() = default;

} // namespace zuvolib
} // namespace velmora
