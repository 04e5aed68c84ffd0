// The HTTP front room: the scripted server's session on HTTP and nothing
// else. It uses the server room; only the command line uses it.
//
// The HTTP front of `zuvo serve`: a libmicrohttpd daemon, one POST route to
// the session, an exchange log line per answered request, and a clean stop
// on SIGINT and SIGTERM.
#ifndef ZUVO_TOOL_HTTPFRONT_H
#define ZUVO_TOOL_HTTPFRONT_H

#include "server/ServeLog.h"
#include "server/ServeSession.h"

#include <cstddef>
#include <string>

namespace zuvocli {

/// Where the front listens: a host name or address and a port (0: any free).
struct ListenAddress {
    std::string host;
    int port = 0;
};

/// Reads "HOST:PORT", "[IPv6]:PORT" or ":PORT" (loopback). Throws
/// UsageError saying what is wrong.
ListenAddress parseListenAddress(const std::string& text);

/// Serves POST requests to `path` from `session` until SIGINT or SIGTERM.
/// Once listening it prints "zuvo serve: listening on URL" on standard
/// output, with the port actually bound. Bodies over `maxBody` bytes, sized
/// or chunked, get 413 and are not kept; other methods on `path` get 405,
/// other paths 404. Every answered request is recorded in `log`; a failed
/// write of it stops the server. Throws UsageError when the address cannot
/// be bound or the daemon does not start.
void serveHttp(const ListenAddress& address, const std::string& path, std::size_t maxBody,
               ServeSession& session, ServeLog& log);

} // namespace zuvocli

#endif
