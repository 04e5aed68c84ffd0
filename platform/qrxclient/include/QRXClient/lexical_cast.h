// Stand-in for the platform's text/number conversions.
//
// Conversions always use the classic "C" locale, whatever the process locale
// is, and never fail: text without a leading number converts to 0, and a
// leading number followed by anything converts to that number. Out-of-range
// text follows the standard stream rule (the value saturates).
#ifndef QRXCLIENT_LEXICAL_CAST_H
#define QRXCLIENT_LEXICAL_CAST_H

#include <locale>
#include <sstream>
#include <string>

namespace Velmora {
namespace QRXClient {
namespace detail {

template <typename Target, typename Source> struct LexicalCast {
    // Number to text.
    static Target apply(const Source& source) {
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out << source;
        return out.str();
    }
};

template <typename Target> struct LexicalCast<Target, std::string> {
    // Text to number.
    static Target apply(const std::string& source) {
        std::istringstream in(source);
        in.imbue(std::locale::classic());
        Target value = 0;
        in >> value;
        return value;
    }
};

template <> struct LexicalCast<std::string, std::string> {
    static std::string apply(const std::string& source) { return source; }
};

} // namespace detail

/// Converts between text and numbers with the classic locale; see above.
template <typename Target, typename Source> Target lexical_cast(const Source& source) {
    return detail::LexicalCast<Target, Source>::apply(source);
}

} // namespace QRXClient
} // namespace Velmora

#endif
