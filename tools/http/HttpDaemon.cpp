// The settings shared by the HTTP front and its baseline.
#include "http/HttpDaemon.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <thread>

namespace zuvocli {

unsigned httpThreadPoolSize() {
    return std::max(2u, std::thread::hardware_concurrency());
}

void raiseDescriptorLimit() {
    struct rlimit limit;
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

void setNoDelay(MHD_Connection* connection) {
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    if (!info)
        return;
    const int on = 1;
    setsockopt(info->connect_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

} // namespace zuvocli
