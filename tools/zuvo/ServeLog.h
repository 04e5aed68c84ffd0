// The exchange log of `zuvo serve`: one JSON line per exchange, written as
// it ends, and the whole session kept for a HAR file when one is asked for.
#ifndef ZUVO_TOOL_SERVELOG_H
#define ZUVO_TOOL_SERVELOG_H

#include "Keys.h"
#include "ServeSession.h"

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
    std::string request;     ///< the request body
    ServeReply reply;
};

/// Writes the exchange lines and keeps the exchanges for the HAR file. Safe
/// to use from several threads.
class ServeLog {
public:
    /// Lines go to `lines`; `keep` keeps every exchange in memory for
    /// `exchanges()`. The context decodes payloads in the lines.
    ServeLog(std::ostream& lines, bool keep, const CipherContext& context);

    /// Writes the exchange's line and flushes it; keeps the exchange.
    void record(const ServeExchange& exchange);

    /// The exchanges kept so far, in the order they were recorded.
    std::vector<ServeExchange> exchanges() const;
    unsigned long count() const;

    /// The JSON line of an exchange (without the line end).
    std::string line(const ServeExchange& exchange, unsigned long number) const;

private:
    mutable std::mutex lock;
    std::ostream& lines;
    bool keep;
    CipherContext context;
    unsigned long recorded = 0;
    std::vector<ServeExchange> kept;
};

/// Writes `exchanges` to `out` as a HAR file.
void writeServeHar(std::ostream& out, const std::vector<ServeExchange>& exchanges);

/// `time` as ISO 8601 UTC with milliseconds, e.g. "2026-11-23T06:00:00.000Z".
std::string isoTime(std::chrono::system_clock::time_point time);

} // namespace zuvocli

#endif
