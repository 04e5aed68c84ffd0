// Reading HTTP Archive (HAR 1.2) files: the members a protocol decoder
// needs, every other member ignored.
#include "capture/Har.h"

#include "common/Errors.h"

#include <QRXClient/Base64.h>

#include <stdexcept>

namespace zuvocli {
namespace {

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

/// Reads one HAR entry; `where` names it in messages ("entry 3").
class EntryReader {
public:
    EntryReader(const std::string& file, const std::string& where) : file(file), where(where) {}

    [[noreturn]] void fail(const std::string& what) const {
        throw RejectedError("'" + file + "' is not a usable HAR file: " + where + ": " + what);
    }

    const Json& member(const Json& object, const char* name, const char* path) const {
        const auto it = object.find(name);
        if (it == object.end())
            fail(std::string("no ") + path);
        return *it;
    }

    const Json& object(const Json& parent, const char* name, const char* path) const {
        const Json& value = member(parent, name, path);
        if (!value.is_object())
            fail(std::string(path) + " is not an object");
        return value;
    }

    std::string text(const Json& parent, const char* name, const char* path) const {
        const Json& value = member(parent, name, path);
        if (!value.is_string())
            fail(std::string(path) + " is not a string");
        return value.get<std::string>();
    }

    /// The optional string member `name`; false when it is missing.
    bool optionalText(const Json& parent, const char* name, const char* path,
                      std::string& out) const {
        if (!parent.contains(name))
            return false;
        out = text(parent, name, path);
        return true;
    }

    HarEntry read(const Json& entry) const {
        if (!entry.is_object())
            fail("not an object");
        HarEntry e;
        e.startedDateTime = text(entry, "startedDateTime", "startedDateTime");
        if (entry.contains("time") && entry["time"].is_number())
            e.time = entry["time"].get<double>();

        const Json& request = object(entry, "request", "request");
        e.method = text(request, "method", "request.method");
        e.url = text(request, "url", "request.url");
        optionalText(request, "httpVersion", "request.httpVersion", e.httpVersion);
        e.requestHeaders = readHeaders(request);
        if (request.contains("postData")) {
            const Json& post = object(request, "postData", "request.postData");
            optionalText(post, "mimeType", "request.postData.mimeType", e.requestMimeType);
            e.hasRequestBody = optionalText(post, "text", "request.postData.text", e.requestBody);
        }

        const Json& response = object(entry, "response", "response");
        const Json& status = member(response, "status", "response.status");
        if (!status.is_number_integer())
            fail("response.status is not an integer");
        e.status = status.get<int>();
        optionalText(response, "statusText", "response.statusText", e.statusText);
        e.responseHeaders = readHeaders(response);
        const Json& content = object(response, "content", "response.content");
        optionalText(content, "mimeType", "response.content.mimeType", e.responseMimeType);
        e.hasResponseBody = optionalText(content, "text", "response.content.text", e.responseBody);
        std::string encoding;
        if (e.hasResponseBody &&
            optionalText(content, "encoding", "response.content.encoding", encoding)) {
            if (encoding != "base64")
                fail("response.content.encoding '" + encoding + "' is not base64");
            try {
                e.responseBody = Velmora::QRXClient::Base64::decode(e.responseBody);
            } catch (const std::exception& x) {
                fail(std::string("response.content.text is not Base64: ") + x.what());
            }
        }
        return e;
    }

private:
    const std::string& file;
    std::string where;
};

} // namespace

std::vector<HarEntry> readHar(const std::string& text, const std::string& name) {
    const Json document = Json::parse(text, nullptr, false);
    if (document.is_discarded())
        throw RejectedError("'" + name + "' is not a HAR file: not valid JSON (truncated?)");
    if (!document.is_object() || !document.contains("log") || !document["log"].is_object())
        throw RejectedError("'" + name + "' is not a HAR file: no \"log\" object");
    const Json& log = document["log"];
    if (!log.contains("entries") || !log["entries"].is_array())
        throw RejectedError("'" + name + "' is not a HAR file: no \"log.entries\" array");
    std::vector<HarEntry> entries;
    std::size_t number = 0;
    for (const Json& entry : log["entries"])
        entries.push_back(EntryReader(name, "entry " + std::to_string(++number)).read(entry));
    return entries;
}

} // namespace zuvocli
