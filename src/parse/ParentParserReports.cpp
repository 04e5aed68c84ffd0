// A response parser's failure records and the reports it prints or hands to
// its sink.

#include "zuvolib/parse/ParentParser.h"

#include <iostream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace velmora {
namespace zuvolib {

namespace {

// Fills what every failure record holds: its kind, the parser's name and
// expat's position. The position is asked for on failure only: after a whole
// parse expat would count lines over the entire document to answer.
void startRecord(ParseFailure& failure, ParseFailure::Kind kind, const char* parserName,
                 XML_Parser parser) {
    failure.kind = kind;
    failure.parserName = parserName ? parserName : "";
    if (parser) {
        failure.byteOffset = XML_GetCurrentByteIndex(parser);
        failure.line = XML_GetCurrentLineNumber(parser);
        failure.column = XML_GetCurrentColumnNumber(parser);
    }
}

// Where expat stopped in `text`. Expat knows no position for an empty
// document: the error is at its end.
long long stopOffset(XML_Parser parser, const std::string& text) {
    const XML_Index index = parser ? XML_GetCurrentByteIndex(parser) : -1;
    return index < 0 ? static_cast<long long>(text.size()) : static_cast<long long>(index);
}

} // namespace

void ParentParser::setReportSink(ReportSink sink) {
    diagnostics.sink = std::move(sink);
}

const ParseFailure& ParentParser::lastFailure() const {
    return diagnostics.failure;
}

void ParentParser::emit(const std::string& report) const {
    if (diagnostics.sink)
        diagnostics.sink(report);
    else
        std::cout << report << std::flush;
}

void ParentParser::abort(const std::string& currentTag) {
    reject(ParseFailure::REJECTED, currentTag);
}

void ParentParser::reject(ParseFailure::Kind kind, const std::string& currentTag) {
    // Still inside the callback, so expat's position is that of the failing
    // event.
    ParseFailure& failure = diagnostics.failure;
    startRecord(failure, kind, getParserName(), expat.parser);
    failure.element = currentTag;
    std::ostringstream report;
    report << failure.parserName << " error:\n";
    report << "\tcurrent tag = " << currentTag << '\n';
    report << "\tstack = ";
    for (; !contextStack.empty(); contextStack.pop_back()) {
        failure.openElements.push_back(getTagTypeName(contextStack.back()));
        report << failure.openElements.back() << ' ';
    }
    report << '\n';
    abortParsing();
    emit(report.str());
}

void ParentParser::recordMalformed(const std::string& text) {
    ParseFailure& failure = diagnostics.failure;
    startRecord(failure, ParseFailure::MALFORMED, getParserName(), expat.parser);
    for (auto open = contextStack.rbegin(); open != contextStack.rend(); ++open)
        failure.openElements.push_back(getTagTypeName(*open));
    const XML_Error code = XML_GetErrorCode(expat.parser);
    const XML_LChar* message = XML_ErrorString(code);
    failure.expatCode = static_cast<int>(code);
    failure.expatMessage = message ? message : "";
    failure.byteOffset = stopOffset(expat.parser, text);
}

void ParentParser::recordPayload(const std::string& element) {
    ParseFailure& failure = diagnostics.failure;
    startRecord(failure, ParseFailure::PAYLOAD, getParserName(), expat.parser);
    failure.element = element;
    for (auto open = contextStack.rbegin(); open != contextStack.rend(); ++open)
        failure.openElements.push_back(getTagTypeName(*open));
}

void ParentParser::showError(const std::string& text) const {
    // After a stop from inside a callback expat has moved past the event
    // that failed; the record holds where that event began.
    const ParseFailure& failure = diagnostics.failure;
    const long long index =
        failure.kind != ParseFailure::NONE ? failure.byteOffset : stopOffset(expat.parser, text);
    if (static_cast<unsigned long long>(index) > text.size())
        throw std::out_of_range("showError: the error offset lies outside the given text");
    const std::string::size_type at = static_cast<std::string::size_type>(index);
    const std::string::size_type start = at > 50 ? at - 50 : 0;
    const char* message =
        expat.parser ? XML_ErrorString(XML_GetErrorCode(expat.parser)) : "no parser handle";
    std::ostringstream report;
    report << "Parse error at offset " << index << ": " << (message ? message : "") << '\n';
    report << text.substr(start, at - start) << "[#!#]" << text.substr(at, 50) << '\n';
    emit(report.str());
}

} // namespace zuvolib
} // namespace velmora
