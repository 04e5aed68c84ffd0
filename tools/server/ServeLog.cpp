// The exchange log of `zuvo serve`.
#include "server/ServeLog.h"

#include "capture/Decode.h"
#include "records/JsonText.h"

#include <iostream>
#include <utility>

namespace zuvocli {

namespace {

/// The reason phrase of the statuses the server answers with.
const char* reasonPhrase(int status) {
    static const struct {
        int status;
        const char* reason;
    } REASONS[] = {
        {200, "OK"},
        {400, "Bad Request"},
        {401, "Unauthorized"},
        {403, "Forbidden"},
        {404, "Not Found"},
        {405, "Method Not Allowed"},
        {408, "Request Timeout"},
        {413, "Payload Too Large"},
        {429, "Too Many Requests"},
        {500, "Internal Server Error"},
        {502, "Bad Gateway"},
        {503, "Service Unavailable"},
        {504, "Gateway Timeout"},
    };
    for (const auto& row : REASONS) {
        if (row.status == status)
            return row.reason;
    }
    return "";
}

} // namespace

HarEntry harEntry(const ServeExchange& exchange) {
    HarEntry entry;
    entry.startedDateTime = harTime(exchange.started);
    entry.time = exchange.milliseconds;
    entry.method = exchange.method;
    entry.url = exchange.url;
    entry.hasRequestBody = exchange.hasBody;
    entry.requestBody = exchange.request;
    entry.status = exchange.reply.status;
    entry.statusText = reasonPhrase(exchange.reply.status);
    entry.responseHeaders = {{"Content-Type", exchange.reply.contentType}};
    entry.hasResponseBody = true;
    entry.responseMimeType = exchange.reply.contentType;
    entry.responseBody = exchange.reply.body;
    return entry;
}

ServeLog::ServeLog(std::ostream& lines, HarWriter* har, const CipherContext& context)
    : lines(lines), har(har), context(context) {}

std::string ServeLog::line(const ServeExchange& exchange, const HarEntry& entry) const {
    const ServeReply& reply = exchange.reply;
    Json line = {
        {"exchange", 0}, // numbered when written
        {"started", entry.startedDateTime},
        {"ms", static_cast<long long>(exchange.milliseconds * 1000) / 1000.0},
        {"status", reply.status},
        {"message", reply.message.empty() ? Json() : Json(reply.message)},
        {"call", reply.call},
    };
    if (!reply.scenario.empty())
        line["scenario"] = reply.scenario;
    if (!reply.error.empty())
        line["error"] = reply.error;
    line["requestBytes"] = exchange.request.size();
    line["responseBytes"] = reply.body.size();
    if (exchange.hasBody && !reply.message.empty()) {
        Json decoded = decodeExchange(entry, context, reply.requestRoot.get());
        line["request"] = std::move(decoded["request"]);
        line["response"] = std::move(decoded["response"]);
    }
    // Bodies may hold any bytes; the line stays valid JSON.
    return compactJson(line);
}

void ServeLog::record(const ServeExchange& exchange) {
    // Decoding and the JSON text are made before the lock is taken: only
    // the numbering and the writes are in turn.
    const HarEntry entry = harEntry(exchange);
    const std::string text = line(exchange, entry);
    const std::string harText = har ? HarWriter::entryText(entry) : std::string();
    const std::string unnumbered = "{\"exchange\":0";
    std::lock_guard<std::mutex> hold(lock);
    ++recorded;
    if (broken)
        return;
    lines << "{\"exchange\":" << recorded << text.substr(unnumbered.size()) << std::endl;
    if (!lines)
        return fail("writing the exchange log failed");
    if (har) {
        try {
            har->appendText(harText);
        } catch (const std::exception& e) {
            fail(e.what());
        }
    }
}

void ServeLog::fail(const std::string& what) {
    broken = true;
    std::cerr << "zuvo serve: " << what << "; stopping" << std::endl;
    if (failure)
        failure();
}

unsigned long ServeLog::count() const {
    std::lock_guard<std::mutex> hold(lock);
    return recorded;
}

bool ServeLog::failed() const {
    std::lock_guard<std::mutex> hold(lock);
    return broken;
}

} // namespace zuvocli
