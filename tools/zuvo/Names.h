// Lists of named entries (messages, response types, record fields).
#ifndef ZUVO_TOOL_NAMES_H
#define ZUVO_TOOL_NAMES_H

#include <string>

namespace zuvocli {

/// "a, b, c": the `name` of every entry of `entries`, for help texts and
/// messages.
template <class List> std::string joinNames(const List& entries) {
    std::string names;
    for (const auto& entry : entries)
        names += (names.empty() ? "" : ", ") + std::string(entry.name);
    return names;
}

} // namespace zuvocli

#endif
