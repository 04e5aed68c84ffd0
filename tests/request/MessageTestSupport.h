// Helpers for the message tests: compact expected text, records with a
// common header, and the decoded payload of a document.
#ifndef ZUVOLIB_TESTS_REQUEST_MESSAGETESTSUPPORT_H
#define ZUVOLIB_TESTS_REQUEST_MESSAGETESTSUPPORT_H

#include "request/RequestTestSupport.h"

#include <initializer_list>
#include <string>

namespace zuvotest {

/// Document text from lines whose first character is the count of leading
/// tabs, e.g. {"0<a>", "1<b/>", "0</a>"}; each line ends with a line feed.
inline std::string lines(std::initializer_list<std::string> rows) {
    std::string out;
    for (const std::string& row : rows)
        out += std::string(row[0] - '0', '\t') + row.substr(1) + '\n';
    return out;
}

inline std::string b64(const std::string& text) {
    return Velmora::QRXClient::Base64::encode(text);
}

/// A record of type T with the header fields every message test uses.
template <typename T> T record() {
    T data;
    data.softwareVersion = "5.1.0";
    data.uiVersion = "ui-3";
    data.serverTime = 1700000000;
    data.clientTime = 42;
    return data;
}

/// The whole document for a `record<>()` header, plain context, and `body`.
inline std::string plainDocument(const std::string& body) {
    return requestDocument("5.1.0", "ui-3", false, b64(timesDocument("1700000000", "42")), body);
}

/// The decoded text of the message's own "zuvo:payload" (the one without an
/// attribute), or "<none>".
inline std::string innerOf(const std::string& document) {
    const std::string open = "<zuvo:payload>";
    const std::size_t start = document.find(open);
    if (start == std::string::npos)
        return "<none>";
    const std::size_t from = start + open.size();
    return Velmora::QRXClient::Base64::decode(
        document.substr(from, document.find("</zuvo:payload>", from) - from));
}

} // namespace zuvotest

#endif
