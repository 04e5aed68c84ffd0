// Writing HTTP Archive (HAR 1.2) files: whole sessions with every member a
// reader requires.
#include "capture/Har.h"

#include "common/Errors.h"
#include "records/JsonText.h"

#include <QRXClient/Base64.h>

#include <cstdio>
#include <ctime>

namespace zuvocli {
namespace {

/// True when `text` is valid UTF-8, which a JSON string can hold as it is.
bool isUtf8(const std::string& text) {
    try {
        Json(text).dump();
        return true;
    } catch (const Json::type_error&) {
        return false;
    }
}

/// `text` with every byte that is not part of valid UTF-8 replaced by
/// U+FFFD: request bodies have no Base64 form in HAR.
std::string asUtf8(const std::string& text) {
    if (isUtf8(text))
        return text;
    return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace))
        .get<std::string>();
}

Json headersJson(const HarEntry::Headers& headers) {
    Json list = Json::array();
    for (const auto& header : headers)
        list.push_back({{"name", header.first}, {"value", header.second}});
    return list;
}

Json requestJson(const HarEntry& e) {
    Json request = {
        {"method", e.method},
        {"url", e.url},
        {"httpVersion", e.httpVersion},
        {"cookies", Json::array()},
        {"headers", headersJson(e.requestHeaders)},
        {"queryString", Json::array()},
        {"headersSize", -1},
        {"bodySize", e.hasRequestBody ? static_cast<long long>(e.requestBody.size()) : 0},
    };
    if (e.hasRequestBody)
        request["postData"] = {{"mimeType", e.requestMimeType}, {"text", asUtf8(e.requestBody)}};
    return request;
}

Json responseJson(const HarEntry& e) {
    const long long size = static_cast<long long>(e.responseBody.size());
    Json content = {{"size", e.hasResponseBody ? size : 0}, {"mimeType", e.responseMimeType}};
    if (e.hasResponseBody) {
        if (isUtf8(e.responseBody)) {
            content["text"] = e.responseBody;
        } else {
            content["text"] = Velmora::QRXClient::Base64::encode(e.responseBody);
            content["encoding"] = "base64";
        }
    }
    return {
        {"status", e.status},
        {"statusText", e.statusText},
        {"httpVersion", e.httpVersion},
        {"cookies", Json::array()},
        {"headers", headersJson(e.responseHeaders)},
        {"content", content},
        {"redirectURL", ""},
        {"headersSize", -1},
        {"bodySize", e.hasResponseBody ? size : -1},
    };
}

/// One entry of a HAR document's "entries" list.
Json harEntryJson(const HarEntry& e) {
    return {
        {"startedDateTime", e.startedDateTime},
        {"time", e.time},
        {"request", requestJson(e)},
        {"response", responseJson(e)},
        {"cache", Json::object()},
        {"timings", {{"send", 0}, {"wait", e.time}, {"receive", 0}}},
    };
}

Json harLog(Json entries, const std::string& creator) {
    const std::string version = ZUVO_VERSION;
    return {{"log",
             {{"version", "1.2"},
              {"creator", {{"name", creator}, {"version", version.substr(version.find(' ') + 1)}}},
              {"entries", std::move(entries)}}}};
}

} // namespace

HarWriter::HarWriter(std::ostream& out, const std::string& creator) : out(out) {
    // The document with an empty entry list, cut open before the list's end.
    const std::string whole = harLog(Json::array(), creator).dump();
    const std::string::size_type list = whole.rfind("[]");
    tail = whole.substr(list + 1);
    out << whole.substr(0, list + 1) << '\n';
    out.flush();
    check();
}

std::string HarWriter::entryText(const HarEntry& entry) {
    return compactJson(harEntryJson(entry));
}

void HarWriter::append(const HarEntry& entry) {
    appendText(entryText(entry));
}

void HarWriter::appendText(const std::string& entryText) {
    const std::string text = (count ? ",\n" : "") + entryText;
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.flush();
    ++count;
    check();
}

void HarWriter::finish() {
    out << '\n' << tail << '\n';
    out.flush();
    check();
}

void HarWriter::check() const {
    if (!out)
        throw RejectedError("writing the HAR file failed");
}

std::string harTime(std::chrono::system_clock::time_point when) {
    const auto since = when.time_since_epoch();
    const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(since).count() % 1000;
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    char full[48];
    std::snprintf(full, sizeof full, "%s.%03dZ", text, static_cast<int>(millis));
    return full;
}

} // namespace zuvocli
