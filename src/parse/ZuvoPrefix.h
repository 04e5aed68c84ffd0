// Internal: the protocol prefix of element and attribute names.
#ifndef ZUVOLIB_SRC_PARSE_ZUVOPREFIX_H
#define ZUVOLIB_SRC_PARSE_ZUVOPREFIX_H

#include <cstddef>

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

} // namespace zuvolib
} // namespace velmora

#endif
