#pragma once

#include "bench/rows.h"

/// The rows of integers, the high byte first: 16 MiB of them in memory.
namespace bench {

inline uint32 const integers_size = sized(16u << 20);

template <class Value>
std::string integers_row(char const * direction) {
    return std::string("big-endian ") + direction + ", u" + std::to_string(8 * sizeof(Value));
}

template <class Value>
void integers_done(benchmark::State & state) {
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * (integers_size / sizeof(Value))));
}

} // namespace bench
