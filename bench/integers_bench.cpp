// Integers through the streams, in memory.

#include "bench/integers.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/integers.h"

#include <cstring>
#include <vector>

namespace {

using bench::integers_done;
using bench::integers_size;

uint32 const block = 64 << 10;

char const * source() {
    static std::string const bytes(integers_size, 'x');
    return bytes.data();
}

char * target() {
    static std::string bytes(integers_size, '\0');
    return bytes.data();
}

template <class Value>
Value swapped(Value value) {
    if constexpr (sizeof(Value) == 2)
        return __builtin_bswap16(value);
    else if constexpr (sizeof(Value) == 4)
        return __builtin_bswap32(value);
    else
        return __builtin_bswap64(value);
}

template <class Value>
void read_all(stream::input & from) {
    stream::big_endian_input in(from);
    Value sum = 0;
    for (uint32 i = 0; i < integers_size / sizeof(Value); ++i)
        if constexpr (sizeof(Value) == 2)
            sum = static_cast<Value>(sum + in.read16());
        else if constexpr (sizeof(Value) == 4)
            sum += in.read32();
        else
            sum += in.read64();
    benchmark::DoNotOptimize(sum);
}

template <class Value>
void read_memory(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_input memory(source(), integers_size);
        read_all<Value>(memory);
    }
    integers_done<Value>(state);
}

template <class Value>
void read_buffer(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_input memory(source(), integers_size);
        stream::buffered_input buffered(memory, block);
        read_all<Value>(buffered);
    }
    integers_done<Value>(state);
}

/// `Pointer` is volatile where the place is to be in memory, as it is where another object may look at it.
template <class Value, class Pointer>
void load(benchmark::State & state) {
    for (auto _ : state) {
        Pointer at = source();
        Value sum = 0;
        for (uint32 i = 0; i < integers_size / sizeof(Value); ++i) {
            char const * const here = at;
            Value value;
            std::memcpy(&value, here, sizeof value);
            at = here + sizeof value;
            sum = static_cast<Value>(sum + swapped(value));
            benchmark::DoNotOptimize(sum);
        }
    }
    integers_done<Value>(state);
}

template <class Value>
void write_all(stream::output & to) {
    stream::big_endian_output out(to);
    for (uint32 i = 0; i < integers_size / sizeof(Value); ++i)
        if constexpr (sizeof(Value) == 2)
            out.write16(static_cast<Value>(i));
        else if constexpr (sizeof(Value) == 4)
            out.write32(i);
        else
            out.write64(i);
}

template <class Value>
void write_memory(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_output memory(target(), integers_size);
        write_all<Value>(memory);
    }
    integers_done<Value>(state);
}

template <class Value>
void write_buffer(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_output memory(target(), integers_size);
        stream::buffered_output buffered(memory, block);
        write_all<Value>(buffered);
    }
    integers_done<Value>(state);
}

template <class Value, class Pointer>
void store(benchmark::State & state) {
    for (auto _ : state) {
        Pointer at = target();
        for (uint32 i = 0; i < integers_size / sizeof(Value); ++i) {
            char * const here = at;
            Value const value = swapped(static_cast<Value>(i));
            std::memcpy(here, &value, sizeof value);
            at = here + sizeof value;
            benchmark::ClobberMemory();
        }
    }
    integers_done<Value>(state);
}

// Tables of 64 KiB, as a reader of files takes them.

template <class Value>
std::vector<Value> & table() {
    static std::vector<Value> values(block / sizeof(Value));
    return values;
}

template <class Value>
void read_run(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_input memory(source(), integers_size);
        stream::big_endian_input in(memory);
        for (uint32 at = 0; at < integers_size; at += block) {
            stream::read_integers(in, table<Value>());
            benchmark::ClobberMemory();
        }
    }
    integers_done<Value>(state);
}

template <class Value>
void write_run(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_output memory(target(), integers_size);
        stream::big_endian_output out(memory);
        for (uint32 at = 0; at < integers_size; at += block) {
            stream::write_integers(out, std::span<Value const>(table<Value>()));
            benchmark::ClobberMemory();
        }
    }
    integers_done<Value>(state);
}

/// Swaps in place, in a loop that the compiler makes vector instructions of.
template <class Value>
[[gnu::optimize("O3")]] void swap_table() {
    for (auto & value : table<Value>())
        value = swapped(value);
}

template <class Value>
void read_limit(benchmark::State & state) {
    for (auto _ : state)
        for (uint32 at = 0; at < integers_size; at += block) {
            std::memcpy(table<Value>().data(), source() + at, block);
            swap_table<Value>();
            benchmark::ClobberMemory();
        }
    integers_done<Value>(state);
}

template <class Value>
void write_limit(benchmark::State & state) {
    for (auto _ : state)
        for (uint32 at = 0; at < integers_size; at += block) {
            swap_table<Value>();
            std::memcpy(target() + at, table<Value>().data(), block);
            benchmark::ClobberMemory();
        }
    integers_done<Value>(state);
}

template <class Value>
void add_rows() {
    using bench::add;
    std::string const reads = bench::integers_row<Value>("reads"), writes = bench::integers_row<Value>("writes");
    add(reads, "limit: load and swap", load<Value, char const *>);
    add(reads, "limit with its place in memory", load<Value, char const * volatile>);
    add(reads, "socle, memory beneath", read_memory<Value>);
    add(reads, "socle, a buffer beneath", read_buffer<Value>);
    add(writes, "limit: swap and store", store<Value, char *>);
    add(writes, "limit with its place in memory", store<Value, char * volatile>);
    add(writes, "socle, memory beneath", write_memory<Value>);
    add(writes, "socle, a buffer beneath", write_buffer<Value>);
    add(reads + ", in runs", "limit: memcpy and swap", read_limit<Value>);
    add(reads + ", in runs", "socle, memory beneath", read_run<Value>);
    add(writes + ", in runs", "limit: swap and memcpy", write_limit<Value>);
    add(writes + ", in runs", "socle, memory beneath", write_run<Value>);
}

[[maybe_unused]] bool const registered = [] {
    add_rows<uint16>();
    add_rows<uint32>();
    add_rows<uint64>();
    return true;
}();

} // namespace
