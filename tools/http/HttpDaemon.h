// The settings the HTTP front of `zuvo serve` and its benchmark baseline
// share, so that the baseline measures the same HTTP layer.
#ifndef ZUVO_TOOL_HTTPDAEMON_H
#define ZUVO_TOOL_HTTPDAEMON_H

#include <microhttpd.h>

namespace zuvocli {

/// A pool of threads, each serving many connections through epoll (no
/// descriptor ceiling): a connection costs a thread nothing while it waits,
/// so a client trickling its header or sitting idle holds no thread, and
/// fresh connections are accepted and answered beside thousands of those.
/// An answer that must wait (a scenario's delay) suspends its connection
/// instead of holding a pool thread. The inter-thread channel lets the
/// listener be quiesced before the stop.
constexpr unsigned HTTP_DAEMON_FLAGS =
    MHD_USE_EPOLL_INTERNAL_THREAD | MHD_USE_ITC | MHD_ALLOW_SUSPEND_RESUME;

/// Threads of the daemon's pool: one per processor, at least two.
unsigned httpThreadPoolSize();

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
