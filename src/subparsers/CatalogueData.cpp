// Resetting downloadables to their default state.

#include "zuvolib/subparsers/CatalogueData.h"

namespace velmora {
namespace zuvolib {

DownloadableData::~DownloadableData() = default;

// Each level assigns a default record of its own type: the defaults stay
// those of the member initialisers, and a field added later is reset too.

void DownloadableData::clear() {
    *this = DownloadableData();
}

void VideoDownloadableData::clear() {
    *this = VideoDownloadableData();
}

void AudioDownloadableData::clear() {
    *this = AudioDownloadableData();
}

} // namespace zuvolib
} // namespace velmora
