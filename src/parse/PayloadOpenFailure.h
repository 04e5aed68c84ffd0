// Tells a parse that the exception passing through it came from a payload
// that could not be opened, without changing the exception itself.
#ifndef ZUVOLIB_SRC_PARSE_PAYLOADOPENFAILURE_H
#define ZUVOLIB_SRC_PARSE_PAYLOADOPENFAILURE_H

namespace velmora {
namespace zuvolib {

/// Marks, for the calling thread, that the cipher context or the Base64
/// decoder has just refused a payload. Called while that exception is
/// thrown on.
void notePayloadOpenFailure();

/// Whether a payload was refused on this thread since the last call, and
/// clears the mark. A parse calls it when it starts and when an exception
/// passes through it.
bool takePayloadOpenFailure();

} // namespace zuvolib
} // namespace velmora

#endif
