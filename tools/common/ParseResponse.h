// Running a response parser the way the tool needs it: the library's
// reports routed into the error instead of printed, failures turned into
// ParseFailedError.
#ifndef ZUVO_TOOL_PARSERESPONSE_H
#define ZUVO_TOOL_PARSERESPONSE_H

#include "common/Errors.h"
#include "common/Keys.h"

#include <zuvolib/zuvolib.h>

#include <string>
#include <utility>

namespace zuvocli {

/// A rejected or malformed document, or one with a payload that could not
/// be opened. `what()` is a short summary naming the parser; `failure` is
/// the library's record of it (see failureLine), `details` its own report
/// (the rejection report, or expat's report with the excerpt around the
/// error) and `cause` why a payload could not be opened.
class ParseFailedError : public RejectedError {
public:
    ParseFailedError(const std::string& message, std::string report,
                     velmora::zuvolib::ParseFailure failure, std::string cause = std::string())
        : RejectedError(message, std::move(report)), failure(std::move(failure)),
          cause(std::move(cause)) {}
    velmora::zuvolib::ParseFailure failure;
    std::string cause;
};

/// Parses `document` with `parser`; nothing is printed. Throws
/// ParseFailedError for a rejected or malformed document or a payload the
/// key cannot open, and RejectedError for a payload that opens but is not
/// XML.
void runParser(velmora::zuvolib::ParentParser& parser, const std::string& document,
               const CipherContext& context);

/// Parses `document` with sub-parser `Parser` into `record`; returns the
/// parser's name.
template <class Parser, class Record>
std::string parseResponse(const std::string& document, const CipherContext& context,
                          Record& record) {
    velmora::zuvolib::ExpatParser expat;
    Parser parser(expat.get(), record);
    runParser(parser, document, context);
    return parser.getParserName();
}

/// Reads the common header only: it takes nothing of the result into its
/// hooks, so any result body is read like header elements. For responses
/// without a parser of their own (ping, play data, log blob).
class PlainParser : public velmora::zuvolib::ParentParser {
public:
    PlainParser(velmora::zuvolib::Expat& expat, velmora::zuvolib::ResponseData& record)
        : ParentParser(expat, record, nullptr, 0) {}
    const char* getParserName() const override { return "PlainParser"; }

protected:
    bool canParseResultSubTag(unsigned int) const override { return false; }
    bool onResultSubTagStartEvent(unsigned int, unsigned int, const std::string&,
                                  const std::map<std::string, std::string>&) override {
        return false;
    }
    bool onResultSubTagEndEvent(unsigned int, const std::string&) override { return false; }
    void onResultSubDataEvent(unsigned int, const std::string&) override {}
};

} // namespace zuvocli

#endif
