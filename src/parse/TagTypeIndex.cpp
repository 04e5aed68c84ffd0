// Shared, lazily built tag type indexes.

#include "parse/TagTypeIndex.h"

#include <cstdint>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace velmora {
namespace zuvolib {

namespace {

typedef ParentParser::TagConfigTable Row;

// A row without a name counts as the empty name, which no element can have.
const char* nameOf(const Row& row) {
    return row.tagName ? row.tagName : "";
}

// FNV-1a over the ids and names of the rows.
std::uint64_t hashRows(const Row* rows, unsigned int count) {
    std::uint64_t hash = 14695981039346656037ull;
    const auto mix = [&hash](unsigned char byte) { hash = (hash ^ byte) * 1099511628211ull; };
    for (unsigned int i = 0; i < count; ++i) {
        for (unsigned int shift = 0; shift < 32; shift += 8)
            mix(static_cast<unsigned char>(rows[i].tagType >> shift));
        for (const char* c = nameOf(rows[i]); *c; ++c)
            mix(static_cast<unsigned char>(*c));
        mix(0);
    }
    return hash;
}

struct CacheEntry {
    std::vector<std::pair<unsigned int, std::string>> rows; ///< content of the table
    std::shared_ptr<const TagTypeIndex> index;
};

bool holdsRows(const CacheEntry& entry, const Row* rows, unsigned int count) {
    if (entry.rows.size() != count)
        return false;
    for (unsigned int i = 0; i < count; ++i) {
        if (entry.rows[i].first != rows[i].tagType ||
            std::strcmp(entry.rows[i].second.c_str(), nameOf(rows[i])) != 0)
            return false;
    }
    return true;
}

void addRows(TagTypeIndex& index, const Row* rows, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i)
        index.byName.insert(std::make_pair(std::string(nameOf(rows[i])), rows[i].tagType));
}

} // namespace

void TagTypeIndex::buildLookup() {
    names.reserve(byName.size()); // slots point into it
    for (const auto& row : byName) {
        names.push_back(row.first);
        ids.push_back(row.second);
    }
    std::size_t size = 16;
    while (size < names.size() * 4)
        size *= 2;
    slots.assign(size, Slot{nullptr, 0, Key{0, 0, 0}});
    mask = size - 1;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Key key = keyOf(names[i].data(), names[i].size());
        std::size_t at = hash(key) & mask;
        while (slots[at].name)
            at = (at + 1) & mask;
        slots[at] = Slot{&names[i], ids[i], key};
    }
    // Ids are small row numbers; a table with larger ones only finds them by
    // lookup. An id's name is its first in name order, as in `nameOf`.
    const unsigned int ID_LIMIT = 1024;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (ids[i] >= ID_LIMIT)
            continue;
        if (byId.size() <= ids[i])
            byId.resize(ids[i] + 1, nullptr);
        if (!byId[ids[i]])
            byId[ids[i]] = &names[i];
    }
}

std::shared_ptr<const TagTypeIndex> sharedTagTypeIndex(const ParentParser::TagConfigTable* base,
                                                       unsigned int baseCount,
                                                       const ParentParser::TagConfigTable* table,
                                                       unsigned int count) {
    if (!table)
        count = 0;
    static std::mutex mutex;
    static std::map<std::uint64_t, std::vector<CacheEntry>> cache;
    const std::uint64_t hash = hashRows(table, count);

    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<CacheEntry>& bucket = cache[hash];
    for (const CacheEntry& entry : bucket) {
        if (holdsRows(entry, table, count))
            return entry.index;
    }

    std::shared_ptr<TagTypeIndex> index = std::make_shared<TagTypeIndex>();
    addRows(*index, base, baseCount);
    addRows(*index, table, count);
    for (const auto& name : index->byName)
        index->nameOf.insert(std::make_pair(name.second, name.first));
    index->buildLookup();

    CacheEntry entry;
    for (unsigned int i = 0; i < count; ++i)
        entry.rows.push_back(std::make_pair(table[i].tagType, std::string(nameOf(table[i]))));
    entry.index = index;
    bucket.push_back(entry);
    return index;
}

} // namespace zuvolib
} // namespace velmora
