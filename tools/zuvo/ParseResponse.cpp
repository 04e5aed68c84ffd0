// Running a response parser with its reports captured.
#include "ParseResponse.h"

#include "Errors.h"

#include <expat.h>

#include <iostream>
#include <sstream>
#include <stdexcept>

namespace zuvocli {
namespace {

/// Sends std::cout to another buffer for the lifetime of the object.
class CoutRedirect {
public:
    explicit CoutRedirect(std::streambuf* target) : saved(std::cout.rdbuf(target)) {}
    ~CoutRedirect() { std::cout.rdbuf(saved); }
    CoutRedirect(const CoutRedirect&) = delete;
    CoutRedirect& operator=(const CoutRedirect&) = delete;

private:
    std::streambuf* saved;
};

} // namespace

void runParser(velmora::zuvolib::ParentParser& parser, velmora::zuvolib::Expat& expat,
               const std::string& document, const CipherContext& context) {
    std::ostringstream report;
    bool parsed = false;
    bool rejected = false;
    {
        const CoutRedirect redirect(report.rdbuf());
        try {
            parsed = parser.parse(document, context);
        } catch (const std::exception& e) {
            // A payload that does not decrypt or decode, or is not XML.
            const char* hint = context && context->encryptionEnabled
                                   ? ": "
                                   : " (no key was given: --key or --key-file): ";
            throw RejectedError(std::string("a payload of the response could not be read") + hint +
                                e.what());
        }
        // The parsers stop expat themselves when they reject a document; any
        // other error is malformed XML, which expat's report locates.
        rejected = !parsed && XML_GetErrorCode(expat.parser) == XML_ERROR_ABORTED;
        if (!parsed && !rejected) {
            try {
                parser.showError(document);
            } catch (const std::out_of_range&) {
                // The offset lies outside the text: no excerpt to show.
            }
        }
    }
    if (parsed)
        return;
    if (rejected)
        throw RejectedError(std::string("the response was rejected by ") + parser.getParserName(),
                            report.str());
    throw RejectedError("the response is not well-formed XML", report.str());
}

} // namespace zuvocli
