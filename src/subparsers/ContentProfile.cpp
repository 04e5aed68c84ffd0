// Content profile identifiers: one table, read in both directions.

#include "zuvolib/subparsers/ContentProfile.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace velmora {
namespace zuvolib {

namespace {

// The identifier of each profile, indexed by its value; a null entry marks a
// value that has none.
const char* const IDENTIFIERS[] = {
    "wmdrm10-wmv3-asf",           // 0
    "wmdrm10-vc1ap-asf",          // 1
    "playready-vc1ap-asf",        // 2
    "bd-h264-m2ts",               // 3
    "sessiondh1-mpeg4p2-asf",     // 4
    "playready-mpeg4p2-piff",     // 5
    "playready-h264bpl30-piff",   // 6
    "playready-h264mpl30-piff",   // 7
    "playready-h264mpl31-piff",   // 8
    "playready-h264hpl40-piff",   // 9
    nullptr,                      // 10
    "wmdrm10-wma-2-asf",          // 11
    "playready-wma-2-asf",        // 12
    "bd-ac3-2-m2ts",              // 13
    "sessiondh1-oggvorbis-2-asf", // 14
    "ddplus-5.1-asf",             // 15
    "ddplus-5.1-piff",            // 16
    "heaac-2-piff",               // 17
    "playready-oggvorbis-2-piff", // 18
    nullptr,                      // 19
    "simplesdh",                  // 20
};

const std::size_t PROFILE_COUNT = sizeof(IDENTIFIERS) / sizeof(IDENTIFIERS[0]);

bool identifierBefore(const char* a, const char* b) {
    return std::strcmp(a, b) < 0;
}

/// The identifiers in byte order, each with its value: read by binary
/// search, as requests and catalogues name profiles often.
struct SortedIdentifiers {
    const char* identifiers[PROFILE_COUNT];
    ContentProfile values[PROFILE_COUNT];
    std::size_t count = 0;

    SortedIdentifiers() {
        for (std::size_t value = 0; value < PROFILE_COUNT; ++value) {
            if (IDENTIFIERS[value])
                identifiers[count++] = IDENTIFIERS[value];
        }
        std::sort(identifiers, identifiers + count, identifierBefore);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t value = static_cast<std::size_t>(
                std::find_if(IDENTIFIERS, IDENTIFIERS + PROFILE_COUNT,
                             [&](const char* known) { return known == identifiers[i]; }) -
                IDENTIFIERS);
            values[i] = static_cast<ContentProfile>(value);
        }
    }
};

} // namespace

ContentProfile stringToProfile(const std::string& identifier) {
    static const SortedIdentifiers sorted;
    const char* const* end = sorted.identifiers + sorted.count;
    const char* const* found =
        std::lower_bound(sorted.identifiers, end, identifier.c_str(), identifierBefore);
    // An identifier with a NUL inside is no identifier, though its prefix
    // may be one.
    if (found == end || identifier.size() != std::strlen(*found) ||
        std::strcmp(*found, identifier.c_str()) != 0)
        return PROFILE_UNKNOWN;
    return sorted.values[found - sorted.identifiers];
}

std::string profileToString(ContentProfile profile) {
    // Taken as unsigned, negative values land above the table as well.
    const unsigned int value = static_cast<unsigned int>(static_cast<int>(profile));
    if (value >= PROFILE_COUNT || !IDENTIFIERS[value])
        return std::string();
    return IDENTIFIERS[value];
}

} // namespace zuvolib
} // namespace velmora
