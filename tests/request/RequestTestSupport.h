// Helpers shared by the request tests: cipher contexts, the expected text
// of the request envelope, expected text from a compact tree notation, and
// a common header.
#ifndef ZUVOLIB_TESTS_REQUEST_REQUESTTESTSUPPORT_H
#define ZUVOLIB_TESTS_REQUEST_REQUESTTESTSUPPORT_H

#include <zuvolib/zuvolib.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zuvotest {

typedef velmora::zuvolib::RequestBuilder::CipherContext Context;

/// A context with encryption switched on that records every plain text
/// handed to `encrypt` and answers with "SEALED<n>" for the n-th call.
struct RecordingContext : krel::KrelContext {
    RecordingContext() { encryptionEnabled = 1; }
    std::vector<unsigned char> encrypt(const std::vector<unsigned char>& plain) override {
        plainTexts.push_back(std::string(plain.begin(), plain.end()));
        const std::string marker = "SEALED" + std::to_string(plainTexts.size());
        return std::vector<unsigned char>(marker.begin(), marker.end());
    }
    std::vector<std::string> plainTexts;
};

inline Context plainContext() {
    return Context(new krel::KrelContext());
}

inline void renderItems(const std::string& s, std::size_t& pos, int depth, std::string& out) {
    const std::string tabs(depth, '\t');
    while ((pos = s.find_first_not_of(' ', pos)) != std::string::npos && s[pos] != ')') {
        const std::size_t nameEnd = s.find_first_of(" ()=[", pos);
        const std::string name = s.substr(pos, nameEnd - pos);
        std::string open = tabs + "<zuvo:" + name, content;
        pos = nameEnd;
        if (pos < s.size() && s[pos] == '[') { // one attribute: [name=value]
            const std::size_t eq = s.find('=', pos), close = s.find(']', pos);
            open += " " + s.substr(pos + 1, eq - pos - 1) + "=\"" +
                    s.substr(eq + 1, close - eq - 1) + "\"";
            pos = close + 1;
        }
        if (pos < s.size() && s[pos] == '(') {
            renderItems(s, ++pos, depth + 1, content);
            content = "\n" + content + tabs;
            ++pos;
        } else if (pos < s.size() && s[pos] == '=') {
            const std::size_t stop = std::min(s.find_first_of(" )", pos), s.size());
            content = s.substr(pos + 1, stop - pos - 1);
            pos = stop;
        }
        out += content.empty() ? open + "/>\n" : open + ">" + content + "</zuvo:" + name + ">\n";
    }
}

/// The serialised text of a tree written as `name(children)`, `name=text`
/// or a bare `name` (empty element), space-separated, with an optional
/// `[attribute=value]` after the name; every name gets the "zuvo:" prefix and
/// the outermost items stand at nesting level `depth`.
inline std::string xml(const std::string& tree, int depth = 0) {
    std::string out;
    std::size_t pos = 0;
    renderItems(tree, pos, depth, out);
    return out;
}

/// The readable timing payload document for the two times.
inline std::string timesDocument(const std::string& serverTime, const std::string& clientTime) {
    return xml("clientservertimes(servertime=" + serverTime + " clienttime=" + clientTime + ")");
}

inline std::string b64(const std::string& text) {
    return Velmora::QRXClient::Base64::encode(text);
}

/// The header fields every message test uses.
inline velmora::zuvolib::RequestData header() {
    return velmora::zuvolib::RequestData{"5.1.0", "ui-3", 1700000000, 42};
}

/// The whole document for the header `h` and the message element written in
/// tree notation; "@" in `message` stands for `payload`. Encryption is off,
/// or on with `sealedHeader` as the header payload.
inline std::string messageDocument(const std::string& message, const std::string& payload = "",
                                   const std::string& sealedHeader = "",
                                   const velmora::zuvolib::RequestData& h = header()) {
    std::string body = xml(message, 1);
    const std::size_t at = body.find('@');
    if (at != std::string::npos)
        body.replace(at, 1, payload);
    const std::string headerPayload =
        sealedHeader.empty()
            ? b64(timesDocument(std::to_string(h.serverTime), std::to_string(h.clientTime)))
            : sealedHeader;
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<zuvo:request xmlns:zuvo=\"" +
           velmora::zuvolib::namespaceBase + "2.7\">\n" +
           xml("header(softwareversion=" + h.softwareVersion + " uiversion=" + h.uiVersion +
                   " payload[encrypted=" + (sealedHeader.empty() ? "false" : "true") +
                   "]=" + headerPayload + ")",
               1) +
           body + "</zuvo:request>\n";
}

} // namespace zuvotest

#endif
