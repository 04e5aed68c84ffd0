// Running a response parser the way the tool needs it: the library's
// reports captured instead of printed, failures turned into RejectedError.
#ifndef ZUVO_TOOL_PARSERESPONSE_H
#define ZUVO_TOOL_PARSERESPONSE_H

#include "Keys.h"

#include <zuvolib/zuvolib.h>

#include <string>

namespace zuvocli {

/// Parses `document` with `parser`, which runs on `expat`. The library
/// prints its rejection and error reports to standard output; here they are
/// captured and carried by the RejectedError thrown for a rejected or
/// malformed document, or one whose payload does not decode.
void runParser(velmora::zuvolib::ParentParser& parser, velmora::zuvolib::Expat& expat,
               const std::string& document, const CipherContext& context);

/// Parses `document` with sub-parser `Parser` into `record`; returns the
/// parser's name.
template <class Parser, class Record>
std::string parseResponse(const std::string& document, const CipherContext& context,
                          Record& record) {
    velmora::zuvolib::ExpatParser expat;
    Parser parser(expat.get(), record);
    runParser(parser, expat.get(), document, context);
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
