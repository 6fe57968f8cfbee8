#include "bench/rows.h"
#include "socle/algorithm/crc.h"

#include <benchmark/benchmark.h>

namespace {

template <class Digest>
void measure(benchmark::State & state, std::size_t size, Digest digest) {
    byte_vector const data(size, 0x5A);
    for (auto _ : state)
        benchmark::DoNotOptimize(digest(data));
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * size));
}

/// A byte at a time through one table.
uint32 raw_loop(byte_vector const & data) {
    uint32 crc = 0;
    for (unsigned char const byte : data)
        crc = (crc << 8 & 0xFF00) ^ algorithm::crc::crc_table[crc >> 8 ^ byte];
    return crc;
}

uint32 socle(byte_vector const & data) {
    algorithm::crc::crc<16, 0x1021, 0, 1, 0, 0> crc;
    crc.update(data.data(), static_cast<uint32>(data.size()));
    crc.finish();
    return crc.state();
}

BENCHMARK_CAPTURE(measure, table_loop, bench::sized(64u << 20), raw_loop)->Name("CRC-16, 64 MiB/limit: one table");
BENCHMARK_CAPTURE(measure, socle, bench::sized(64u << 20), socle)->Name("CRC-16, 64 MiB/socle");
BENCHMARK_CAPTURE(measure, table_loop, 124, raw_loop)->Name("CRC-16, 124 bytes/limit: one table");
BENCHMARK_CAPTURE(measure, socle, 124, socle)->Name("CRC-16, 124 bytes/socle");

} // namespace
