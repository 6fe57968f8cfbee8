#pragma once

#include "socle/basic/types.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

/// What the rows share. A row is a task, measured for the library, its peers and a limit, under "row/competitor".
namespace bench {

/// A size of a row, divided by SOCLE_BENCH_SHRINK of the environment, so that a second run shows how the cost grows.
inline uint32 sized(uint32 full) {
    static uint32 const divisor = [] {
        char const * const text = std::getenv("SOCLE_BENCH_SHRINK");
        return text ? static_cast<uint32>(std::atoi(text)) : 1u;
    }();
    return divisor > 1 ? full / divisor : full;
}

template <class Function, class... Arguments>
void add(std::string const & row, std::string const & competitor, Function function, Arguments... arguments) {
    benchmark::RegisterBenchmark((row + '/' + competitor).c_str(), function, arguments...);
}

/// Bytes that this program, with its libraries, has asked of the heap so far.
uint64 allocated() noexcept;

/// Counts what is asked of the heap from its making on.
class meter {
public:
    uint64 taken() const { return allocated() - before_; }

    /// At the end of a benchmark: one turn has so many items.
    void done(benchmark::State & state, uint64 items) const { report(state, items, taken()); }
    static void report(benchmark::State & state, uint64 items, uint64 allocated) {
        double const all = static_cast<double>(state.iterations()) * static_cast<double>(items);
        state.SetItemsProcessed(static_cast<int64>(state.iterations() * items));
        state.counters["allocated"] = static_cast<double>(allocated) / all;
    }

private:
    uint64 before_ = allocated();
};

} // namespace bench
