// Formatting a parse failure record into one line.
#include "common/FailureLine.h"

namespace zuvocli {

namespace zl = velmora::zuvolib;

namespace {

/// What went wrong, without position or open elements.
std::string what(const zl::ParseFailure& f) {
    const std::string in = " in " + f.parserName;
    switch (f.kind) {
    case zl::ParseFailure::MALFORMED: return "not well-formed XML: " + f.expatMessage;
    case zl::ParseFailure::REJECTED: return "element '" + f.element + "' refused" + in;
    case zl::ParseFailure::MISMATCHED_END: return "mismatched end tag '" + f.element + "'" + in;
    case zl::ParseFailure::MISSING_METHOD:
        return "'" + f.element + "' without a 'method' attribute" + in;
    case zl::ParseFailure::NO_CIPHER_CONTEXT:
        return "encrypted '" + f.element + "' but no cipher key" + in;
    case zl::ParseFailure::PAYLOAD:
        return "the payload of '" + f.element + "' could not be opened" + in;
    case zl::ParseFailure::NONE: break;
    }
    return "the response could not be parsed" + in;
}

} // namespace

std::string failureLine(const std::string& input, const zl::ParseFailure& failure,
                        const std::string& cause) {
    std::string line = (input == "-" ? "<stdin>" : input) + ":" + std::to_string(failure.line) +
                       ":" + std::to_string(failure.column + 1) + ": " + what(failure);
    if (!cause.empty())
        line += ": " + cause;
    if (!failure.openElements.empty()) {
        line += " (open:";
        for (const std::string& name : failure.openElements)
            line += " " + name;
        line += ")";
    }
    return line;
}

} // namespace zuvocli
