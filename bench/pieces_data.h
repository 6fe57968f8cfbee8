#pragma once

#include "bench/rows.h"

#include <string>

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

} // namespace bench
