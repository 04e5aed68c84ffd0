// The HTTP front of `zuvo serve`, on cpp-httplib.
#include "http/HttpFront.h"

#include "common/Errors.h"

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <pthread.h>
#include <regex>
#include <thread>

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

/// The exchange the route handler answered on this thread, for the logger
/// that runs on the same thread once the response is written.
thread_local ServeExchange* handled = nullptr;

/// True for the names and addresses of this machine's loopback interface.
bool isLoopback(const std::string& host) {
    return host == "localhost" || host == "::1" || host.compare(0, 4, "127.") == 0;
}

/// `path` as a regular expression that matches only itself.
std::string literalPattern(const std::string& path) {
    static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
    return std::regex_replace(path, special, R"(\$&)");
}

/// Waits on another thread for SIGINT or SIGTERM and stops the server.
/// Made before the server starts its workers, which inherit the blocked
/// signals, so only `sigwait` sees them. They stay blocked afterwards: the
/// process is ending and a second signal must not cut short the HAR file.
class SignalStop {
public:
    explicit SignalStop(httplib::Server& server) {
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        waiter = std::thread([this, &server] {
            int signal = 0;
            sigwait(&signals, &signal);
            // A signal that comes before the server runs would be lost on it.
            while (!finished && !server.is_running())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            server.stop();
        });
    }
    /// Wakes the waiter when no signal came (the server ended by itself).
    ~SignalStop() {
        finished = true;
        pthread_kill(waiter.native_handle(), SIGTERM);
        waiter.join();
    }

private:
    sigset_t signals;
    std::atomic<bool> finished{false};
    std::thread waiter;
};

} // namespace

void serveHttp(const ListenAddress& address, const std::string& path, std::size_t maxBody,
               ServeSession& session, ServeLog& log) {
    if (path.empty() || path[0] != '/')
        throw UsageError("--path '" + path + "': must start with /");
    // A client that goes away mid-answer must not end the server.
    std::signal(SIGPIPE, SIG_IGN);

    httplib::Server server;
    // From here on SIGINT and SIGTERM stop the server cleanly, even one that
    // has not started yet.
    SignalStop stop(server);
    // A log that can no longer be written ends the run.
    log.onFailure([&server] { server.stop(); });
    // Answers go out at once: with Nagle's delay on, a device that reuses
    // its connection waits for the peer's delayed acknowledgement each time.
    server.set_tcp_nodelay(true);
    // One worker per connection: more of them, so that slow or idle
    // connections leave room for others. The library's interface hands the
    // pool over as a raw pointer it deletes.
    const std::size_t workers = std::max<std::size_t>(64, 16 * std::thread::hardware_concurrency());
    server.new_task_queue = [workers] { return new httplib::ThreadPool(workers); };
    // Address reuse only: a second server on a port in use must fail to
    // bind, not share the port. The socket is kept to widen its backlog.
    int listening = -1;
    server.set_socket_options([&listening](int socket) {
        const int on = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        listening = socket;
    });
    const std::string route = literalPattern(path);
    server.Post(route, [&session, maxBody](const httplib::Request&, httplib::Response& response,
                                           const httplib::ContentReader& reader) {
        // Bodies are read up to the limit and refused there, whether sized or
        // chunked, and the connection is closed on them. (The library's own
        // limit answers a content reader's route with 400.)
        std::string body;
        bool over = false;
        reader([&](const char* data, std::size_t length) {
            over = body.size() + length > maxBody;
            if (!over)
                body.append(data, length);
            return !over;
        });
        if (over) {
            response.status = 413;
            response.set_header("Connection", "close");
            response.set_content("body over the size limit\n", "text/plain; charset=utf-8");
            return;
        }
        ServeExchange exchange;
        exchange.started = std::chrono::system_clock::now();
        const auto start = std::chrono::steady_clock::now();
        exchange.reply = session.handle(body);
        exchange.milliseconds =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count();
        exchange.request = std::move(body);
        response.status = exchange.reply.status;
        response.set_content(exchange.reply.body, exchange.reply.contentType.c_str());
        // Kept until the logger of this request takes it, on this thread.
        static thread_local ServeExchange last;
        last = std::move(exchange);
        handled = &last;
    });
    const auto notAllowed = [](const httplib::Request&, httplib::Response& response) {
        response.status = 405;
        response.set_header("Allow", "POST");
        response.set_content("use POST\n", "text/plain; charset=utf-8");
    };
    server.Get(route, notAllowed);
    server.Put(route, notAllowed);
    server.Delete(route, notAllowed);
    server.Options(route, notAllowed);
    server.Patch(route, notAllowed);
    server.set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
            response.status = 500;
            response.set_content("internal error\n", "text/plain; charset=utf-8");
        });

    const std::string host =
        address.host.find(':') == std::string::npos ? address.host : "[" + address.host + "]";
    int port = address.port;
    server.set_logger(
        [&log, &port, host](const httplib::Request& request, const httplib::Response& response) {
            ServeExchange exchange;
            if (handled) {
                exchange = std::move(*handled);
                handled = nullptr;
            } else {
                // Not answered by the session: another path or method, or a body
                // over the limit.
                exchange.started = std::chrono::system_clock::now();
                exchange.reply.status = response.status;
                exchange.reply.body = response.body;
                exchange.method = request.method;
                exchange.reply.contentType = response.get_header_value("Content-Type");
                if (response.status == 413) {
                    exchange.hasBody = false;
                    exchange.reply.error = "body over the size limit";
                } else {
                    exchange.hasBody = !request.body.empty();
                    exchange.request = request.body;
                    exchange.reply.error =
                        response.status == 405   ? request.method + " is not allowed, use POST"
                        : response.status == 500 ? std::string("internal error")
                        : response.status == 404 ? "no protocol route for " + request.path
                                                 : "HTTP " + std::to_string(response.status) +
                                                       " from the HTTP layer (malformed or "
                                                       "unreadable request)";
                }
            }
            exchange.url = "http://" + host + ":" + std::to_string(port) + request.target;
            log.record(exchange);
        });

    if (port == 0)
        port = server.bind_to_any_port(address.host);
    else if (!server.bind_to_port(address.host, port))
        port = -1;
    // The library listens with a short fixed backlog; listening again on the
    // bound socket widens it, so bursts of fresh connections are not dropped.
    if (port >= 0 && listening >= 0)
        ::listen(listening, SOMAXCONN);
    if (port < 0)
        throw UsageError("cannot listen on " + host + ":" + std::to_string(address.port) +
                         " (address in use or not available)");

    if (!isLoopback(address.host))
        std::cerr << "zuvo serve: note: " << host
                  << " is not a loopback address; other machines can reach this server"
                  << std::endl;
    std::cout << "zuvo serve: listening on http://" << host << ":" << port << path << std::endl;
    server.listen_after_bind();
}

} // namespace zuvocli
