// The error raised when an operation needs the cipher context and none is given.
#ifndef ZUVOLIB_ZUVOEXCEPTIONNOCIPHERCONTEXT_H
#define ZUVOLIB_ZUVOEXCEPTIONNOCIPHERCONTEXT_H

#include "zuvolib/export.h"

#include <stdexcept>

namespace velmora {
namespace zuvolib {

/// Thrown when an empty cipher context is handed to a request builder, or
/// when an encrypted payload must be decrypted without one. `what()` is
/// "No ZUVO cipher context".
class ZUVO_API ZuvoExceptionNoCipherContext : public std::runtime_error {
public:
    ZuvoExceptionNoCipherContext();
    ~ZuvoExceptionNoCipherContext() override;
};

} // namespace zuvolib
} // namespace velmora

#endif
