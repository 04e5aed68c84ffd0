// The yardstick of scripts/bench-serve: a server on the same HTTP library
// with the same settings as the front of `zuvo serve`, answering every POST
// with a fixed body, so that the benchmark reports the server's cost as a
// ratio to the HTTP layer's own. Listens on 127.0.0.1 and a free port,
// prints "listening on http://127.0.0.1:PORT/", ends on SIGTERM.
#include <httplib.h>

#include <iostream>

/// As many workers as the front of `zuvo serve` has.
const std::size_t WORKERS = 1024;

int main() {
    httplib::Server server;
    server.set_tcp_nodelay(true);
    // The library's interface takes the pool as a raw pointer it deletes.
    server.new_task_queue = [] { return new httplib::ThreadPool(WORKERS); };
    server.Post(".*", [](const httplib::Request&, httplib::Response& response) {
        response.set_content("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ok/>\n",
                             "text/xml; charset=utf-8");
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    if (port < 0)
        return 1;
    std::cout << "listening on http://127.0.0.1:" << port << "/" << std::endl;
    server.listen_after_bind();
    return 0;
}
