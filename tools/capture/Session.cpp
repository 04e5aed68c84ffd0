// Decoding a captured session: entries read one at a time in start order,
// each protocol exchange handed on as soon as it is decoded.
#include "capture/Decode.h"
#include "capture/Exchange.h"

#include <functional>
#include <unordered_map>

namespace zuvocli {
namespace {

/// Counts the encrypted payloads of a decoded request that opened and that
/// did not, for the wrong-key warning.
void countPayloads(const Json& exchange, std::size_t& opened, std::size_t& closed) {
    const Json& request = exchange["request"];
    if (request.contains("payloads")) {
        for (const Json& payload : request["payloads"]) {
            if (!payload.value("encrypted", false))
                continue;
            ++(payload.contains("error") ? closed : opened);
        }
    }
    const Json& response = exchange["response"];
    if (response.contains("unreadable"))
        ++closed;
    else if (response.contains("fields"))
        ++opened; // its header payload opened
}

} // namespace

Json decodeCapturedExchange(const CapturedEntry& captured, const CipherContext& context) {
    const HarEntry& entry = captured.entry;
    Json exchange = {{"entry", captured.number}, {"startedDateTime", entry.startedDateTime},
                     {"method", entry.method},   {"url", entry.url},
                     {"status", entry.status},   {"statusText", entry.statusText},
                     {"time", entry.time}};
    if (!captured.serverAddress.empty())
        exchange["serverIPAddress"] = captured.serverAddress;
    if (!captured.failure.empty())
        exchange["failure"] = captured.failure;
    std::vector<std::string> problems = captured.problems;
    if (!captured.responseProblem.empty())
        problems.push_back(captured.responseProblem);
    if (!problems.empty())
        exchange["problems"] = problems;

    Json decoded = decodeExchange(entry, context);
    if (!captured.responseProblem.empty())
        decoded["response"] = {
            {"missing", "the capture's response body cannot be read: " + captured.responseProblem}};
    const Json& request = decoded["request"];
    exchange["message"] = request.contains("request") ? request["request"] : Json();
    exchange["request"] = std::move(decoded["request"]);
    exchange["response"] = std::move(decoded["response"]);
    std::string reason;
    const std::string outcome = exchangeOutcome(exchange, reason);
    // Keep the member order documented: outcome and reason before the parts.
    Json ordered;
    for (auto it = exchange.begin(); it != exchange.end(); ++it) {
        if (it.key() == "request") {
            ordered["outcome"] = outcome;
            ordered["reason"] = reason;
        }
        ordered[it.key()] = std::move(it.value());
    }
    return ordered;
}

bool SessionSummary::complete() const {
    return outcomes.count(OUTCOME_UNREADABLE) == 0;
}

Json SessionSummary::json() const {
    Json summary = {{"entries", entries}, {"exchanges", exchanges}};
    summary["outcomes"] = Json::object();
    for (const auto& outcome : outcomes)
        summary["outcomes"][outcome.first] = outcome.second;
    summary["skipped"] = Json::array();
    for (const SkippedEntry& skip : skipped)
        summary["skipped"].push_back({{"entry", skip.number}, {"reason", skip.reason}});
    summary["warnings"] = warnings;
    return summary;
}

SessionSummary decodeSession(const HarArchive& archive, const CipherContext& context, bool keyGiven,
                             const std::function<void(const Json&)>& onExchange) {
    SessionSummary summary;
    summary.entries = archive.entries().size();
    if (!archive.warning().empty())
        summary.warnings.push_back(archive.warning());
    // The same exchange recorded twice: same start, method, URL and body.
    std::unordered_map<std::size_t, std::size_t> seen;
    std::size_t opened = 0;
    std::size_t closed = 0;
    for (std::size_t index : archive.sessionOrder()) {
        const EntrySpan& span = archive.entries()[index];
        const CapturedEntry captured = readEntry(archive.text(span), span.number);
        std::string skip = captured.skipReason;
        if (skip.empty() && !isProtocolExchange(captured.entry)) {
            const std::string& body = captured.entry.requestBody;
            skip = captured.entry.method + " whose request body (" +
                   captured.entry.requestMimeType + ") is not a protocol request: " +
                   (body.size() > 40 ? body.substr(0, 40) + "..." : body);
        }
        if (!skip.empty()) {
            summary.skipped.push_back({span.number, skip});
            continue;
        }
        Json exchange = decodeCapturedExchange(captured, context);
        const HarEntry& e = captured.entry;
        const std::size_t key = std::hash<std::string>()(e.startedDateTime + '\n' + e.method +
                                                         '\n' + e.url + '\n' + e.requestBody);
        const auto first = seen.emplace(key, span.number);
        if (!first.second) {
            Json flagged;
            for (auto it = exchange.begin(); it != exchange.end(); ++it) {
                if (it.key() == "message")
                    flagged["duplicateOf"] = first.first->second;
                flagged[it.key()] = std::move(it.value());
            }
            exchange = std::move(flagged);
        }
        ++summary.exchanges;
        ++summary.outcomes[exchange["outcome"].get<std::string>()];
        countPayloads(exchange, opened, closed);
        onExchange(exchange);
    }
    if (keyGiven && opened == 0 && closed > 0)
        summary.warnings.push_back("the key opened none of the " + std::to_string(closed) +
                                   " encrypted payloads it was tried on: it is probably the "
                                   "wrong key");
    return summary;
}

} // namespace zuvocli
