// Internal: the merged tag tables of a response parser, built once and shared.
#ifndef ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H
#define ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H

#include "zuvolib/parse/ParentParser.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// Element names to ids, and ids back to names, of one merged table.
struct TagTypeIndex {
    std::map<std::string, unsigned int> byName;
    /// For each id, the first name in `byName` order that carries it.
    std::map<unsigned int, std::string> nameOf;

    /// The id of the `size` bytes at `name`, or `ParentParser::TAG_INVALID`:
    /// the lookup of every element event.
    unsigned int find(const char* name, std::size_t size) const {
        for (std::size_t at = hash(name, size) & mask;; at = (at + 1) & mask) {
            const Slot& slot = slots[at];
            if (!slot.name)
                return ParentParser::TAG_INVALID;
            if (slot.name->size() == size && std::memcmp(slot.name->data(), name, size) == 0)
                return slot.id;
        }
    }

    /// Whether `name` has id `tagType`: first against the name of that id,
    /// which is what an end tag almost always is, then by lookup.
    bool hasId(const std::string& name, unsigned int tagType) const {
        if (tagType < nameById.size() && nameById[tagType] && *nameById[tagType] == name)
            return true;
        return find(name.data(), name.size()) == tagType;
    }

    /// Fills the lookup tables from `byName` and `nameOf`.
    void buildLookup();

private:
    struct Slot {
        const std::string* name; ///< a key of `byName`; null for an empty slot
        unsigned int id;
    };

    /// Names are short and many share a stem, so the length and the first
    /// and last eight bytes tell them apart at a fraction of the cost of
    /// hashing every byte; a collision only costs a comparison.
    static std::size_t hash(const char* bytes, std::size_t size) {
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
        return static_cast<std::size_t>(mixed >> 32);
    }

    /// Open addressing with linear probing, a power of two at most a
    /// quarter full, so a lookup ends at an empty slot soon.
    std::vector<Slot> slots;
    std::size_t mask = 0;
    /// The name of each small id (null where no name has it), for `hasId`.
    std::vector<const std::string*> nameById;
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
