// The request handling of `zuvo serve`, apart from HTTP: the device
// sessions of the scripted server, bent by the scenario's rules, answering
// request bodies with a status, a content type and a body.
#ifndef ZUVO_TOOL_SERVESESSION_H
#define ZUVO_TOOL_SERVESESSION_H

#include "server/DeviceSessions.h"
#include "server/Scenario.h"
#include "server/ScriptedServer.h"

#include <array>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>

namespace zuvocli {

/// The answer to one request body, and what the log says about it.
struct ServeReply {
    int status = 200;
    std::string contentType = "text/xml; charset=utf-8";
    std::string body;
    std::string message;   ///< the request's message name, empty when unreadable
    unsigned int call = 0; ///< how many requests of that message so far, this one included
    std::string scenario;  ///< what the matching scenario rule did, empty for none
    std::string error;     ///< why a 400 refused the body
    /// The request body's document element as the session read it, for the
    /// log to decode without reading the body again; null when unread.
    std::shared_ptr<const XmlElement> requestRoot;
};

/// A request read and matched against the scenario, not answered yet.
struct ServeStart {
    OpenedRequest request;
    std::string reason; ///< why the body is no acceptable request; empty when it reads
    ScenarioRule rule;  ///< the scenario's rule for it (none: the default rule)
    ServeReply reply;   ///< message, call and scenario filled in

    /// How long the scenario holds the answer back.
    std::chrono::milliseconds delay() const { return std::chrono::milliseconds(rule.delayMs); }
};

/// The server behind the HTTP front: a session per device (see
/// DeviceSessions), the scenario's rules counted per message over all of
/// them. Safe to call from several threads; requests of different devices
/// are answered in parallel.
class ServeSession {
public:
    /// Device sessions unused for `idle` are dropped.
    ServeSession(const CipherContext& context, Scenario scenario,
                 std::chrono::milliseconds idle = std::chrono::minutes(10));

    /// The reply to a POSTed `body`: 200 with the response document; 400 with
    /// a one-line plain-text reason for a body that is not an acceptable
    /// request; a scenario's error status, delay or altered document where a
    /// rule matches. Scenario delays hold no lock. Throws nothing but
    /// std::bad_alloc.
    ServeReply handle(const std::string& body);

    /// `handle` in two steps, for a front that waits out a scenario's delay
    /// without holding a thread: `begin` reads the body and picks the rule,
    /// `finish` answers after `delay()`. Both throw nothing but
    /// std::bad_alloc.
    ServeStart begin(const std::string& body);
    ServeReply finish(ServeStart started);

    /// The number of device sessions kept.
    std::size_t devices() const { return sessions.size(); }

private:
    CipherContext context;
    Scenario scenario;
    DeviceSessions sessions;
    std::mutex lock; ///< guards `calls`
    /// Requests so far per message the server knows, in SCENARIO_MESSAGES
    /// order; other names are not counted.
    std::array<unsigned int, 16> calls{};
};

} // namespace zuvocli

#endif
