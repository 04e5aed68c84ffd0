// The request handling of `zuvo serve`.
#include "server/ServeSession.h"

#include <stdexcept>
#include <thread>
#include <utility>

namespace zuvocli {

/// Longest reason a 400 answer gives, in bytes.
const std::size_t MAX_REASON = 240;

ServeSession::ServeSession(const CipherContext& context, Scenario scenario,
                           std::chrono::milliseconds idle)
    : context(context), scenario(std::move(scenario)), sessions(context, idle) {}

ServeReply ServeSession::handle(const std::string& body) {
    ServeReply reply;
    // Reading and decrypting needs no session; a failure is answered after
    // the scenario has had its say, which counts refused requests too.
    OpenedRequest request;
    std::string reason;
    try {
        request = ScriptedServer::open(body, context);
        reply.message = request.message;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        reason = e.what();
        reply.message = ScriptedServer::messageName(body);
    }

    ScenarioRule rule;
    const int known = Scenario::messageIndex(reply.message);
    if (known < 0) {
        reply.message.clear(); // not a message of the protocol: not counted
    } else {
        std::lock_guard<std::mutex> hold(lock);
        reply.call = ++calls[static_cast<std::size_t>(known)];
        if (const ScenarioRule* found = scenario.find(reply.message, reply.call))
            rule = *found;
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

    if (reason.empty()) {
        try {
            reply.body = sessions.answer(request, rule.variation);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& e) {
            reason = e.what();
        }
    }
    if (!reason.empty()) {
        // One short line, whatever the document held.
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
