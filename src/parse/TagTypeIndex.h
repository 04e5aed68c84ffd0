// Internal: the merged tag tables of a response parser, built once and shared.
#ifndef ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H
#define ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H

#include "zuvolib/parse/ParentParser.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

namespace velmora {
namespace zuvolib {

/// Hash of an element name for the per-event lookup. Names are short and
/// many share a stem, so the length and the first and last eight bytes tell
/// them apart at a fraction of the cost of hashing every byte; a collision
/// only costs a comparison.
struct TagNameHash {
    std::size_t operator()(const std::string& name) const noexcept {
        const std::size_t size = name.size();
        const char* const bytes = name.data();
        std::uint64_t head = 0;
        std::uint64_t tail = size;
        if (size >= 8) {
            std::memcpy(&head, bytes, 8);
            std::memcpy(&tail, bytes + size - 8, 8);
            tail += size;
        } else {
            for (std::size_t i = 0; i < size; ++i)
                head = head << 8 | static_cast<unsigned char>(bytes[i]);
        }
        const std::uint64_t mixed = (head ^ (tail << 32 | tail >> 32)) * 0x9E3779B97F4A7C15ull;
        return static_cast<std::size_t>(mixed ^ (mixed >> 32));
    }
};

/// Element names to ids, and ids back to names, of one merged table.
struct TagTypeIndex {
    std::map<std::string, unsigned int> byName;
    /// The same as `byName`, for the lookup of every element event.
    std::unordered_map<std::string, unsigned int, TagNameHash> lookup;
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
