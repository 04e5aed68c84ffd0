// One binary for every benchmark; prints Google Benchmark's output followed
// by a summary of medians, ratios to each group's floor and allocations.

#include "Registry.h"

#include <cstring>

namespace zuvobench {
void registerResponseBenchmarks();
void registerRequestBenchmarks();
void reportResponsePeakMemory();
} // namespace zuvobench

int main(int argc, char** argv) {
    zuvobench::registerResponseBenchmarks();
    zuvobench::registerRequestBenchmarks();
    const int status = zuvobench::runAll(argc, argv);
    zuvobench::reportResponsePeakMemory();
    return status;
}
