// Internal: the "zuvo:rc" element of registration, renewal and provisioning.
#ifndef ZUVOLIB_SRC_REQUEST_RCELEMENT_H
#define ZUVOLIB_SRC_REQUEST_RCELEMENT_H

#include "zuvolib/xml/TagBuilder.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// Fills the "zuvo:rc" element just placed (the builder's current element):
/// the attribute "version" = "1", then `rc` as its text.
inline void fillRc(TagBuilder& builder, const std::string& rc) {
    builder.addAttribute("version", "1");
    builder.addValue(rc);
}

} // namespace zuvolib
} // namespace velmora

#endif
