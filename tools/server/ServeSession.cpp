// The request handling of `zuvo serve`.
#include "server/ServeSession.h"

#include <chrono>
#include <thread>
#include <utility>

namespace zuvocli {

/// Longest reason a 400 answer gives, in bytes.
const std::size_t MAX_REASON = 240;

ServeSession::ServeSession(const CipherContext& context, Scenario scenario)
    : server(context), scenario(std::move(scenario)) {}

ServeReply ServeSession::handle(const std::string& body) {
    ServeReply reply;
    reply.message = ScriptedServer::messageName(body);

    // Count the request and find its rule; the count is per message and
    // includes requests the server goes on to refuse.
    ScenarioRule rule;
    {
        std::lock_guard<std::mutex> hold(lock);
        if (!reply.message.empty()) {
            reply.call = ++calls[reply.message];
            if (const ScenarioRule* found = scenario.find(reply.message, reply.call))
                rule = *found;
        }
    }
    reply.scenario = rule.what;
    if (rule.delayMs)
        std::this_thread::sleep_for(std::chrono::milliseconds(rule.delayMs));
    if (rule.status) {
        reply.status = rule.status;
        reply.contentType = "text/plain; charset=utf-8";
        reply.body = "scenario: HTTP " + std::to_string(rule.status) + " for " + reply.message +
                     " call " + std::to_string(reply.call) + "\n";
        return reply;
    }

    try {
        std::lock_guard<std::mutex> hold(lock);
        reply.body = server.answer(body, rule.variation);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        // One short line, whatever the document held.
        std::string reason = e.what();
        if (reason.size() > MAX_REASON)
            reason = reason.substr(0, MAX_REASON - 3) + "...";
        for (char& c : reason) {
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
                c = ' ';
        }
        reply.status = 400;
        reply.contentType = "text/plain; charset=utf-8";
        reply.error = reason;
        reply.body = reason + "\n";
        return reply;
    }
    if (rule.truncate && rule.keepBytes < reply.body.size())
        reply.body.resize(rule.keepBytes);
    return reply;
}

} // namespace zuvocli
