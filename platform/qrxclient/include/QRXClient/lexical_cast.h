// Stand-in for the platform's text/number conversions.
//
// Conversions behave exactly like a string stream imbued with the classic "C"
// locale, whatever the process locale is, and never fail: text without a
// leading number converts to 0, and a leading number followed by anything
// converts to that number. Out-of-range text follows the stream rule: the
// value saturates at the target's limit. Integers take a direct path with
// those same results; other types go through a stream.
#ifndef QRXCLIENT_LEXICAL_CAST_H
#define QRXCLIENT_LEXICAL_CAST_H

#include <charconv>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

namespace Velmora {
namespace QRXClient {
namespace detail {

template <typename T>
struct IsPlainInteger
    : std::integral_constant<
          bool, std::is_integral<T>::value && !std::is_same<T, bool>::value &&
                    !std::is_same<T, char>::value && !std::is_same<T, signed char>::value &&
                    !std::is_same<T, unsigned char>::value && !std::is_same<T, wchar_t>::value &&
                    !std::is_same<T, char16_t>::value && !std::is_same<T, char32_t>::value> {};

inline bool isClassicSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Formatted integer input of a classic-locale stream: skip white space, an
// optional sign, decimal digits; saturate on overflow; an unsigned target
// takes a negative number modulo its range.
template <typename T> T readInteger(const std::string& text) {
    typedef unsigned long long Wide;
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end && isClassicSpace(*p))
        ++p;
    bool negative = false;
    if (p != end && (*p == '+' || *p == '-')) {
        negative = *p == '-';
        ++p;
    }
    const Wide max = static_cast<Wide>(std::numeric_limits<T>::max());
    const Wide limit = std::is_signed<T>::value && negative ? max + 1 : max;
    Wide value = 0;
    bool overflow = false;
    for (; p != end && *p >= '0' && *p <= '9'; ++p) {
        const unsigned digit = static_cast<unsigned>(*p - '0');
        if (overflow || value > (limit - digit) / 10)
            overflow = true;
        else
            value = value * 10 + digit;
    }
    if (overflow)
        return std::is_signed<T>::value && negative ? std::numeric_limits<T>::min()
                                                    : std::numeric_limits<T>::max();
    if (!negative)
        return static_cast<T>(value);
    if (std::is_signed<T>::value)
        return value == max + 1 ? std::numeric_limits<T>::min()
                                : static_cast<T>(-static_cast<long long>(value));
    return static_cast<T>(static_cast<T>(0) - static_cast<T>(value));
}

template <typename Target, typename Source, typename = void> struct LexicalCast {
    // Number to text.
    static Target apply(const Source& source) {
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out << source;
        return out.str();
    }
};

template <typename Source>
struct LexicalCast<std::string, Source,
                   typename std::enable_if<IsPlainInteger<Source>::value>::type> {
    static std::string apply(const Source& source) {
        char buf[std::numeric_limits<Source>::digits10 + 3];
        return std::string(buf, std::to_chars(buf, buf + sizeof buf, source).ptr);
    }
};

template <typename Target> struct LexicalCast<Target, std::string, void> {
    // Text to number.
    static Target apply(const std::string& source) {
        if constexpr (IsPlainInteger<Target>::value) {
            return readInteger<Target>(source);
        } else {
            std::istringstream in(source);
            in.imbue(std::locale::classic());
            Target value = 0;
            in >> value;
            return value;
        }
    }
};

template <> struct LexicalCast<std::string, std::string, void> {
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
