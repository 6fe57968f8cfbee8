// Lines of about 60 bytes, and copies, in memory.

#include "bench/lines_data.h"
#include "bench/rows.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/copier.h"
#include "socle/stream/line_input.h"
#include "socle/stream/vector_input.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

namespace {

uint32 const block = 64 << 10;
uint32 const size = bench::sized(16u << 20) / block * block;

std::string const & text() {
    static std::string const made = bench::lines_of(size);
    return made;
}

byte_vector const & bytes() {
    static byte_vector const made(text().begin(), text().end());
    return made;
}

std::string & target() {
    static std::string data(size, '\0');
    return data;
}

void done(benchmark::State & state) { state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * size); }

void scan(benchmark::State & state) {
    for (auto _ : state) {
        char const * at = text().data();
        char const * const end = at + size;
        std::size_t lines = 0;
        for (; (at = static_cast<char const *>(std::memchr(at, '\n', std::size_t(end - at)))) != nullptr; ++at)
            ++lines;
        benchmark::DoNotOptimize(lines);
    }
    done(state);
}

void line_into_buffer(benchmark::State & state) {
    for (auto _ : state) {
        stream::vector_input memory(bytes());
        stream::buffered_input buffered(memory, block);
        stream::line_input in(buffered);
        char line[256];
        uint64 total = 0;
        for (uint32 length; (length = in.read_line(line, sizeof line)) != 0xFFFFFFFF;)
            total += length;
        benchmark::DoNotOptimize(total);
    }
    done(state);
}

void line_into_string(benchmark::State & state) {
    bench::meter const meter;
    for (auto _ : state) {
        stream::vector_input memory(bytes());
        stream::buffered_input buffered(memory, block);
        stream::line_input in(buffered);
        uint64 total = 0;
        for (narrow_string line; !(line = in.read_line()).empty();)
            total += line.size();
        benchmark::DoNotOptimize(total);
    }
    meter.done(state, size);
}

void line_into_string_again(benchmark::State & state) {
    for (auto _ : state) {
        stream::vector_input memory(bytes());
        stream::buffered_input buffered(memory, block);
        stream::line_input in(buffered);
        uint64 total = 0;
        for (narrow_string line; in.read_line(line) != 0xFFFFFFFF;)
            total += line.size();
        benchmark::DoNotOptimize(total);
    }
    done(state);
}

void std_getline(benchmark::State & state) {
    std::istringstream in(text());
    for (auto _ : state) {
        in.clear();
        in.seekg(0);
        std::string line;
        uint64 total = 0;
        while (std::getline(in, line))
            total += line.size();
        benchmark::DoNotOptimize(total);
    }
    done(state);
}

void posix_getline(benchmark::State & state) {
    char * line = nullptr;
    std::size_t capacity = 0;
    for (auto _ : state) {
        std::FILE * in = fmemopen(const_cast<char *>(text().data()), size, "r");
        std::setvbuf(in, nullptr, _IOFBF, block);
        uint64 total = 0;
        for (ssize_t length; (length = getline(&line, &capacity, in)) != -1;)
            total += static_cast<uint64>(length);
        benchmark::DoNotOptimize(total);
        std::fclose(in);
    }
    std::free(line);
    done(state);
}

BENCHMARK(scan)->Name("lines, 16 MiB/limit: memchr alone");
BENCHMARK(line_into_buffer)->Name("lines, 16 MiB/socle, into a buffer");
BENCHMARK(line_into_string)->Name("lines, 16 MiB/socle, into a string");
BENCHMARK(line_into_string_again)->Name("lines, 16 MiB/socle, into a string, again");
BENCHMARK(std_getline)->Name("lines, 16 MiB/std::getline");
BENCHMARK(posix_getline)->Name("lines, 16 MiB/getline(3)");

/// Through a block, as a copy between streams that do not hold their bytes has to go.
void copy_twice(benchmark::State & state) {
    std::string through(block, '\0');
    for (auto _ : state) {
        for (std::size_t at = 0; at < size; at += block) {
            std::memcpy(through.data(), text().data() + at, block);
            benchmark::ClobberMemory();
            std::memcpy(target().data() + at, through.data(), block);
            benchmark::ClobberMemory();
        }
    }
    done(state);
}

void copy_once(benchmark::State & state) {
    for (auto _ : state) {
        std::memcpy(target().data(), text().data(), size);
        benchmark::ClobberMemory();
    }
    done(state);
}

void copier(benchmark::State & state) {
    stream::copier copier(block);
    for (auto _ : state) {
        stream::array_input from(text().data(), size);
        stream::array_output to(target().data(), size);
        benchmark::DoNotOptimize(copier.process(from, to));
    }
    done(state);
}

/// A caller's sink, to which nothing goes but through the copier's own block.
struct callers_output : stream::array_output {
    using array_output::array_output;
};

void copier_to_caller(benchmark::State & state) {
    stream::copier copier(block);
    for (auto _ : state) {
        stream::array_input from(text().data(), size);
        callers_output to(target().data(), size);
        benchmark::DoNotOptimize(copier.process(from, to));
    }
    done(state);
}

void rdbuf(benchmark::State & state) {
    std::istringstream in(text());
    std::ostringstream out;
    out << in.rdbuf();
    for (auto _ : state) {
        in.clear();
        in.seekg(0);
        out.seekp(0);
        out << in.rdbuf();
    }
    done(state);
}

BENCHMARK(copy_once)->Name("copies, 16 MiB/limit: memcpy");
BENCHMARK(copy_twice)->Name("copies, 16 MiB/memcpy twice in blocks");
BENCHMARK(copier)->Name("copies, 16 MiB/socle, copier");
BENCHMARK(copier_to_caller)->Name("copies, 16 MiB/socle, copier to a caller's class");
BENCHMARK(rdbuf)->Name("copies, 16 MiB/ostream << rdbuf");

} // namespace
