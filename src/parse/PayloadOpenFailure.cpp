// One flag per thread: payloads are opened on the thread that parses, and
// the exception reaches that parse's callback on the same thread.

#include "parse/PayloadOpenFailure.h"

namespace velmora {
namespace zuvolib {

namespace {
thread_local bool payloadRefused = false;
} // namespace

void notePayloadOpenFailure() {
    payloadRefused = true;
}

bool takePayloadOpenFailure() {
    const bool refused = payloadRefused;
    payloadRefused = false;
    return refused;
}

} // namespace zuvolib
} // namespace velmora
