// The yardstick of scripts/bench-serve: a server on the same HTTP library
// with the same settings as the front of `zuvo serve`, answering every
// request with a fixed body once its body is read, so that the benchmark
// reports the server's cost as a ratio to the HTTP layer's own. Listens on
// 127.0.0.1 and a free port, prints "listening on http://127.0.0.1:PORT/",
// ends on SIGTERM.
#include "http/HttpDaemon.h"

#include <csignal>
#include <cstring>
#include <iostream>
#include <netinet/in.h>
#include <pthread.h>

namespace {

const char BODY[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ok/>\n";

/// Reads the body and discards it; answers once it is whole. The slot marks
/// a request whose header was seen.
MHD_Result answer(void*, MHD_Connection* connection, const char*, const char*, const char*,
                  const char*, std::size_t* size, void** slot) {
    static int seen;
    if (!*slot) {
        *slot = &seen;
        return MHD_YES;
    }
    if (*size > 0) {
        *size = 0;
        return MHD_YES;
    }
    MHD_Response* response = MHD_create_response_from_buffer(
        sizeof BODY - 1, const_cast<char*>(BODY), MHD_RESPMEM_PERSISTENT);
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/xml; charset=utf-8");
    const MHD_Result queued = MHD_queue_response(connection, MHD_HTTP_OK, response);
    MHD_destroy_response(response);
    return queued;
}

void noDelay(void*, MHD_Connection* connection, void**, MHD_ConnectionNotificationCode code) {
    if (code == MHD_CONNECTION_NOTIFY_STARTED)
        zuvocli::setNoDelay(connection);
}

} // namespace

int main() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    zuvocli::raiseDescriptorLimit();
    sockaddr_in loopback{};
    loopback.sin_family = AF_INET;
    loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    MHD_Daemon* daemon = MHD_start_daemon(
        zuvocli::HTTP_DAEMON_FLAGS, 0, nullptr, nullptr, &answer, nullptr, MHD_OPTION_SOCK_ADDR,
        &loopback, MHD_OPTION_LISTEN_BACKLOG_SIZE, SOMAXCONN, MHD_OPTION_CONNECTION_LIMIT,
        zuvocli::HTTP_CONNECTION_LIMIT, MHD_OPTION_THREAD_POOL_SIZE, zuvocli::httpThreadPoolSize(),
        MHD_OPTION_CONNECTION_TIMEOUT, zuvocli::HTTP_IDLE_SECONDS, MHD_OPTION_NOTIFY_CONNECTION,
        &noDelay, nullptr, MHD_OPTION_END);
    if (!daemon)
        return 1;
    const MHD_DaemonInfo* info = MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT);
    std::cout << "listening on http://127.0.0.1:" << (info ? info->port : 0) << "/" << std::endl;
    int signal = 0;
    sigwait(&signals, &signal);
    MHD_stop_daemon(daemon);
    return 0;
}
