// The exchange log of `zuvo serve`.
#include "ServeLog.h"

#include <nlohmann/json.hpp>

#include <ctime>
#include <cstdio>

namespace zuvocli {

std::string isoTime(std::chrono::system_clock::time_point time) {
    const auto since = time.time_since_epoch();
    const std::time_t seconds =
        static_cast<std::time_t>(std::chrono::duration_cast<std::chrono::seconds>(since).count());
    const long long millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(since).count() % 1000;
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[40];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(millis));
    return text;
}

ServeLog::ServeLog(std::ostream& lines, bool keep, const CipherContext& context)
    : lines(lines), keep(keep), context(context) {}

std::string ServeLog::line(const ServeExchange& exchange, unsigned long number) const {
    const ServeReply& reply = exchange.reply;
    nlohmann::ordered_json entry = {
        {"exchange", number},
        {"started", isoTime(exchange.started)},
        {"ms", static_cast<long long>(exchange.milliseconds * 1000) / 1000.0},
        {"message", reply.message.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(reply.message)},
        {"call", reply.call},
        {"status", reply.status},
        {"requestBytes", exchange.request.size()},
        {"responseBytes", reply.body.size()},
    };
    if (!reply.scenario.empty())
        entry["scenario"] = reply.scenario;
    if (!reply.error.empty())
        entry["error"] = reply.error;
    // Bodies may hold any bytes; the line stays valid JSON.
    return entry.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

void ServeLog::record(const ServeExchange& exchange) {
    std::lock_guard<std::mutex> hold(lock);
    ++recorded;
    lines << line(exchange, recorded) << std::endl;
    if (keep)
        kept.push_back(exchange);
}

std::vector<ServeExchange> ServeLog::exchanges() const {
    std::lock_guard<std::mutex> hold(lock);
    return kept;
}

unsigned long ServeLog::count() const {
    std::lock_guard<std::mutex> hold(lock);
    return recorded;
}

} // namespace zuvocli

namespace zuvocli {

void writeServeHar(std::ostream&, const std::vector<ServeExchange>&) {
    throw std::runtime_error("HAR writing is not there yet");
}

} // namespace zuvocli
