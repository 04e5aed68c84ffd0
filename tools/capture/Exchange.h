// What became of a captured exchange, and the session decoder: the API that
// the command line and other front ends (a language binding) share. Every
// exchange comes out as one JSON object, the same that
// `zuvo decode --har FILE --jsonl` prints on a line.
#ifndef ZUVO_TOOL_EXCHANGE_H
#define ZUVO_TOOL_EXCHANGE_H

#include "capture/HarArchive.h"
#include "capture/HarReader.h"
#include "common/Keys.h"
#include "records/JsonFields.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zuvocli {

/// The outcomes of an exchange, as the "outcome" member writes them.
/// Only "unreadable" is a failure to read the capture; the others are what
/// happened on the wire.
const char* const OUTCOME_OK = "ok";
const char* const OUTCOME_REFUSED = "refused";           ///< the server said success false
const char* const OUTCOME_REJECTED = "rejected";         ///< a parser refused a document
const char* const OUTCOME_UNREADABLE = "unreadable";     ///< a payload did not open
const char* const OUTCOME_NOT_PROTOCOL = "not protocol"; ///< the answer is no protocol document
const char* const OUTCOME_NO_RESPONSE = "no response";   ///< the capture holds no answer

/// The outcome of `exchange` (from decodeExchange) and in `reason` what
/// tells it: the error, the server's user text, the start of a body that is
/// not protocol.
std::string exchangeOutcome(const Json& exchange, std::string& reason);

/// One captured exchange as JSON, in this order: "entry" (its number in the
/// file), "startedDateTime", "method", "url", "status", "statusText",
/// "time" (milliseconds), then when present "serverIPAddress", "failure"
/// (the client's recorded error), "duplicateOf" (set by decodeSession),
/// "problems" (odd members of the entry), then "message" (the request's
/// message name, or null), "outcome", "reason", "request", "response" as
/// decodeExchange makes them. Never throws for bad content.
Json decodeCapturedExchange(const CapturedEntry& captured, const CipherContext& context);

/// An entry that is not a protocol exchange, and why.
struct SkippedEntry {
    std::size_t number;
    std::string reason;
};

/// What a session decode found, beyond the exchanges themselves.
struct SessionSummary {
    std::size_t entries = 0;   ///< entries read from the file
    std::size_t exchanges = 0; ///< protocol exchanges among them
    std::vector<SkippedEntry> skipped;
    std::map<std::string, std::size_t> outcomes; ///< exchanges per outcome
    /// File-level notes: a file that is not whole, a key that opened none
    /// of the payloads it was tried on.
    std::vector<std::string> warnings;

    /// True when every protocol exchange was read (no "unreadable").
    bool complete() const;
    /// {"entries", "exchanges", "outcomes": {...}, "skipped": [{"entry",
    /// "reason"}], "warnings": [...]}.
    Json json() const;
};

/// Decodes every protocol exchange of `archive` in the order the exchanges
/// started, calling `onExchange` with each (see decodeCapturedExchange) as
/// soon as it is decoded; entries that are not protocol exchanges are
/// listed in the summary. `keyGiven` says whether `context` holds a key, for
/// the wrong-key warning. Nothing throws for bad content.
SessionSummary decodeSession(const HarArchive& archive, const CipherContext& context, bool keyGiven,
                             const std::function<void(const Json&)>& onExchange);

} // namespace zuvocli

#endif
