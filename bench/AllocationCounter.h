// Counts heap allocations made through operator new in the benchmark binary.
#ifndef ZUVOLIB_BENCH_ALLOCATIONCOUNTER_H
#define ZUVOLIB_BENCH_ALLOCATIONCOUNTER_H

#include <cstddef>

namespace zuvobench {

struct HeapStats {
    std::size_t allocations; ///< operator new calls so far
    std::size_t liveBytes;   ///< bytes allocated and not yet freed
    std::size_t peakBytes;   ///< highest liveBytes since the last resetPeak
};

HeapStats heapStats();

/// Starts a new peak measurement at the current live size.
void resetPeak();

} // namespace zuvobench

#endif
