// Counts heap allocations made through operator new in the benchmark binary,
// and measures live and peak heap size while tracking is switched on.
#ifndef ZUVOLIB_BENCH_ALLOCATIONCOUNTER_H
#define ZUVOLIB_BENCH_ALLOCATIONCOUNTER_H

#include <cstddef>

namespace zuvobench {

/// operator new calls so far. Counting costs one increment per call, so the
/// timed loops pay (nearly) nothing for it.
std::size_t allocationCount();

/// Sizes seen since `startHeapTracking`. Only tracked blocks are measured,
/// which costs a size lookup per allocation and release: keep tracking off
/// while timing.
struct HeapTrack {
    long long liveBytes; ///< allocated less released; blocks from before the start count as 0
    long long peakBytes; ///< highest liveBytes so far
};

void startHeapTracking();
HeapTrack heapTrack();
void stopHeapTracking();

} // namespace zuvobench

#endif
