// Reader of a small flat XML fragment into name lookups.
#ifndef ZUVOLIB_PARSE_SIMPLEPARSER_H
#define ZUVOLIB_PARSE_SIMPLEPARSER_H

#include "zuvolib/export.h"

#include <expat.h>

#include <exception>
#include <map>
#include <string>

namespace velmora {
namespace zuvolib {

/// Reads a fragment of sibling elements (such as a decrypted payload) into
/// two tables: element name to text and element name to attributes. Names
/// are kept exactly as written, prefix included ("zuvo:servertime"). A later
/// element of the same name replaces an earlier one's text and attributes.
/// Element text is trimmed of spaces, tabs and line feeds at both ends; text
/// written before a child element is counted to that child.
///
/// Owns its own expat handle. One object parses one fragment.
class ZUVO_API SimpleParser {
public:
    /// Creates the handle; throws `std::bad_alloc` when expat cannot.
    SimpleParser();
    ~SimpleParser();
    SimpleParser(const SimpleParser&) = delete;
    SimpleParser& operator=(const SimpleParser&) = delete;

    /// Reads `text`, which is wrapped in an "xml" root first (so the root
    /// also gets an entry, normally empty). Throws `std::runtime_error` with
    /// expat's error text when the fragment is not well formed (the tables
    /// keep what was read before the error), and on a second call (expat
    /// reports that parsing is finished).
    void parse(const std::string& text);

    /// The text of element `name`, or "" when there was none.
    std::string getValue(const std::string& name) const;

    /// The value of attribute `attr` of element `name`, or "" when either is
    /// missing.
    std::string getAttr(const std::string& name, std::string attr) const;

    /// Expat callbacks; `userData` is the `SimpleParser*`.
    static void XMLCALL startElement(void* userData, const char* name, const char** attributes);
    static void XMLCALL endElement(void* userData, const char* name);
    static void XMLCALL charData(void* userData, const char* s, int len);

    void onTagStartEvent(const std::string& name,
                         const std::map<std::string, std::string>& attributes);
    void onTagEndEvent(const std::string& name);
    void onDataEvent(const std::string& text);

private:
    /// Stops the parse and keeps the exception now being handled for `parse`.
    void stopWithPendingException();

    XML_Parser parser;                         ///< owned
    std::map<std::string, std::string> values; ///< element name to text
    std::string dataText;                      ///< text since the last element end
    std::map<std::string, std::map<std::string, std::string>> attributes; ///< per element
    std::exception_ptr pendingException; ///< thrown inside a callback, rethrown by `parse`
};

} // namespace zuvolib
} // namespace velmora

#endif
