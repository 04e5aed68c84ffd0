// Internal: the merged tag tables of a response parser, built once and shared.
#ifndef ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H
#define ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H

#include "zuvolib/parse/ParentParser.h"

#include <map>
#include <memory>
#include <string>
#include <unordered_map>

namespace velmora {
namespace zuvolib {

/// Element names to ids, and ids back to names, of one merged table.
struct TagTypeIndex {
    std::map<std::string, unsigned int> byName;
    /// The same as `byName`, for the lookup of every element event.
    std::unordered_map<std::string, unsigned int> lookup;
    /// For each id, the first name in `byName` order that carries it.
    std::map<unsigned int, std::string> nameOf;
};

/// The index of `base` (`baseCount` rows) followed by `table` (`count`
/// rows); the first row with a given name wins. `base` must be the same on
/// every call. Indexes are cached by the content of `table`, so every parser
/// of one kind shares one, built on first use; safe to call from several
/// threads.
std::shared_ptr<const TagTypeIndex> sharedTagTypeIndex(const ParentParser::TagConfigTable* base,
                                                       unsigned int baseCount,
                                                       const ParentParser::TagConfigTable* table,
                                                       unsigned int count);

} // namespace zuvolib
} // namespace velmora

#endif
