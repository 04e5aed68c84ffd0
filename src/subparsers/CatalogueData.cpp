// Resetting downloadables to their default state.

#include "zuvolib/subparsers/CatalogueData.h"

namespace velmora {
namespace zuvolib {

DownloadableData::~DownloadableData() = default;

void DownloadableData::clear() {
    downloadableId.clear();
    size = 0;
    profile = PROFILE_UNKNOWN;
    downloadUrls.clear();
}

void VideoDownloadableData::clear() {
    DownloadableData::clear();
    bitrate = 0;
    resolutionWidth = 0;
    resolutionHeight = 0;
    pixelAspectWidth = 0;
    pixelAspectHeight = 0;
    hd = false;
    burnedInSubtitles.reset();
}

void AudioDownloadableData::clear() {
    DownloadableData::clear();
    bitrate = 0;
}

} // namespace zuvolib
} // namespace velmora
