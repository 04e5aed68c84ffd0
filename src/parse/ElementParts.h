// Internal: what the element events are made of, shared by the general
// callbacks and the parser's own.
#ifndef ZUVOLIB_SRC_PARSE_ELEMENTPARTS_H
#define ZUVOLIB_SRC_PARSE_ELEMENTPARTS_H

#include <cstddef>
#include <map>
#include <string>

namespace velmora {
namespace zuvolib {

/// `name` without a leading "zuvo:". `name` is NUL-terminated, so the
/// comparison stops at a shorter name's end.
inline const char* afterPrefix(const char* name) {
    static const char PREFIX[] = "zuvo:";
    for (std::size_t i = 0; i + 1 < sizeof(PREFIX); ++i) {
        if (name[i] != PREFIX[i])
            return name;
    }
    return name + sizeof(PREFIX) - 1;
}

/// The attributes of an element that has none: one map for all of them.
inline const std::map<std::string, std::string>& noAttributes() {
    static const std::map<std::string, std::string> none;
    return none;
}

} // namespace zuvolib
} // namespace velmora

#endif
