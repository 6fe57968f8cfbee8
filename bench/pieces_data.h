#pragma once

#include "bench/codes_data.h"

#include <string>
#include <vector>

namespace bench {

/// Fields of 3 to 18 characters between commas: 10 MiB.
inline std::string const & fields() {
    static std::string const text = [] {
        std::string made;
        uint32 const size = sized(10u << 20);
        for (unsigned i = 0; made.size() < size; ++i)
            made += std::string(3 + (i * 2654435761u >> 16) % 16, static_cast<char>('a' + i % 26)) + ",";
        made.resize(size);
        return made;
    }();
    return text;
}

/// Measures `cut`, which takes the fields apart.
template <class Cut>
void split(benchmark::State & state, Cut cut) {
    meter const meter;
    for (auto _ : state)
        benchmark::DoNotOptimize(cut(fields()));
    meter.done(state, fields().size());
}

inline char const * const split_row = "split at commas, 10 MiB";
inline char const * const parsing = "parse 64-bit numbers, 1,000,000";
inline char const * const formatting = "format 64-bit numbers, 1,000,000";

/// The values as texts.
inline std::vector<std::string> const & numbers() {
    static std::vector<std::string> const texts = [] {
        std::vector<std::string> made;
        for (int64 const value : spread_values())
            made.push_back(std::to_string(value));
        return made;
    }();
    return texts;
}

/// Measures `one`, which reads the number that a text starts with.
template <class Parse>
void parse(benchmark::State & state, Parse one) {
    auto const & all = numbers();
    for (auto _ : state) {
        uint64 sum = 0;
        for (auto const & text : all)
            sum += one(text);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * all.size()));
}

/// Measures `one`, which makes a text of a number.
template <class Format>
void format(benchmark::State & state, Format one) {
    auto const & all = spread_values();
    bench::meter const meter;
    for (auto _ : state)
        for (int64 const value : all)
            benchmark::DoNotOptimize(one(static_cast<uint64>(value)));
    meter.done(state, all.size());
}

} // namespace bench
