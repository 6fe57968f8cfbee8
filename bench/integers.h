#pragma once

#include "bench/rows.h"

/// The rows of integers, the high byte first: 16 MiB of them in memory, in whole blocks of 64 KiB.
namespace bench {

inline uint32 const integers_size = sized(256) * (64u << 10);

template <class Value>
std::string integers_row(char const * direction) {
    return std::string("big-endian ") + direction + ", u" + std::to_string(8 * sizeof(Value));
}

/// Reads all integers of a row with a peer's operator.
template <class Value, class Reader>
void read_integers(Reader & in) {
    Value sum = 0;
    for (uint32 i = 0; i < integers_size / sizeof(Value); ++i) {
        Value value = 0;
        in >> value;
        sum = static_cast<Value>(sum + value);
    }
    benchmark::DoNotOptimize(sum);
}

template <class Value, class Writer>
void write_integers(Writer & out) {
    for (uint32 i = 0; i < integers_size / sizeof(Value); ++i)
        out << static_cast<Value>(i);
}

template <class Value>
void integers_done(benchmark::State & state) {
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * (integers_size / sizeof(Value))));
}

} // namespace bench
