// Running a response parser with its reports routed into the error.
#include "common/ParseResponse.h"

#include <stdexcept>

namespace zuvocli {

namespace zl = velmora::zuvolib;

namespace {

/// Collects the parser's reports for the lifetime of the object, then sends
/// them back to standard output.
class ReportCollector {
public:
    explicit ReportCollector(zl::ParentParser& parser) : parser(parser) {
        parser.setReportSink([this](const std::string& text) { collected += text; });
    }
    ~ReportCollector() { parser.setReportSink(nullptr); }
    ReportCollector(const ReportCollector&) = delete;
    ReportCollector& operator=(const ReportCollector&) = delete;

    zl::ParentParser& parser;
    std::string collected;
};

} // namespace

void runParser(zl::ParentParser& parser, const std::string& document,
               const CipherContext& context) {
    ReportCollector report(parser);
    try {
        if (parser.parse(document, context))
            return;
    } catch (const std::exception& e) {
        const bool keyless = !context || !context->encryptionEnabled;
        const std::string hint = keyless ? " (no key was given: --key or --key-file)" : "";
        // A payload that does not decrypt or decode is recorded; one that
        // opens but is not XML is not.
        if (parser.lastFailure().kind == zl::ParseFailure::PAYLOAD)
            throw ParseFailedError("a payload of the response could not be opened",
                                   report.collected, parser.lastFailure(), e.what() + hint);
        throw RejectedError("a payload of the response could not be read" + hint + ": " + e.what());
    }
    const zl::ParseFailure& failure = parser.lastFailure();
    if (failure.kind != zl::ParseFailure::MALFORMED)
        throw ParseFailedError(std::string("the response was rejected by ") +
                                   parser.getParserName(),
                               report.collected, failure);
    try {
        parser.showError(document);
    } catch (const std::out_of_range&) {
        // The offset lies outside the text: no excerpt to show.
    }
    throw ParseFailedError("the response is not well-formed XML", report.collected, failure);
}

} // namespace zuvocli
