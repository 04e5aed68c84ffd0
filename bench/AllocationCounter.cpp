// Replacement global operator new/delete that keep allocation statistics.
// The benchmarks run on one thread. The counters are relaxed atomics written
// with plain loads and stores: no locked instruction on the timed path, and a
// helper thread of the benchmark library could at worst lose a count.

#include "AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> gAllocations{0};
std::atomic<bool> gTracking{false};
long long gLive = 0;
long long gPeak = 0;

void bump(std::atomic<std::size_t>& counter) {
    counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

void* allocate(std::size_t size) {
    void* p = std::malloc(size ? size : 1);
    if (!p)
        throw std::bad_alloc();
    bump(gAllocations);
    if (gTracking.load(std::memory_order_relaxed)) {
        gLive += static_cast<long long>(malloc_usable_size(p));
        if (gLive > gPeak)
            gPeak = gLive;
    }
    return p;
}

void release(void* p) noexcept {
    if (!p)
        return;
    if (gTracking.load(std::memory_order_relaxed))
        gLive -= static_cast<long long>(malloc_usable_size(p));
    std::free(p);
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* p) noexcept {
    release(p);
}
void operator delete[](void* p) noexcept {
    release(p);
}
void operator delete(void* p, std::size_t) noexcept {
    release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    release(p);
}

namespace zuvobench {

std::size_t allocationCount() {
    return gAllocations.load(std::memory_order_relaxed);
}

void startHeapTracking() {
    gLive = 0;
    gPeak = 0;
    gTracking.store(true);
}

HeapTrack heapTrack() {
    return HeapTrack{gLive, gPeak};
}

void stopHeapTracking() {
    gTracking.store(false);
}

} // namespace zuvobench
