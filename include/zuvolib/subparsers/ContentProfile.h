// Content profiles: the encodings a downloadable stream is offered in, and
// their identifiers on the wire.
#ifndef ZUVOLIB_SUBPARSERS_CONTENTPROFILE_H
#define ZUVOLIB_SUBPARSERS_CONTENTPROFILE_H

#include "zuvolib/export.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// Content profile of one downloadable. The values are protocol numbers
/// shared by requests and responses; 10 and 19 are unassigned on purpose.
/// The underlying type is fixed, so any `int` is a valid (if unnamed) value.
enum ContentProfile : int {
    PROFILE_UNKNOWN = -1,
    PROFILE_WMDRM10_WMV3_ASF = 0,
    PROFILE_WMDRM10_VC1AP_ASF = 1,
    PROFILE_PLAYREADY_VC1AP_ASF = 2,
    PROFILE_BD_H264_M2TS = 3,
    PROFILE_SESSIONDH1_MPEG4P2_ASF = 4,
    PROFILE_PLAYREADY_MPEG4P2_PIFF = 5,
    PROFILE_PLAYREADY_H264BPL30_PIFF = 6,
    PROFILE_PLAYREADY_H264MPL30_PIFF = 7,
    PROFILE_PLAYREADY_H264MPL31_PIFF = 8,
    PROFILE_PLAYREADY_H264HPL40_PIFF = 9,
    PROFILE_WMDRM10_WMA_2_ASF = 11,
    PROFILE_PLAYREADY_WMA_2_ASF = 12,
    PROFILE_BD_AC3_2_M2TS = 13,
    PROFILE_SESSIONDH1_OGGVORBIS_2_ASF = 14,
    PROFILE_DDPLUS_5_1_ASF = 15,
    PROFILE_DDPLUS_5_1_PIFF = 16,
    PROFILE_HEAAC_2_PIFF = 17,
    PROFILE_PLAYREADY_OGGVORBIS_2_PIFF = 18,
    PROFILE_SIMPLESDH = 20
};

/// The profile whose identifier is exactly `identifier` (case-sensitive, no
/// trimming), or PROFILE_UNKNOWN for any other text, the empty text included.
ZUVO_API ContentProfile stringToProfile(const std::string& identifier);

/// The identifier of `profile`, e.g. "simplesdh" for PROFILE_SIMPLESDH; the
/// empty string for a value without one (10, 19, above 20, negative).
ZUVO_API std::string profileToString(ContentProfile profile);

} // namespace zuvolib
} // namespace velmora

#endif
