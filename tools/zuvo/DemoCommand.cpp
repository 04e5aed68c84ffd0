// zuvo demo: a whole device session against the scripted server.
#include "Commands.h"

#include "Errors.h"

namespace zuvocli {

int runDemo() {
    throw UsageError("demo: not available yet");
}

} // namespace zuvocli
