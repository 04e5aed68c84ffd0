// Replacement global operator new/delete that keep allocation statistics.
// The benchmarks run on one thread; the counters are atomics only so that
// any helper thread of the benchmark library does not race on them.

#include "AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> gAllocations{0};
std::atomic<std::size_t> gLive{0};
std::atomic<std::size_t> gPeak{0};

void* allocate(std::size_t size) {
    void* p = std::malloc(size ? size : 1);
    if (!p)
        throw std::bad_alloc();
    gAllocations.fetch_add(1, std::memory_order_relaxed);
    const std::size_t live =
        gLive.fetch_add(malloc_usable_size(p), std::memory_order_relaxed) + malloc_usable_size(p);
    std::size_t peak = gPeak.load(std::memory_order_relaxed);
    while (live > peak && !gPeak.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
    }
    return p;
}

void release(void* p) noexcept {
    if (!p)
        return;
    gLive.fetch_sub(malloc_usable_size(p), std::memory_order_relaxed);
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

HeapStats heapStats() {
    return HeapStats{gAllocations.load(), gLive.load(), gPeak.load()};
}

void resetPeak() {
    gPeak.store(gLive.load());
}

} // namespace zuvobench
