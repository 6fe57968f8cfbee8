#include "bench/rows.h"

#include <benchmark/benchmark.h>
#include <boost/crc.hpp>

namespace {

void boost_crc_optimal(benchmark::State & state, std::size_t size) {
    byte_vector const data(size, 0x5A);
    for (auto _ : state) {
        // The type that this library calls XMODEM is another code.
        boost::crc_optimal<16, 0x1021, 0, 0, false, false> crc;
        crc.process_bytes(data.data(), data.size());
        benchmark::DoNotOptimize(crc.checksum());
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * size));
}

BENCHMARK_CAPTURE(boost_crc_optimal, large, bench::sized(64u << 20))->Name("CRC-16, 64 MiB/boost::crc_optimal");
BENCHMARK_CAPTURE(boost_crc_optimal, header, 124)->Name("CRC-16, 124 bytes/boost::crc_optimal");

} // namespace
