// Single bytes through the streams, in memory.

#include "bench/rows.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/vector_input.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <istream>
#include <ostream>
#include <streambuf>

namespace {

uint32 const size = bench::sized(16u << 20);
uint32 const block = 64 << 10;

byte_vector const & source_data() {
    static byte_vector const data = [] {
        byte_vector made(size);
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = static_cast<unsigned char>(i * 2654435761u >> 24);
        return made;
    }();
    return data;
}

std::string & target_data() {
    static std::string data(size, '\0');
    return data;
}

/// A stream buffer over memory as it stands, with no copy of its own.
struct memory_buffer : std::streambuf {
    memory_buffer(char const * from, std::size_t count) {
        auto * first = const_cast<char *>(from);
        setg(first, first, first + count);
        setp(first, first + count);
    }
};

char const * source_chars() { return reinterpret_cast<char const *>(source_data().data()); }

void bytes_done(benchmark::State & state, uint64 items = size) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * items));
}

void read_pointer(benchmark::State & state) {
    for (auto _ : state) {
        unsigned sum = 0;
        for (unsigned char const byte : source_data()) {
            sum += byte;
            benchmark::DoNotOptimize(sum);
        }
    }
    bytes_done(state);
}

[[gnu::noinline]] unsigned sum_of(stream::input & in) {
    unsigned sum = 0;
    for (int byte = in.read(); byte != -1; byte = in.read())
        sum += static_cast<unsigned>(byte);
    return sum;
}

void read_reference(benchmark::State & state) {
    for (auto _ : state) {
        stream::vector_input memory(source_data());
        stream::buffered_input in(memory, block);
        benchmark::DoNotOptimize(sum_of(in));
    }
    bytes_done(state);
}

void read_class(benchmark::State & state) {
    for (auto _ : state) {
        stream::vector_input memory(source_data());
        stream::buffered_input in(memory, block);
        unsigned sum = 0;
        for (int byte = in.read(); byte != -1; byte = in.read())
            sum += static_cast<unsigned>(byte);
        benchmark::DoNotOptimize(sum);
    }
    bytes_done(state);
}

void read_get(benchmark::State & state) {
    for (auto _ : state) {
        memory_buffer buffer(source_chars(), size);
        std::istream in(&buffer);
        unsigned sum = 0;
        for (int byte = in.get(); byte != -1; byte = in.get())
            sum += static_cast<unsigned>(byte);
        benchmark::DoNotOptimize(sum);
    }
    bytes_done(state);
}

void read_sbumpc(benchmark::State & state) {
    for (auto _ : state) {
        memory_buffer buffer(source_chars(), size);
        unsigned sum = 0;
        for (int byte = buffer.sbumpc(); byte != -1; byte = buffer.sbumpc())
            sum += static_cast<unsigned>(byte);
        benchmark::DoNotOptimize(sum);
    }
    bytes_done(state);
}

void read_getc(benchmark::State & state) {
    for (auto _ : state) {
        std::FILE * in = fmemopen(const_cast<char *>(source_chars()), size, "r");
        std::setvbuf(in, nullptr, _IOFBF, block);
        unsigned sum = 0;
        for (int byte = getc_unlocked(in); byte != -1; byte = getc_unlocked(in))
            sum += static_cast<unsigned>(byte);
        benchmark::DoNotOptimize(sum);
        std::fclose(in);
    }
    bytes_done(state);
}

BENCHMARK(read_pointer)->Name("byte reads, 16 MiB/limit: pointer loop");
BENCHMARK(read_reference)->Name("byte reads, 16 MiB/socle, stream::input &");
BENCHMARK(read_class)->Name("byte reads, 16 MiB/socle, the class itself");
BENCHMARK(read_sbumpc)->Name("byte reads, 16 MiB/streambuf::sbumpc");
BENCHMARK(read_getc)->Name("byte reads, 16 MiB/getc_unlocked");
BENCHMARK(read_get)->Name("byte reads, 16 MiB/istream::get");

void write_pointer(benchmark::State & state) {
    for (auto _ : state) {
        char * out = target_data().data();
        for (uint32 i = 0; i < size; ++i) {
            *out++ = static_cast<char>(i);
            benchmark::DoNotOptimize(out);
        }
    }
    bytes_done(state);
}

[[gnu::noinline]] void write_all(stream::output & out) {
    for (uint32 i = 0; i < size; ++i)
        out.write(static_cast<char>(i));
}

void write_reference(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_output memory(target_data().data(), size);
        stream::buffered_output out(memory, block);
        write_all(out);
    }
    bytes_done(state);
}

void write_class(benchmark::State & state) {
    for (auto _ : state) {
        stream::array_output memory(target_data().data(), size);
        stream::buffered_output out(memory, block);
        for (uint32 i = 0; i < size; ++i)
            out.write(static_cast<char>(i));
    }
    bytes_done(state);
}

void write_put(benchmark::State & state) {
    for (auto _ : state) {
        memory_buffer buffer(target_data().data(), size);
        std::ostream out(&buffer);
        for (uint32 i = 0; i < size; ++i)
            out.put(static_cast<char>(i));
    }
    bytes_done(state);
}

void write_putc(benchmark::State & state) {
    for (auto _ : state) {
        std::FILE * out = fmemopen(target_data().data(), size, "w");
        std::setvbuf(out, nullptr, _IOFBF, block);
        for (uint32 i = 0; i < size; ++i)
            putc_unlocked(static_cast<char>(i), out);
        std::fclose(out);
    }
    bytes_done(state);
}

BENCHMARK(write_pointer)->Name("byte writes, 16 MiB/limit: pointer loop");
BENCHMARK(write_reference)->Name("byte writes, 16 MiB/socle, stream::output &");
BENCHMARK(write_class)->Name("byte writes, 16 MiB/socle, the class itself");
BENCHMARK(write_putc)->Name("byte writes, 16 MiB/putc_unlocked");
BENCHMARK(write_put)->Name("byte writes, 16 MiB/ostream::put");

} // namespace
