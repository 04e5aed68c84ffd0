// The exchange log of `zuvo serve`: one JSON line per exchange, written as
// it ends, with the request and response decoded, and the same exchange
// appended to a HAR file when one is asked for.
#ifndef ZUVO_TOOL_SERVELOG_H
#define ZUVO_TOOL_SERVELOG_H

#include "capture/Har.h"
#include "common/Keys.h"
#include "server/ServeSession.h"

#include <chrono>
#include <functional>
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

/// Writes the exchange lines and appends the exchanges to a HAR file as they
/// end. A failed write is reported on standard error at once and ends the
/// run through the failure callback. Safe to use from several threads.
class ServeLog {
public:
    /// Lines go to `lines`; with `har` not null each exchange is appended
    /// there too (the caller finishes it). Payloads in the lines are opened
    /// with `context`. Both streams must outlive the log.
    ServeLog(std::ostream& lines, HarWriter* har, const CipherContext& context);

    /// Called once, on the recording thread, when a write fails.
    void onFailure(std::function<void()> callback) { failure = std::move(callback); }

    /// Writes the exchange's line and flushes it; appends it to the HAR file.
    void record(const ServeExchange& exchange);

    unsigned long count() const;
    /// True once a write of the log or the HAR file failed.
    bool failed() const;

private:
    /// The JSON line of the `number`-th exchange (without the line end):
    /// number, time, status, message and call, the scenario rule that
    /// applied, sizes, and the decoded request and response. `entry` is the
    /// exchange as a HAR entry.
    std::string line(const ServeExchange& exchange, const HarEntry& entry,
                     unsigned long number) const;
    /// Reports the first failed write; lock held.
    void fail(const std::string& what);

    mutable std::mutex lock;
    std::ostream& lines;
    HarWriter* har;
    CipherContext context;
    unsigned long recorded = 0;
    bool broken = false;
    std::function<void()> failure;
};

/// The exchange as a HAR entry.
HarEntry harEntry(const ServeExchange& exchange);

} // namespace zuvocli

#endif
