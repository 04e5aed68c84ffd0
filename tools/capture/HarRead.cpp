// Reading one HAR entry tolerantly: the members a protocol decoder needs,
// every other member ignored, every odd one noted on the entry.
#include "capture/HarArchive.h"
#include "capture/HarReader.h"

#include "common/Errors.h"

#include <QRXClient/Base64.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace zuvocli {
namespace {

/// A short description of a JSON value that was not what was wanted.
std::string describe(const Json& value) {
    if (value.is_null())
        return "null";
    if (value.is_string()) {
        const std::string text = value.get<std::string>();
        return "the string \"" + (text.size() > 40 ? text.substr(0, 40) + "..." : text) + "\"";
    }
    if (value.is_number())
        return "the number " + value.dump();
    return std::string("a ") + value.type_name();
}

/// The name and value pairs of a "headers" array; items that are not such
/// pairs are passed over, as headers only inform.
HarEntry::Headers readHeaders(const Json& message) {
    HarEntry::Headers headers;
    const auto list = message.find("headers");
    if (list == message.end() || !list->is_array())
        return headers;
    for (const Json& header : *list) {
        if (header.is_object() && header.contains("name") && header["name"].is_string() &&
            header.contains("value") && header["value"].is_string())
            headers.emplace_back(header["name"].get<std::string>(),
                                 header["value"].get<std::string>());
    }
    return headers;
}

/// The sum of an entry's known "timings" phases (-1 means not known;
/// "ssl" is part of "connect"), for an entry without "time".
double timingsTotal(const Json& entry) {
    const auto timings = entry.find("timings");
    double total = 0;
    if (timings == entry.end() || !timings->is_object())
        return total;
    for (const char* phase : {"blocked", "dns", "connect", "send", "wait", "receive"}) {
        const auto it = timings->find(phase);
        if (it != timings->end() && it->is_number() && it->get<double>() > 0)
            total += it->get<double>();
    }
    return total;
}

/// Reads members into a CapturedEntry, noting the odd ones.
class EntryReader {
public:
    explicit EntryReader(CapturedEntry& out) : out(out) {}

    /// The member `name` of `parent` when it is an object; null otherwise
    /// (noted unless `optional` and missing).
    const Json* object(const Json& parent, const char* name, const std::string& path,
                       bool optional = false) {
        const auto it = parent.find(name);
        if (it == parent.end()) {
            if (!optional)
                out.problems.push_back("no " + path);
            return nullptr;
        }
        if (!it->is_object()) {
            out.problems.push_back(path + " is " + describe(*it));
            return nullptr;
        }
        return &*it;
    }

    /// The string member `name` into `value`; false when it is missing
    /// (noted unless `optional`) or not a string (noted; null is
    /// passed over quietly when `optional`).
    bool text(const Json& parent, const char* name, const std::string& path, std::string& value,
              bool optional = true) {
        const auto it = parent.find(name);
        if (it == parent.end() || (optional && it->is_null())) {
            if (!optional)
                out.problems.push_back("no " + path);
            return false;
        }
        if (!it->is_string()) {
            out.problems.push_back(path + " is " + describe(*it));
            return false;
        }
        value = it->get<std::string>();
        return true;
    }

    /// The HTTP status: an integer, or a whole number written as a number
    /// or string ("404", 404.0); 0 when there is none.
    int status(const Json& response) {
        const auto it = response.find("status");
        if (it == response.end()) {
            out.problems.push_back("no response.status");
            return 0;
        }
        if (it->is_number_integer())
            return it->get<int>();
        double value = -1;
        if (it->is_number_float()) {
            value = it->get<double>();
        } else if (it->is_string()) {
            const std::string text = it->get<std::string>();
            if (!text.empty() && text.size() <= 3 &&
                std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
                value = std::stod(text);
        }
        if (value < 0 || value > 999 || std::floor(value) != value) {
            out.problems.push_back("response.status is " + describe(*it));
            return 0;
        }
        return static_cast<int>(value);
    }

    void read(const Json& entry) {
        HarEntry& e = out.entry;
        e.status = 0;
        e.statusText.clear();
        if (!entry.is_object()) {
            out.skipReason = "the entry is " + describe(entry) + ", not an object";
            return;
        }
        text(entry, "startedDateTime", "startedDateTime", e.startedDateTime, false);
        std::int64_t micros;
        if (!e.startedDateTime.empty() && !parseIsoTime(e.startedDateTime, micros))
            out.problems.push_back("startedDateTime \"" + e.startedDateTime +
                                   "\" is not an ISO 8601 time with a zone");
        if (entry.contains("time") && entry["time"].is_number())
            e.time = entry["time"].get<double>();
        else
            e.time = timingsTotal(entry);
        text(entry, "serverIPAddress", "serverIPAddress", out.serverAddress);
        text(entry, "_error", "_error", out.failure);

        const Json* request = object(entry, "request", "request");
        if (!request) {
            out.skipReason = "the entry has no request";
            return;
        }
        text(*request, "method", "request.method", e.method, false);
        text(*request, "url", "request.url", e.url, false);
        text(*request, "httpVersion", "request.httpVersion", e.httpVersion);
        e.requestHeaders = readHeaders(*request);
        if (const Json* post = object(*request, "postData", "request.postData", true)) {
            text(*post, "mimeType", "request.postData.mimeType", e.requestMimeType);
            e.hasRequestBody = text(*post, "text", "request.postData.text", e.requestBody);
        }

        const Json* response = object(entry, "response", "response");
        if (response)
            readResponse(*response);
        skipReason();
    }

    void readResponse(const Json& response) {
        HarEntry& e = out.entry;
        e.status = status(response);
        text(response, "statusText", "response.statusText", e.statusText);
        e.responseHeaders = readHeaders(response);
        const Json* content = object(response, "content", "response.content");
        if (!content)
            return;
        text(*content, "mimeType", "response.content.mimeType", e.responseMimeType);
        e.hasResponseBody = text(*content, "text", "response.content.text", e.responseBody);
        std::string encoding;
        if (!e.hasResponseBody ||
            !text(*content, "encoding", "response.content.encoding", encoding))
            return;
        std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (encoding.empty())
            return; // written by some exporters for text as is
        try {
            if (encoding != "base64")
                throw RejectedError("its encoding \"" + encoding + "\" is not base64");
            e.responseBody = decodeLenientBase64(e.responseBody);
        } catch (const std::exception& x) {
            out.responseProblem = std::string("response.content.text: ") + x.what();
            e.hasResponseBody = false;
            e.responseBody.clear();
        }
    }

    /// Says why an entry without a protocol request body is not one.
    void skipReason() {
        const HarEntry& e = out.entry;
        if (!e.hasRequestBody) {
            out.skipReason = e.method == "GET" || e.method == "HEAD" || e.method == "OPTIONS"
                                 ? e.method + " without a request body"
                                 : e.method + " whose request body the capture does not hold";
        }
    }

private:
    CapturedEntry& out;
};

} // namespace

std::string decodeLenientBase64(const std::string& text) {
    std::string standard = text;
    std::replace(standard.begin(), standard.end(), '-', '+');
    std::replace(standard.begin(), standard.end(), '_', '/');
    try {
        return Velmora::QRXClient::Base64::decode(standard);
    } catch (const std::invalid_argument& e) {
        throw RejectedError(std::string("not Base64: ") + e.what());
    }
}

CapturedEntry readEntry(std::string_view json, std::size_t number) {
    CapturedEntry out;
    out.number = number;
    Json entry;
    try {
        entry = Json::parse(mendSurrogates(json));
    } catch (const Json::parse_error& e) {
        // "[json.exception.parse_error.101] parse error at ...": the reason.
        const std::string what = e.what();
        const std::size_t at = what.find("] ");
        out.skipReason = "the entry is not valid JSON: " +
                         (at == std::string::npos ? what : what.substr(at + 2));
        return out;
    }
    EntryReader(out).read(entry);
    return out;
}

} // namespace zuvocli
