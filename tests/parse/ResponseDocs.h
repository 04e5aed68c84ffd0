// Helpers shared by the response tests: response documents written the way
// the server writes them, cipher contexts, and standard output capture.
#ifndef ZUVOLIB_TESTS_PARSE_RESPONSEDOCS_H
#define ZUVOLIB_TESTS_PARSE_RESPONSEDOCS_H

#include <zuvolib/zuvolib.h>

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace zuvotest {

typedef velmora::zuvolib::ParentParser::CipherContext Context;

/// A context with a real key: payloads are sealed with AES-256-GCM.
inline Context keyedContext(unsigned char key = 7) {
    return Context(new krel::KrelContext(std::vector<unsigned char>(32, key)));
}

/// `fragment` sealed by `context`, as payload text.
inline std::string seal(const Context& context, const std::string& fragment) {
    const std::vector<unsigned char> sealed = context->encrypt({fragment.begin(), fragment.end()});
    return {sealed.begin(), sealed.end()};
}

inline std::string base64(const std::string& text) {
    return Velmora::QRXClient::Base64::encode(text);
}

/// The header payload fragment carrying the two times.
inline std::string timesFragment(const std::string& serverTime, const std::string& clientTime) {
    return "<zuvo:servertime>" + serverTime + "</zuvo:servertime>\n<zuvo:clienttime>" + clientTime +
           "</zuvo:clienttime>\n";
}

/// One element line at `depth` tabs: "<zuvo:name attrs>text</zuvo:name>".
inline std::string el(int depth, const std::string& name, const std::string& text,
                      const std::string& attrs = "") {
    return std::string(depth, '\t') + "<zuvo:" + name + attrs + ">" + text + "</zuvo:" + name +
           ">\n";
}

/// An element at `depth` whose content is `lines` (already indented).
inline std::string block(int depth, const std::string& name, const std::string& lines,
                         const std::string& attrs = "") {
    const std::string tabs(depth, '\t');
    return tabs + "<zuvo:" + name + attrs + ">\n" + lines + tabs + "</zuvo:" + name + ">\n";
}

/// A plain header: status success, code 0, and a Base64 payload with the
/// times 1000 and 2000. Lines at depth 2.
inline std::string basicHeader() {
    return block(2, "status", el(3, "success", "true") + el(3, "code", "0")) +
           el(2, "payload", base64(timesFragment("1000", "2000")), " encrypted=\"false\"");
}

/// A whole response: declaration, "zuvo:response" (namespace, version
/// 2.7) holding "zuvo:responseheader" with `header` and "zuvo:result" with
/// `resultAttrs` and `result`. Header and result lines are at depth 2.
inline std::string responseDoc(const std::string& header, const std::string& result,
                               const std::string& resultAttrs = " method=\"call\"") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<zuvo:response xmlns:zuvo=\"http://www.zuvo.example/qrx/zuvo/2.7\" "
           "version=\"2.7\">\n" +
           block(1, "responseheader", header) + block(1, "result", result, resultAttrs) +
           "</zuvo:response>\n";
}

/// Redirects std::cout into a buffer for its lifetime (not copyable: the
/// buffer is a stream).
struct CoutCapture {
    CoutCapture() : saved(std::cout.rdbuf(buffer.rdbuf())) {}
    ~CoutCapture() { std::cout.rdbuf(saved); }
    std::string text() const { return buffer.str(); }

    std::ostringstream buffer;
    std::streambuf* const saved;
};

/// The rejection report a parser prints.
inline std::string rejection(const std::string& parser, const std::string& tag,
                             const std::string& stack) {
    return parser + " error:\n\tcurrent tag = " + tag + "\n\tstack = " + stack + "\n";
}

/// Parses `doc` into `record` with a fresh parser of type P on a fresh
/// handle; `out` gets what the parser printed.
template <typename P, typename R>
bool parseWith(R& record, const std::string& doc, const Context& context, std::string& out) {
    CoutCapture capture;
    velmora::zuvolib::ExpatParser expat;
    P parser(expat, record);
    const bool ok = parser.parse(doc, context);
    out = capture.text();
    return ok;
}

/// A parser of type P with its own handle and record R, kept across parses
/// so that tests can check what one parser object does next.
template <typename P, typename R> struct Harness {
    velmora::zuvolib::ExpatParser expat;
    R data;
    P parser{expat, data};
    std::string out; ///< what the last parse printed

    bool parse(const std::string& doc, const Context& context = Context()) {
        CoutCapture capture;
        const bool ok = parser.parse(doc, context);
        out = capture.text();
        return ok;
    }
    /// The expat report for the last failure, on `doc`.
    std::string report(const std::string& doc) {
        CoutCapture capture;
        parser.showError(doc);
        return capture.text();
    }
};

} // namespace zuvotest

#endif
