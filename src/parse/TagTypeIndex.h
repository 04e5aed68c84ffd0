// Internal: the merged tag tables of a response parser, built once and shared.
#ifndef ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H
#define ZUVOLIB_SRC_PARSE_TAGTYPEINDEX_H

#include "zuvolib/parse/ParentParser.h"

#include <cstdint>
#include <cstring>
#include <functional>
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
        const Slot& slot = lookup(name, size);
        return slot.name ? slot.id : static_cast<unsigned int>(ParentParser::TAG_INVALID);
    }

    /// The table's copy of the `size` bytes at `name`, or null for a name
    /// no table lists.
    const std::string* known(const char* name, std::size_t size) const {
        return lookup(name, size).name;
    }

    /// The id of `name`: at once when it is one of this index's own copies
    /// (as `known` and `nameOfId` hand them out), otherwise by lookup.
    unsigned int idOf(const std::string& name) const {
        const std::less<const std::string*> before;
        if (!names.empty() && !before(&name, names.data()) &&
            before(&name, names.data() + names.size()))
            return ids[static_cast<std::size_t>(&name - names.data())];
        return find(name.data(), name.size());
    }

    /// Whether `name` has id `tagType`: at once when it is the index's copy
    /// of that id's name (as the parser hands on an end tag that closes the
    /// open element), otherwise by lookup.
    bool hasId(const std::string& name, unsigned int tagType) const {
        return &name == nameOfId(tagType) || find(name.data(), name.size()) == tagType;
    }

    /// The table's copy of the name of id `tagType` (its first in name
    /// order), or null when the id is large or has no name.
    const std::string* nameOfId(unsigned int tagType) const {
        return tagType < byId.size() ? byId[tagType] : nullptr;
    }

    /// Fills the lookup tables from `byName` and `nameOf`.
    void buildLookup();

private:
    /// A name's length with its first and last eight bytes. Names are short
    /// and many share a stem, so the key tells them apart at a fraction of
    /// the cost of hashing every byte; for names of up to 16 bytes equal
    /// keys mean equal names, so most comparisons need no `memcmp`.
    struct Key {
        std::uint64_t head;
        std::uint64_t tail;
        std::size_t size;
        bool operator==(const Key& other) const {
            return head == other.head && tail == other.tail && size == other.size;
        }
    };

    static Key keyOf(const char* bytes, std::size_t size) {
        Key key{0, 0, size};
        if (size >= 8) {
            std::memcpy(&key.head, bytes, 8);
            std::memcpy(&key.tail, bytes + size - 8, 8);
        } else {
            for (std::size_t i = 0; i < size; ++i)
                key.head = key.head << 8 | static_cast<unsigned char>(bytes[i]);
        }
        return key;
    }

    static std::size_t hash(const Key& key) {
        const std::uint64_t tail = key.tail + key.size;
        const std::uint64_t mixed = (key.head ^ (tail << 32 | tail >> 32)) * 0x9E3779B97F4A7C15ull;
        return static_cast<std::size_t>(mixed >> 32);
    }

    /// Whether `known` and the bytes at `name`, whose keys are equal, also
    /// agree between their first and last eight bytes.
    static bool sameMiddle(const std::string& known, const char* name) {
        return known.size() <= 16 ||
               std::memcmp(known.data() + 8, name + 8, known.size() - 16) == 0;
    }

    struct Slot {
        const std::string* name; ///< one of `names`; null for an empty slot
        unsigned int id;
        Key key;
    };

    /// The slot of the `size` bytes at `name`, or an empty one.
    const Slot& lookup(const char* name, std::size_t size) const {
        const Key key = keyOf(name, size);
        for (std::size_t at = hash(key) & mask;; at = (at + 1) & mask) {
            const Slot& slot = slots[at];
            if (!slot.name || (slot.key == key && sameMiddle(*slot.name, name)))
                return slot;
        }
    }

    /// The names of `byName` in its order, and their ids: the copies that
    /// slots point to.
    std::vector<std::string> names;
    std::vector<unsigned int> ids;
    /// Open addressing with linear probing, a power of two at most a
    /// quarter full, so a lookup ends at an empty slot soon.
    std::vector<Slot> slots;
    std::size_t mask = 0;
    /// The name of each small id (null where no name has it).
    std::vector<const std::string*> byId;
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
