// Resetting downloadables to their default state; moving video downloadables.

#include "zuvolib/subparsers/CatalogueData.h"

#include <utility>

namespace velmora {
namespace zuvolib {

DownloadableData::~DownloadableData() = default;

// The subtitles are swapped: a std::tr1::shared_ptr may have no move of its
// own, and its copy is not declared non-throwing. A field added to the
// record must be added to both moves.

VideoDownloadableData::VideoDownloadableData(VideoDownloadableData&& other) noexcept
    : DownloadableData(std::move(other)), bitrate(other.bitrate),
      resolutionWidth(other.resolutionWidth), resolutionHeight(other.resolutionHeight),
      pixelAspectWidth(other.pixelAspectWidth), pixelAspectHeight(other.pixelAspectHeight),
      hd(other.hd) {
    burnedInSubtitles.swap(other.burnedInSubtitles);
}

VideoDownloadableData& VideoDownloadableData::operator=(VideoDownloadableData&& other) noexcept {
    DownloadableData::operator=(std::move(other));
    bitrate = other.bitrate;
    resolutionWidth = other.resolutionWidth;
    resolutionHeight = other.resolutionHeight;
    pixelAspectWidth = other.pixelAspectWidth;
    pixelAspectHeight = other.pixelAspectHeight;
    hd = other.hd;
    burnedInSubtitles.swap(other.burnedInSubtitles);
    other.burnedInSubtitles.reset();
    return *this;
}

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
