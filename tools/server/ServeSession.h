// The request handling of `zuvo serve`, apart from HTTP: one device session
// of the scripted server, bent by the scenario's rules, answering request
// bodies with a status, a content type and a body.
#ifndef ZUVO_TOOL_SERVESESSION_H
#define ZUVO_TOOL_SERVESESSION_H

#include "server/Scenario.h"
#include "server/ScriptedServer.h"

#include <map>
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
};

/// One device session behind the HTTP front. Every call of `handle` runs
/// under one lock, so requests from several connections see one session in
/// the order they arrive.
class ServeSession {
public:
    ServeSession(const CipherContext& context, Scenario scenario);

    /// The reply to a POSTed `body`: 200 with the response document; 400 with
    /// a one-line plain-text reason for a body that is not an acceptable
    /// request; a scenario's error status, delay or altered document where a
    /// rule matches. Scenario delays are waited out without holding the lock.
    /// Throws nothing but std::bad_alloc.
    ServeReply handle(const std::string& body);

private:
    std::mutex lock;
    ScriptedServer server;
    Scenario scenario;
    std::map<std::string, unsigned int> calls; ///< requests so far per message
};

} // namespace zuvocli

#endif
