// The exchange log of `zuvo serve`: one JSON line per exchange, written as
// it ends, with the request and response decoded; and the whole session
// kept for a HAR file when one is asked for.
#ifndef ZUVO_TOOL_SERVELOG_H
#define ZUVO_TOOL_SERVELOG_H

#include "capture/Har.h"
#include "common/Keys.h"
#include "server/ServeSession.h"

#include <chrono>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace zuvocli {

/// One exchange as the server saw it.
struct ServeExchange {
    std::chrono::system_clock::time_point started;
    double milliseconds = 0; ///< from the body's arrival to the answer
    std::string url;         ///< the request's URL as the client addressed it
    std::string method = "POST";
    bool hasBody = true; ///< false when the body was not read (over the limit)
    std::string request; ///< the request body
    ServeReply reply;
};

/// Writes the exchange lines and keeps the exchanges for the HAR file. Safe
/// to use from several threads.
class ServeLog {
public:
    /// Lines go to `lines`; `keep` keeps every exchange for `entries()`.
    /// Payloads in the lines are opened with `context`.
    ServeLog(std::ostream& lines, bool keep, const CipherContext& context);

    /// Writes the exchange's line and flushes it; keeps the exchange.
    void record(const ServeExchange& exchange);

    /// The exchanges kept so far as HAR entries, in the order recorded.
    std::vector<HarEntry> entries() const;
    unsigned long count() const;

private:
    /// The JSON line of the `number`-th exchange (without the line end):
    /// number, time, status, message and call, the scenario rule that
    /// applied, sizes, and the decoded request and response. `entry` is the
    /// exchange as a HAR entry.
    std::string line(const ServeExchange& exchange, const HarEntry& entry,
                     unsigned long number) const;

    mutable std::mutex lock;
    std::ostream& lines;
    bool keep;
    CipherContext context;
    unsigned long recorded = 0;
    std::vector<HarEntry> kept;
};

/// The exchange as a HAR entry.
HarEntry harEntry(const ServeExchange& exchange);

} // namespace zuvocli

#endif
