#include "zuvolib/xml/XmlEscape.h"

#include <cstring>

namespace velmora {
namespace zuvolib {

std::string escapeXmlText(const std::string& text) {
    static const char kSpecial[] = "&<>\"";
    std::size_t next = text.find_first_of(kSpecial);
    if (next == std::string::npos)
        return text;

    std::string out;
    out.reserve(text.size() + text.size() / 8 + 8);
    std::size_t done = 0;
    for (; next != std::string::npos; next = text.find_first_of(kSpecial, done)) {
        out.append(text, done, next - done);
        switch (text[next]) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        default: out += "&quot;"; break;
        }
        done = next + 1;
    }
    out.append(text, done, std::string::npos);
    return out;
}

} // namespace zuvolib
} // namespace velmora
