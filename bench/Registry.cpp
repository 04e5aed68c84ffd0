// Registration and the summary table of medians and ratios to the floors.

#include "Registry.h"

#include <cstdio>
#include <map>
#include <vector>

namespace zuvobench {
namespace {

struct Entry {
    std::string group;
    std::string label;
    Role role;
};

std::vector<Entry>& entries() {
    static std::vector<Entry> all;
    return all;
}

struct Result {
    double nanoseconds = 0;
    double allocations = -1;
    double allocationsPerElement = -1;
};

// Collects the medians while printing the usual console output.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median")
                continue;
            Result r;
            r.nanoseconds = run.GetAdjustedRealTime();
            const auto allocs = run.counters.find("allocs/doc");
            if (allocs != run.counters.end())
                r.allocations = allocs->second.value;
            const auto perElement = run.counters.find("allocs/element");
            if (perElement != run.counters.end())
                r.allocationsPerElement = perElement->second.value;
            results[run.run_name.function_name] = r;
        }
    }
    std::map<std::string, Result> results;
};

std::string fullName(const Entry& e) {
    return e.group + "/" + e.label;
}

// The median time of the group's benchmark in `role`, or 0 when it has none.
double roleTime(const std::map<std::string, Result>& results, const std::string& group, Role role) {
    for (const Entry& e : entries())
        if (e.group == group && e.role == role && results.count(fullName(e)))
            return results.at(fullName(e)).nanoseconds;
    return 0;
}

void printSummary(const std::map<std::string, Result>& results) {
    std::printf("\n%-40s %12s %9s %9s %11s %11s\n", "benchmark (median)", "time", "x floor",
                "x pieces", "allocs/doc", "allocs/elem");
    std::string group;
    double floor = 0, piecesFloor = 0;
    for (const Entry& e : entries()) {
        const auto it = results.find(fullName(e));
        if (it == results.end())
            continue;
        if (e.group != group) {
            group = e.group;
            floor = roleTime(results, group, Role::Floor);
            piecesFloor = roleTime(results, group, Role::PiecesFloor);
            std::printf("%s\n", group.c_str());
        }
        const Result& r = it->second;
        char ratio[32] = "-", piecesRatio[32] = "-";
        if (floor > 0)
            std::snprintf(ratio, sizeof ratio, "%.2f", r.nanoseconds / floor);
        if (piecesFloor > 0)
            std::snprintf(piecesRatio, sizeof piecesRatio, "%.2f", r.nanoseconds / piecesFloor);
        char allocs[32] = "-", perElement[32] = "-";
        if (r.allocations >= 0)
            std::snprintf(allocs, sizeof allocs, "%.0f", r.allocations);
        if (r.allocationsPerElement >= 0)
            std::snprintf(perElement, sizeof perElement, "%.2f", r.allocationsPerElement);
        const char* mark = e.role == Role::Floor         ? " (floor)"
                           : e.role == Role::PiecesFloor ? " (pieces)"
                                                         : "";
        std::printf("  %-38s %9.2f us %9s %9s %11s %11s\n", (e.label + mark).c_str(),
                    r.nanoseconds / 1000.0, ratio, piecesRatio, allocs, perElement);
    }
}

} // namespace

void add(const std::string& group, const std::string& label, Role role,
         std::function<void(benchmark::State&)> fn) {
    entries().push_back(Entry{group, label, role});
    benchmark::RegisterBenchmark((group + "/" + label).c_str(), fn);
}

void setAllocationCounters(benchmark::State& state, std::size_t allocationsPerDoc,
                           std::size_t elementsPerDoc) {
    state.counters["allocs/doc"] = static_cast<double>(allocationsPerDoc);
    if (elementsPerDoc != 0)
        state.counters["allocs/element"] =
            static_cast<double>(allocationsPerDoc) / static_cast<double>(elementsPerDoc);
}

int runAll(int argc, char** argv) {
    // Short repetitions in random order: a subject and its floor see the
    // same machine conditions, which keeps the ratios steady on a busy host.
    // Flags given on the command line come later and win.
    std::vector<std::string> defaults = {"--benchmark_repetitions=9", "--benchmark_min_time=0.2",
                                         "--benchmark_enable_random_interleaving=true",
                                         "--benchmark_report_aggregates_only=true"};
    std::vector<char*> args(argv, argv + argc);
    for (std::string& flag : defaults)
        args.insert(args.begin() + 1, &flag[0]);
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());
    SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printSummary(reporter.results);
    benchmark::Shutdown();
    return 0;
}

} // namespace zuvobench
