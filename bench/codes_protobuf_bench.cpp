#include "bench/codes_data.h"

#include <benchmark/benchmark.h>

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

namespace {

using bench::spread_values;
using namespace google::protobuf::io;

std::size_t write_varints(std::vector<char> & code) {
    ArrayOutputStream array(code.data(), static_cast<int>(code.size()));
    CodedOutputStream out(&array);
    for (int64 const value : spread_values())
        out.WriteVarint64(static_cast<uint64>(value));
    return static_cast<std::size_t>(out.ByteCount());
}

void wz_write_protobuf_varint(benchmark::State & state) {
    std::vector<char> code(10'000'000);
    for (auto _ : state) {
        write_varints(code);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * spread_values().size()));
}
BENCHMARK(wz_write_protobuf_varint)->Name("wz writes, 1,000,000 values/protobuf, varint");

void wz_read_protobuf_varint(benchmark::State & state) {
    std::vector<char> code(10'000'000);
    code.resize(write_varints(code));
    for (auto _ : state) {
        ArrayInputStream array(code.data(), static_cast<int>(code.size()));
        CodedInputStream in(&array);
        uint64 sum = 0;
        for (std::size_t i = 0; i < spread_values().size(); ++i) {
            uint64_t value = 0;
            in.ReadVarint64(&value);
            sum ^= value;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * spread_values().size()));
}
BENCHMARK(wz_read_protobuf_varint)->Name("wz reads, 1,000,000 values/protobuf, varint");

} // namespace
