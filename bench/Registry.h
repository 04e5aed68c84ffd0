// Benchmark bookkeeping: each benchmark belongs to a group (the same input
// or the same output document) and plays a role in it, so that the summary
// can set every subject against its group's floor.
#ifndef ZUVOLIB_BENCH_REGISTRY_H
#define ZUVOLIB_BENCH_REGISTRY_H

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace zuvobench {

/// A group's floor is what its ratios are taken against; a pieces floor
/// (expat fed the library's bounded pieces) gives a second ratio.
enum class Role { Subject, Floor, PiecesFloor, Alternative };

/// Registers `fn` as benchmark "group/label".
void add(const std::string& group, const std::string& label, Role role,
         std::function<void(benchmark::State&)> fn);

/// Runs every registered benchmark and prints the summary table.
int runAll(int argc, char** argv);

/// Reports per-document heap counters on `state` for the allocations and
/// elements of one iteration.
void setAllocationCounters(benchmark::State& state, std::size_t allocationsPerDoc,
                           std::size_t elementsPerDoc);

} // namespace zuvobench

#endif
