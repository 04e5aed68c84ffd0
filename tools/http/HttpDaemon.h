// The settings the HTTP front of `zuvo serve` and its benchmark baseline
// share, so that the baseline measures the same HTTP layer.
#ifndef ZUVO_TOOL_HTTPDAEMON_H
#define ZUVO_TOOL_HTTPDAEMON_H

#include <microhttpd.h>

namespace zuvocli {

/// Each connection is served on a thread of its own, and a listening thread
/// accepts them with poll() (no descriptor ceiling): a slow answer (a
/// scenario's delay) or a client trickling its header holds only its own
/// connection, and a fresh one is accepted and answered beside them. The
/// inter-thread channel lets the listener be quiesced before the stop.
constexpr unsigned HTTP_DAEMON_FLAGS =
    MHD_USE_THREAD_PER_CONNECTION | MHD_USE_POLL_INTERNAL_THREAD | MHD_USE_ITC;

/// Connections open at once; more wait in the listen backlog.
constexpr unsigned HTTP_CONNECTION_LIMIT = 4096;

/// A connection with no traffic for this many seconds is closed (an idle
/// keep-alive or a client that stopped sending mid-request).
constexpr unsigned HTTP_IDLE_SECONDS = 60;

/// Raises this process's soft limit of open descriptors to its hard limit,
/// so that the connection limit, not the descriptor limit, is reached first.
void raiseDescriptorLimit();

/// Sets TCP_NODELAY on an accepted connection: answers go out at once,
/// without Nagle's delay, which would make a device reusing its connection
/// wait for the peer's delayed acknowledgement each time.
void setNoDelay(MHD_Connection* connection);

} // namespace zuvocli

#endif
