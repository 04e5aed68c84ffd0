// Internal: the start shared by every request document.
#ifndef ZUVOLIB_SRC_REQUEST_ENVELOPE_H
#define ZUVOLIB_SRC_REQUEST_ENVELOPE_H

#include "zuvolib/request/RequestBuilder.h"

namespace velmora {
namespace zuvolib {

/// Throws ZuvoExceptionNoCipherContext when `context` is empty.
void requireContext(const RequestBuilder::CipherContext& context);

/// A builder holding the root, the header, and `messageElement` as the
/// root's second child, which is left current. Checks the context first.
TagBuilder beginRequest(const RequestData& data, const RequestBuilder::CipherContext& context,
                        const char* messageElement);

} // namespace zuvolib
} // namespace velmora

#endif
