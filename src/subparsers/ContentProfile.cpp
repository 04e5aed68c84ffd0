// Content profile identifiers: one table, read in both directions.

#include "zuvolib/subparsers/ContentProfile.h"

#include <cstddef>

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

} // namespace

ContentProfile stringToProfile(const std::string& identifier) {
    for (std::size_t value = 0; value < PROFILE_COUNT; ++value) {
        if (IDENTIFIERS[value] && identifier == IDENTIFIERS[value])
            return static_cast<ContentProfile>(value);
    }
    return PROFILE_UNKNOWN;
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
