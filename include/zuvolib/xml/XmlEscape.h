// Making arbitrary text safe to hand to the request builders.
#ifndef ZUVOLIB_XML_XMLESCAPE_H
#define ZUVOLIB_XML_XMLESCAPE_H

#include "zuvolib/export.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// Returns `text` with "&", "<", ">" and the double quote written as the
/// entities "&amp;", "&lt;", "&gt;" and "&quot;"; every other byte is kept.
/// Request documents are written without escaping, so pass any text that may
/// hold those characters (a URL with a query string, a user-entered name)
/// through this first. The result is valid as element text and as a
/// double-quoted attribute value.
ZUVO_API std::string escapeXmlText(const std::string& text);

} // namespace zuvolib
} // namespace velmora

#endif
