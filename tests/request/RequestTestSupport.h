// Helpers shared by the request tests: cipher contexts and the expected
// text of the request envelope.
#ifndef ZUVOLIB_TESTS_REQUEST_REQUESTTESTSUPPORT_H
#define ZUVOLIB_TESTS_REQUEST_REQUESTTESTSUPPORT_H

#include <zuvolib/zuvolib.h>

#include <string>
#include <vector>

namespace zuvotest {

typedef velmora::zuvolib::RequestBuilder::CipherContext Context;

/// A context with encryption switched on that records every plain text
/// handed to `encrypt` and answers with "SEALED<n>" for the n-th call.
class RecordingContext : public krel::KrelContext {
public:
    RecordingContext() { encryptionEnabled = 1; }
    std::vector<unsigned char> encrypt(const std::vector<unsigned char>& plain) override {
        plain_.push_back(std::string(plain.begin(), plain.end()));
        const std::string marker = "SEALED" + std::to_string(plain_.size());
        return std::vector<unsigned char>(marker.begin(), marker.end());
    }
    const std::vector<std::string>& plainTexts() const { return plain_; }

private:
    std::vector<std::string> plain_;
};

inline Context plainContext() {
    return Context(new krel::KrelContext());
}

/// The readable timing payload document for the two times.
inline std::string timesDocument(const std::string& serverTime, const std::string& clientTime) {
    return "<zuvo:clientservertimes>\n\t<zuvo:servertime>" + serverTime +
           "</zuvo:servertime>\n\t<zuvo:clienttime>" + clientTime +
           "</zuvo:clienttime>\n</zuvo:clientservertimes>\n";
}

/// A whole request document: declaration, root, header and `body` (the
/// message element's lines, each starting with one tab).
inline std::string requestDocument(const std::string& softwareVersion, const std::string& uiVersion,
                                   bool encrypted, const std::string& headerPayload,
                                   const std::string& body) {
    const auto element = [](const std::string& name, const std::string& text) {
        return text.empty() ? "<" + name + "/>" : "<" + name + ">" + text + "</" + name + ">";
    };
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<zuvo:request xmlns:zuvo=\"" +
           velmora::zuvolib::namespaceBase + "2.7\">\n\t<zuvo:header>\n\t\t" +
           element("zuvo:softwareversion", softwareVersion) + "\n\t\t" +
           element("zuvo:uiversion", uiVersion) + "\n\t\t<zuvo:payload encrypted=\"" +
           (encrypted ? "true" : "false") + "\">" + headerPayload +
           "</zuvo:payload>\n\t</zuvo:header>\n" + body + "</zuvo:request>\n";
}

} // namespace zuvotest

#endif
