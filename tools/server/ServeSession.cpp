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
    ServeStart started = begin(body);
    if (started.rule.delayMs)
        std::this_thread::sleep_for(started.delay());
    return finish(std::move(started));
}

ServeStart ServeSession::begin(const std::string& body) {
    ServeStart started;
    ServeReply& reply = started.reply;
    // Reading and decrypting needs no session; a failure is answered after
    // the scenario has had its say, which counts refused requests too.
    OpenedRequest& request = started.request;
    std::string& reason = started.reason;
    try {
        request = ScriptedServer::open(body, context);
        reply.message = request.message;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        reason = e.what();
        reply.message = ScriptedServer::messageName(body);
    }

    ScenarioRule& rule = started.rule;
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
    return started;
}

ServeReply ServeSession::finish(ServeStart started) {
    ServeReply reply = std::move(started.reply);
    reply.requestRoot = started.request.root;
    const ScenarioRule& rule = started.rule;
    std::string& reason = started.reason;
    if (rule.status) {
        reply.status = rule.status;
        reply.contentType = "text/plain; charset=utf-8";
        reply.body = "scenario: HTTP " + std::to_string(rule.status) + " for " + reply.message +
                     " call " + std::to_string(reply.call) + "\n";
        return reply;
    }

    if (reason.empty()) {
        try {
            reply.body = sessions.answer(started.request, rule.variation);
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
