// Deterministic generator of realistic response documents for the benchmarks.
#ifndef ZUVOLIB_BENCH_RESPONSEGENERATOR_H
#define ZUVOLIB_BENCH_RESPONSEGENERATOR_H

#include <krel/KrelContext.h>

#include <cstddef>
#include <string>

namespace zuvobench {

/// How much an authorization catalogue holds.
struct CatalogueShape {
    int cdns = 1;
    int urlsPerStream = 1;
    int videoDownloadables = 1;
    int audioTracks = 1;
    int audioDownloadablesPerTrack = 1;
    int timedTextTracks = 0;
    int trickPlays = 0;
    int streamingParams = 1;
};

/// A full authorization response: header with encrypted timing payload, the
/// catalogue, and the encrypted movie ticket. Payloads are sealed with
/// `context`; everything else depends only on `shape`.
std::string authorizationResponse(const CatalogueShape& shape, krel::KrelContext& context);

/// The smallest shape whose document is at least `bytes` long, grown evenly.
CatalogueShape shapeForSize(std::size_t bytes, krel::KrelContext& context);

/// Small responses of the registration family, with encrypted payloads.
std::string preregResponse(krel::KrelContext& context);
std::string registrationResponse(krel::KrelContext& context);
std::string renewalResponse(krel::KrelContext& context);

} // namespace zuvobench

#endif
