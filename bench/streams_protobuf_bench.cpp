#include "bench/rows.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <vector>

namespace {

using namespace google::protobuf::io;

uint32 const size = bench::sized(16u << 20);
int const block = 64 << 10;

std::vector<char> & memory() {
    static std::vector<char> bytes(size, 'x');
    return bytes;
}

template <class Value>
void read_integers(benchmark::State & state) {
    for (auto _ : state) {
        ArrayInputStream array(memory().data(), static_cast<int>(size), block);
        CodedInputStream in(&array);
        Value sum = 0;
        for (uint32 i = 0; i < size / sizeof(Value); ++i) {
            Value value = 0;
            if constexpr (sizeof(Value) == 2)
                in.ReadRaw(&value, 2);
            else if constexpr (sizeof(Value) == 4)
                in.ReadLittleEndian32(&value);
            else
                in.ReadLittleEndian64(&value);
            sum = static_cast<Value>(sum + value);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * (size / sizeof(Value))));
}

template <class Value>
void write_integers(benchmark::State & state) {
    for (auto _ : state) {
        ArrayOutputStream array(memory().data(), static_cast<int>(size), block);
        CodedOutputStream out(&array);
        for (uint32 i = 0; i < size / sizeof(Value); ++i) {
            auto const value = static_cast<Value>(i);
            if constexpr (sizeof(Value) <= 2)
                out.WriteRaw(&value, sizeof(Value));
            else if constexpr (sizeof(Value) == 4)
                out.WriteLittleEndian32(value);
            else
                out.WriteLittleEndian64(value);
        }
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * (size / sizeof(Value))));
}

BENCHMARK(write_integers<unsigned char>)->Name("byte writes, 16 MiB/protobuf, WriteRaw");
BENCHMARK(read_integers<uint16_t>)->Name("big-endian reads, u16/protobuf, ReadRaw");
BENCHMARK(read_integers<uint32_t>)->Name("big-endian reads, u32/protobuf, little-endian");
BENCHMARK(read_integers<uint64_t>)->Name("big-endian reads, u64/protobuf, little-endian");
BENCHMARK(write_integers<uint16_t>)->Name("big-endian writes, u16/protobuf, WriteRaw");
BENCHMARK(write_integers<uint32_t>)->Name("big-endian writes, u32/protobuf, little-endian");
BENCHMARK(write_integers<uint64_t>)->Name("big-endian writes, u64/protobuf, little-endian");

} // namespace
