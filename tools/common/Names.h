// Lists of named entries (messages, response types, record fields).
#ifndef ZUVO_TOOL_NAMES_H
#define ZUVO_TOOL_NAMES_H

#include <string>

namespace zuvocli {

/// The name of a list entry: its `name` member, or the entry itself when the
/// list holds plain names.
inline std::string nameOf(const char* entry) {
    return entry;
}
template <class Entry> std::string nameOf(const Entry& entry) {
    return entry.name;
}

/// "a, b, c": the name of every entry of `entries`, for help texts and
/// messages.
template <class List> std::string joinNames(const List& entries) {
    std::string names;
    for (const auto& entry : entries)
        names += (names.empty() ? "" : ", ") + nameOf(entry);
    return names;
}

} // namespace zuvocli

#endif
