// The HTTP front of `zuvo serve`, on libmicrohttpd: a pool of threads
// serving every connection, one route to the session, answers held back by a
// scenario's delay waiting on a suspended connection, the exchange logged
// once its answer is sent.
#include "http/HttpFront.h"

#include "common/Errors.h"
#include "http/HttpDaemon.h"
#include "http/ResumeTimer.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <netdb.h>
#include <pthread.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace zuvocli {

ListenAddress parseListenAddress(const std::string& text) {
    const std::string::size_type colon = text.rfind(':');
    if (colon == std::string::npos)
        throw UsageError("--listen '" + text + "': expected HOST:PORT, e.g. 127.0.0.1:8080");
    ListenAddress address;
    address.host = text.substr(0, colon);
    if (address.host.size() >= 2 && address.host.front() == '[' && address.host.back() == ']')
        address.host = address.host.substr(1, address.host.size() - 2);
    if (address.host.empty())
        address.host = "127.0.0.1";
    const std::string port = text.substr(colon + 1);
    if (port.empty() || port.size() > 5 ||
        port.find_first_not_of("0123456789") != std::string::npos || std::stoi(port) > 65535)
        throw UsageError("--listen '" + text + "': the port must be a number from 0 to 65535");
    address.port = std::stoi(port);
    return address;
}

namespace {

const char* const PLAIN_TEXT = "text/plain; charset=utf-8";

/// What the daemon's callbacks share.
struct Front {
    std::string path;
    std::size_t maxBody;
    ServeSession& session;
    ServeLog& log;
    std::string origin;       ///< "http://HOST:PORT", the start of a logged URL
    std::atomic<int> busy{0}; ///< requests whose header is in and answer not yet sent
    ResumeTimer timer{};      ///< resumes connections whose answer waited out a delay
};

/// One connection: the target of its current request as the client sent it
/// (the daemon hands the handler the decoded path without the query).
struct Connection {
    std::string target;
};

/// One request, from its header to the end of its answer.
struct Request {
    std::string body;
    bool over = false; ///< the body passed the limit; the rest is discarded
    bool answered = false;
    /// Read and matched, its answer held back by a delay (connection suspended).
    std::unique_ptr<ServeStart> waiting;
    std::chrono::steady_clock::time_point begun; ///< when the session got the body
    ServeExchange exchange;
};

/// True for the names and addresses of this machine's loopback interface.
bool isLoopback(const std::string& host) {
    return host == "localhost" || host == "::1" || host.compare(0, 4, "127.") == 0;
}

/// Queues the request's reply as the answer; `close` ends the connection
/// after it (a body left unread).
MHD_Result answer(MHD_Connection* connection, Request& request, const char* allow = nullptr,
                  bool close = false) {
    const ServeReply& reply = request.exchange.reply;
    MHD_Response* response = MHD_create_response_from_buffer(
        reply.body.size(), const_cast<char*>(reply.body.data()), MHD_RESPMEM_MUST_COPY);
    if (!response)
        return MHD_NO;
    if (!reply.contentType.empty())
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, reply.contentType.c_str());
    if (allow)
        MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, allow);
    if (close)
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONNECTION, "close");
    const MHD_Result queued =
        MHD_queue_response(connection, static_cast<unsigned>(reply.status), response);
    MHD_destroy_response(response);
    request.answered = true;
    return queued;
}

/// Makes the request's reply a 413, to be sent closing the connection.
void refuseBody(Request& request) {
    request.over = true;
    request.body.clear();
    request.body.shrink_to_fit();
    request.exchange.hasBody = false;
    request.exchange.reply = ServeReply();
    request.exchange.reply.status = 413;
    request.exchange.reply.body = "body over the size limit\n";
    request.exchange.reply.contentType = PLAIN_TEXT;
    request.exchange.reply.error = "body over the size limit";
}

/// Answers a request whose body is in: the session's reply on the route,
/// 404 off it, 405 for another method on it.
MHD_Result answerWhole(Front& front, MHD_Connection* connection, const char* url,
                       Request& request) {
    ServeExchange& exchange = request.exchange;
    ServeReply& reply = exchange.reply;
    exchange.hasBody = !request.body.empty();
    if (front.path != url) {
        reply.status = 404;
        reply.error = std::string("no protocol route for ") + url;
    } else if (exchange.method != MHD_HTTP_METHOD_POST) {
        reply.status = 405;
        reply.body = "use POST\n";
        reply.contentType = PLAIN_TEXT;
        reply.error = exchange.method + " is not allowed, use POST";
        exchange.request = std::move(request.body);
        return answer(connection, request, MHD_HTTP_METHOD_POST);
    } else {
        exchange.hasBody = true;
        try {
            ServeStart started;
            if (request.waiting) {
                // Resumed: the delay is over.
                started = std::move(*request.waiting);
                request.waiting.reset();
            } else {
                exchange.started = std::chrono::system_clock::now();
                request.begun = std::chrono::steady_clock::now();
                started = front.session.begin(request.body);
                if (started.rule.delayMs) {
                    request.waiting = std::make_unique<ServeStart>(std::move(started));
                    MHD_suspend_connection(connection);
                    front.timer.resumeAt(request.begun + request.waiting->delay(), connection);
                    return MHD_YES;
                }
            }
            reply = front.session.finish(std::move(started));
        } catch (const std::exception&) {
            reply = ServeReply();
            reply.status = 500;
            reply.body = "internal error\n";
            reply.contentType = PLAIN_TEXT;
            reply.error = "internal error";
        }
        exchange.milliseconds = std::chrono::duration<double, std::milli>(
                                    std::chrono::steady_clock::now() - request.begun)
                                    .count();
    }
    exchange.request = std::move(request.body);
    return answer(connection, request);
}

/// The daemon's request handler: called once the header is in, then with
/// each piece of the body, then once more when the body is whole.
MHD_Result handleRequest(void* frontPointer, MHD_Connection* connection, const char* url,
                         const char* method, const char*, const char* data, std::size_t* size,
                         void** slot) try {
    Front& front = *static_cast<Front*>(frontPointer);
    if (!*slot) {
        // The request's record is owned by the daemon's slot for it until
        // endRequest takes it back.
        auto request = std::make_unique<Request>();
        request->exchange.started = std::chrono::system_clock::now();
        request->exchange.method = method;
        *slot = request.release();
        ++front.busy;
        // A body declared over the limit is refused before it is sent.
        const char* length = MHD_lookup_connection_value(connection, MHD_HEADER_KIND,
                                                         MHD_HTTP_HEADER_CONTENT_LENGTH);
        if (length && std::strtoull(length, nullptr, 10) > front.maxBody) {
            Request& refused = *static_cast<Request*>(*slot);
            refuseBody(refused);
            return answer(connection, refused, nullptr, true);
        }
        return MHD_YES;
    }
    Request& request = *static_cast<Request*>(*slot);
    if (*size > 0) {
        // A chunked body is kept only up to the limit: the daemon takes an
        // answer only before the body or after it, so the rest is read and
        // dropped, memory staying flat, and the 413 follows it.
        const std::size_t length = *size;
        *size = 0;
        if (request.over)
            return MHD_YES;
        if (request.body.size() + length > front.maxBody)
            refuseBody(request);
        else
            request.body.append(data, length);
        return MHD_YES;
    }
    if (request.answered)
        return MHD_YES;
    if (request.over)
        return answer(connection, request, nullptr, true);
    return answerWhole(front, connection, url, request);
} catch (const std::exception&) {
    return MHD_NO; // the daemon closes the connection
}

/// Called when a request ends, answered or not: logs the exchange of an
/// answered one and frees its record.
void endRequest(void* frontPointer, MHD_Connection* connection, void** slot,
                MHD_RequestTerminationCode) {
    std::unique_ptr<Request> request(static_cast<Request*>(*slot));
    *slot = nullptr;
    if (!request)
        return;
    Front& front = *static_cast<Front*>(frontPointer);
    --front.busy;
    if (!request->answered)
        return;
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    const Connection* open = info ? static_cast<const Connection*>(info->socket_context) : nullptr;
    request->exchange.url = front.origin + (open ? open->target : std::string());
    front.log.record(request->exchange);
}

/// Keeps the target of each request line as sent, before the daemon decodes it.
void* keepTarget(void*, const char* uri, MHD_Connection* connection) {
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    if (info && info->socket_context)
        static_cast<Connection*>(info->socket_context)->target = uri;
    return nullptr;
}

/// Opens and closes a connection's record, owned by the daemon's socket
/// context from start to close; no delay on its answers.
void trackConnection(void*, MHD_Connection* connection, void** context,
                     MHD_ConnectionNotificationCode code) {
    if (code == MHD_CONNECTION_NOTIFY_STARTED) {
        setNoDelay(connection);
        *context = std::make_unique<Connection>().release();
    } else {
        std::unique_ptr<Connection> closed(static_cast<Connection*>(*context));
        *context = nullptr;
    }
}

/// A listening socket on the address, with address reuse only (a second
/// server on a port in use fails to bind) and the system's largest backlog,
/// so that bursts of fresh connections are not dropped. Returns -1 when no
/// address of the host can be bound; sets `port` to the port bound.
int openListener(const ListenAddress& address, int& port) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE;
    addrinfo* found = nullptr;
    if (getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &hints, &found))
        return -1;
    int listener = -1;
    for (const addrinfo* each = found; each && listener < 0; each = each->ai_next) {
        listener = socket(each->ai_family, each->ai_socktype | SOCK_CLOEXEC, each->ai_protocol);
        if (listener < 0)
            continue;
        const int on = 1;
        setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_storage bound{};
        socklen_t length = sizeof bound;
        if (bind(listener, each->ai_addr, each->ai_addrlen) != 0 ||
            listen(listener, SOMAXCONN) != 0 ||
            getsockname(listener, reinterpret_cast<sockaddr*>(&bound), &length) != 0) {
            close(listener);
            listener = -1;
            continue;
        }
        port = ntohs(bound.ss_family == AF_INET6
                         ? reinterpret_cast<const sockaddr_in6*>(&bound)->sin6_port
                         : reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
    }
    freeaddrinfo(found);
    return listener;
}

} // namespace

void serveHttp(const ListenAddress& address, const std::string& path, std::size_t maxBody,
               ServeSession& session, ServeLog& log) {
    if (path.empty() || path[0] != '/')
        throw UsageError("--path '" + path + "': must start with /");
    // A client that goes away mid-answer must not end the server.
    std::signal(SIGPIPE, SIG_IGN);
    raiseDescriptorLimit();
    // SIGINT and SIGTERM are blocked before the daemon starts its threads,
    // which inherit the mask, so only the sigwait below sees them, even one
    // that comes before the server runs. They stay blocked afterwards: the
    // process is ending and a second signal must not cut short the HAR file.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // A log that can no longer be written ends the run as a signal does.
    log.onFailure([waiter = pthread_self()] { pthread_kill(waiter, SIGTERM); });

    const std::string host =
        address.host.find(':') == std::string::npos ? address.host : "[" + address.host + "]";
    int port = address.port;
    const int listener = openListener(address, port);
    if (listener < 0)
        throw UsageError("cannot listen on " + host + ":" + std::to_string(address.port) +
                         " (address in use or not available)");
    Front front{path, maxBody, session, log, "http://" + host + ":" + std::to_string(port)};
    MHD_Daemon* daemon = MHD_start_daemon(
        HTTP_DAEMON_FLAGS, 0, nullptr, nullptr, &handleRequest, &front, MHD_OPTION_LISTEN_SOCKET,
        listener, MHD_OPTION_CONNECTION_LIMIT, HTTP_CONNECTION_LIMIT, MHD_OPTION_THREAD_POOL_SIZE,
        httpThreadPoolSize(), MHD_OPTION_CONNECTION_TIMEOUT, HTTP_IDLE_SECONDS,
        MHD_OPTION_NOTIFY_CONNECTION, &trackConnection, nullptr, MHD_OPTION_NOTIFY_COMPLETED,
        &endRequest, &front, MHD_OPTION_URI_LOG_CALLBACK, &keepTarget, nullptr, MHD_OPTION_END);
    if (!daemon) {
        close(listener);
        throw UsageError("cannot serve on " + host + ":" + std::to_string(port) +
                         " (the HTTP daemon did not start)");
    }

    if (!isLoopback(address.host))
        std::cerr << "zuvo serve: note: " << host
                  << " is not a loopback address; other machines can reach this server"
                  << std::endl;
    std::cout << "zuvo serve: listening on http://" << host << ":" << port << path << std::endl;
    int signal = 0;
    sigwait(&signals, &signal);

    // No new connections; answers held back by a delay go out now, and
    // answers under way get a short grace. Then the daemon closes the
    // connections still open (a client trickling its header, an idle
    // keep-alive) and joins its threads, every answered exchange logged.
    MHD_quiesce_daemon(daemon);
    front.timer.stop();
    for (int i = 0; i < 50 && front.busy > 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    MHD_stop_daemon(daemon);
    close(listener);
}

} // namespace zuvocli
