// Reading one entry of an HTTP Archive file, as real exporters write them:
// members that should be there may be missing or null, numbers may be
// strings, Base64 may be URL-safe, unpadded or broken into lines. What can
// be read is read; what is odd is noted on the entry, never on the file.
#ifndef ZUVO_TOOL_HARREADER_H
#define ZUVO_TOOL_HARREADER_H

#include "capture/Har.h"

#include <string>
#include <string_view>
#include <vector>

namespace zuvocli {

/// One entry of a capture as read, with what was odd about it.
struct CapturedEntry {
    std::size_t number = 0; ///< 1-based, in file order
    HarEntry entry;         ///< status 0 when the capture has none
    /// The server's address ("serverIPAddress"); empty when not recorded.
    std::string serverAddress;
    /// The client's recorded failure (a browser's "_error", e.g.
    /// "net::ERR_FAILED"); empty when none.
    std::string failure;
    /// Members that were missing, null or of another type than they should
    /// be, each as "response.status is the string \"404\"".
    std::vector<std::string> problems;
    /// Why the response body could not be taken (e.g. not Base64); empty
    /// when it was, or when the capture has none (see hasResponseBody).
    std::string responseProblem;
    /// Why the entry is not a protocol exchange; empty when it is one.
    std::string skipReason;
};

/// Reads the entry whose JSON text is `json` (lone surrogate escapes are
/// read as U+FFFD). Never throws for bad content: an entry that is not
/// JSON, or has no request, comes back with `skipReason` saying so.
CapturedEntry readEntry(std::string_view json, std::size_t number);

/// The bytes of Base64 `text`, standard or URL-safe, with or without
/// padding and line breaks. Throws RejectedError for other text.
std::string decodeLenientBase64(const std::string& text);

} // namespace zuvocli

#endif
