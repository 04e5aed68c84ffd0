// HTTP Archive (HAR 1.2) files: the exchange record a protocol decoder
// needs, and writing whole sessions. Reading is in HarReader.h.
#ifndef ZUVO_TOOL_HAR_H
#define ZUVO_TOOL_HAR_H

#include "records/JsonFields.h"

#include <chrono>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace zuvocli {

/// One HTTP exchange of a session.
struct HarEntry {
    typedef std::vector<std::pair<std::string, std::string>> Headers;

    std::string startedDateTime; ///< ISO 8601 with a zone, e.g. "2026-11-23T06:00:00.000Z"
    double time = 0;             ///< whole exchange in milliseconds

    std::string method = "POST";
    std::string url;
    std::string httpVersion = "HTTP/1.1";
    Headers requestHeaders;
    /// The request carries a text body (`postData.text`); false for a GET
    /// or a form post given as `params`.
    bool hasRequestBody = false;
    std::string requestMimeType = "text/xml";
    std::string requestBody;

    int status = 200;
    std::string statusText = "OK";
    Headers responseHeaders;
    /// The capture holds the response body; false when the exporter left it
    /// out.
    bool hasResponseBody = false;
    std::string responseMimeType = "text/xml";
    std::string responseBody; ///< the body's bytes (already Base64-decoded)
};

/// Writes a HAR document to `out` as its entries come: the document's head
/// at once, each entry flushed as it is appended, the closing brackets at
/// `finish`. A file cut short at any moment misses at most the entry being
/// written and the closing brackets. Throws RejectedError as soon as a
/// write fails. `out` must outlive the writer; not safe across threads.
class HarWriter {
public:
    explicit HarWriter(std::ostream& out, const std::string& creator = "zuvo");
    void append(const HarEntry& entry);
    /// The entry as `appendText` takes it; needs no writer, so callers make
    /// it before they take their turn to write.
    static std::string entryText(const HarEntry& entry);
    void appendText(const std::string& entryText);
    void finish();

private:
    void check() const;
    std::ostream& out;
    std::string tail; ///< what closes the entry list and the document
    unsigned long count = 0;
};

/// `when` as HAR wants it: UTC, milliseconds, "Z" (e.g.
/// "2026-11-23T06:00:00.125Z").
std::string harTime(std::chrono::system_clock::time_point when);

} // namespace zuvocli

#endif
