// Why a response parse returned false, as data a caller can act on.
#ifndef ZUVOLIB_PARSE_PARSEFAILURE_H
#define ZUVOLIB_PARSE_PARSEFAILURE_H

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// The record of a failed `ParentParser::parse`, read with
/// `ParentParser::lastFailure()`. It holds the same facts as the printed
/// report, without any text to take apart, plus where the parse stopped.
///
/// Positions are those of the event that failed: the start or end tag a
/// rejection names, or the byte at which expat found the document malformed
/// (the end of the text for an empty document).
struct ParseFailure {
    enum Kind {
        NONE,              ///< the last parse returned true (or has not run)
        MALFORMED,         ///< not well-formed XML; see `expatCode`
        REJECTED,          ///< a result hook refused element `element`
        MISMATCHED_END,    ///< end tag `element` does not close the innermost open element
        MISSING_METHOD,    ///< "result" without its "method" attribute
        NO_CIPHER_CONTEXT, ///< an encrypted payload and an empty cipher context
        /// a payload the cipher context or the Base64 decoder could not open
        /// (wrong key, tampered text, bad Base64); `parse` threw, and
        /// `element` is the element that carried it
        PAYLOAD,
    };

    Kind kind = NONE;
    std::string parserName; ///< `getParserName()` of the parser that failed
    std::string element;    ///< the element the report names; empty for MALFORMED
    /// Names of the open elements, innermost first, ending with "<start>"; for
    /// a rejection the names its report lists.
    std::vector<std::string> openElements;
    int expatCode = 0;         ///< expat's `XML_Error` for MALFORMED, else 0
    std::string expatMessage;  ///< `XML_ErrorString(expatCode)` for MALFORMED, else empty
    long long byteOffset = -1; ///< where the parse stopped, from the start of the text
    unsigned long line = 0;    ///< 1-based line of `byteOffset`
    unsigned long column = 0;  ///< 0-based column of `byteOffset`, in characters
};

} // namespace zuvolib
} // namespace velmora

#endif
