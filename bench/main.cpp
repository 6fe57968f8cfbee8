// Runs the benchmarks, whose names are "row/competitor", and closes with a table that sets the competitors of a row
// beside its limit, the competitor "limit: ...". The times per item are medians of interleaved runs.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

struct competitor {
    std::string name;
    double nanoseconds;
};

class ratios : public benchmark::ConsoleReporter {
public:
    void ReportRuns(std::vector<Run> const & runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (auto const & run : runs) {
            if (run.error_occurred || (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median"))
                continue;
            if (run.run_type == Run::RT_Iteration && run.repetitions > 1)
                continue;
            auto const items = run.counters.find("items_per_second");
            if (items != run.counters.end())
                add(run.run_name.function_name, 1e9 / items->second.value);
        }
    }

    void Finalize() override {
        std::printf("\n%-34s %-34s %10s %8s\n", "row", "competitor", "ns/item", "x limit");
        for (auto & [name, competitors] : rows_) {
            auto const limit = std::find_if(competitors.begin(), competitors.end(),
                                            [](auto const & c) { return c.name.starts_with("limit:"); });
            double const unit = limit != competitors.end() ? limit->nanoseconds : competitors.front().nanoseconds;
            std::sort(competitors.begin(), competitors.end(),
                      [](auto const & a, auto const & b) { return a.nanoseconds < b.nanoseconds; });
            for (auto const & c : competitors)
                std::printf("%-34s %-34s %10.3f %8.2f\n", name.c_str(), c.name.c_str(), c.nanoseconds,
                            c.nanoseconds / unit);
        }
    }

private:
    void add(std::string const & name, double nanoseconds) {
        auto const cut = name.find('/');
        rows_[name.substr(0, cut)].push_back({name.substr(cut + 1), nanoseconds});
    }

    std::map<std::string, std::vector<competitor>> rows_;
};

} // namespace

int main(int argc, char ** argv) {
    std::vector<char *> arguments(argv, argv + argc);
    std::string defaults[] = {"--benchmark_repetitions=5", "--benchmark_enable_random_interleaving=true",
                              "--benchmark_min_time=0.05", "--benchmark_report_aggregates_only=true"};
    // A caller's own flags come later and win.
    for (auto & flag : defaults)
        arguments.insert(arguments.begin() + 1, flag.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    ratios reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
