// Scenarios for `zuvo serve`: a JSON file of rules that tell the server to
// answer some requests differently from the normal session, so that a
// device application can be shown refusals, broken documents, wrong keys,
// large catalogues, slow answers and HTTP errors.
#ifndef ZUVO_TOOL_SCENARIO_H
#define ZUVO_TOOL_SCENARIO_H

#include "server/ScriptedServer.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zuvocli {

/// One rule: which requests it matches and what it does to their answer.
struct ScenarioRule {
    std::string message;         ///< message name without prefix, e.g. "authorization"
    unsigned int call = 0;       ///< the n-th request of that message (from 1); 0: every one
    ResponseVariation variation; ///< refusal, other key, rejectable result, catalogue size
    bool truncate = false;
    std::size_t keepBytes = 0; ///< with `truncate`: the document's first bytes kept
    unsigned int delayMs = 0;  ///< wait this long before answering
    int status = 0;            ///< answer with this HTTP error status instead (0: none)
    std::string what;          ///< short description for the log, e.g. "refuse"
};

/// The rules of a scenario file, in file order; the first that matches wins.
class Scenario {
public:
    Scenario() = default;

    /// Reads scenario JSON. `origin` names the text in errors (a file name).
    /// Throws UsageError with one line naming the place of the first fault,
    /// e.g. "s.json: rules[2].status: expected an HTTP error status (400 to
    /// 599), got 200".
    static Scenario parse(const std::string& text, const std::string& origin);

    /// The rule for the `call`-th request (from 1) of `message`, or null.
    const ScenarioRule* find(const std::string& message, unsigned int call) const;

    std::size_t size() const { return rules.size(); }

    /// The place of `message` (without prefix) among the message elements
    /// the server answers, from 0 (at most 15), or -1 for another name.
    static int messageIndex(const std::string& message);

private:
    std::vector<ScenarioRule> rules;
};

} // namespace zuvocli

#endif
