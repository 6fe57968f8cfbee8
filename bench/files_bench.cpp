// Single bytes and lines of a file of 64 MiB, and copies of one of 256 MiB, all in the system's cache.

#include "bench/files_data.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/copier.h"
#include "socle/stream/line_input.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

namespace {

using bench::copy_size;
using bench::host_file;
using bench::large_file;
using bench::target_file;
using bench::text_file;

uint32 const block = bench::file_block;
uint32 const size = bench::file_size;

using c_file = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

c_file c_open(std::string const & path, char const * mode) {
    c_file file(std::fopen(path.c_str(), mode), std::fclose);
    std::setvbuf(file.get(), nullptr, _IOFBF, block);
    return file;
}

/// Calls `act` with the text file as a buffered stream.
template <class Act>
void with_input(Act act) {
    io::file file = bench::file_at(text_file());
    file.data_fork().open();
    {
        io::fork_input fork(file.data_fork());
        stream::buffered_input in(fork, block);
        act(in);
    }
    file.data_fork().close(true);
}

template <class Act>
void with_output(Act act) {
    io::file file = bench::file_at(target_file());
    file.data_fork().create(true);
    {
        io::fork_output fork(file.data_fork());
        stream::buffered_output out(fork, block);
        act(out);
        out.flush();
    }
    file.data_fork().close(true);
}

void read_limit() {
    host_file const in(text_file(), O_RDONLY);
    std::vector<char> buffer(block);
    unsigned sum = 0;
    for (ssize_t got; (got = read(in, buffer.data(), block)) > 0;) {
        for (ssize_t i = 0; i < got; ++i) {
            sum += static_cast<unsigned char>(buffer[static_cast<std::size_t>(i)]);
            benchmark::DoNotOptimize(sum);
        }
    }
}

template <class Stream>
[[gnu::noinline]] void sum_bytes(Stream & in) {
    unsigned sum = 0;
    for (int byte = in.read(); byte != -1; byte = in.read())
        sum += static_cast<unsigned>(byte);
    benchmark::DoNotOptimize(sum);
}

void read_reference() { with_input(sum_bytes<stream::input>); }
void read_class() { with_input(sum_bytes<stream::buffered_input>); }

void read_getc() {
    auto const in = c_open(text_file(), "r");
    unsigned sum = 0;
    for (int byte = getc_unlocked(in.get()); byte != -1; byte = getc_unlocked(in.get()))
        sum += static_cast<unsigned>(byte);
    benchmark::DoNotOptimize(sum);
}

void read_ifstream() {
    std::ifstream in(text_file(), std::ios::binary);
    unsigned sum = 0;
    for (int byte = in.get(); byte != -1; byte = in.get())
        sum += static_cast<unsigned>(byte);
    benchmark::DoNotOptimize(sum);
}

void write_limit() {
    host_file const out(target_file(), O_WRONLY | O_CREAT | O_TRUNC);
    std::vector<char> buffer(block);
    for (uint32 left = size; left > 0;) {
        uint32 const count = std::min(block, left);
        char * at = buffer.data();
        for (uint32 i = 0; i < count; ++i) {
            *at++ = static_cast<char>(i);
            benchmark::DoNotOptimize(at);
        }
        benchmark::DoNotOptimize(write(out, buffer.data(), count));
        left -= count;
    }
}

template <class Stream>
[[gnu::noinline]] void write_bytes(Stream & out) {
    for (uint32 i = 0; i < size; ++i)
        out.write(static_cast<char>(i));
}

void write_reference() { with_output(write_bytes<stream::output>); }
void write_class() { with_output(write_bytes<stream::buffered_output>); }

void write_putc() {
    auto const out = c_open(target_file(), "w");
    for (uint32 i = 0; i < size; ++i)
        putc_unlocked(static_cast<char>(i), out.get());
}

void write_ofstream() {
    std::ofstream out(target_file(), std::ios::binary);
    for (uint32 i = 0; i < size; ++i)
        out.put(static_cast<char>(i));
}

void line_limit() {
    host_file const in(text_file(), O_RDONLY);
    std::vector<char> buffer(block);
    std::size_t lines = 0;
    for (ssize_t got; (got = read(in, buffer.data(), block)) > 0;) {
        char const * at = buffer.data();
        char const * const end = at + got;
        for (; (at = static_cast<char const *>(std::memchr(at, '\n', std::size_t(end - at)))) != nullptr; ++at)
            ++lines;
    }
    benchmark::DoNotOptimize(lines);
}

void line_buffer() {
    with_input([](stream::input & in) {
        stream::line_input lines(in);
        char line[256];
        uint64 total = 0;
        for (uint32 length; (length = lines.read_line(line, sizeof line)) != 0xFFFFFFFF;)
            total += length;
        benchmark::DoNotOptimize(total);
    });
}

void line_string() {
    with_input([](stream::input & in) {
        stream::line_input lines(in);
        uint64 total = 0;
        for (narrow_string line; !(line = lines.read_line()).empty();)
            total += line.size();
        benchmark::DoNotOptimize(total);
    });
}

void line_string_again() {
    with_input([](stream::input & in) {
        stream::line_input lines(in);
        uint64 total = 0;
        for (narrow_string line; lines.read_line(line) != 0xFFFFFFFF;)
            total += line.size();
        benchmark::DoNotOptimize(total);
    });
}

void line_std() {
    std::ifstream in(text_file(), std::ios::binary);
    uint64 total = 0;
    for (std::string line; std::getline(in, line);)
        total += line.size();
    benchmark::DoNotOptimize(total);
}

void line_posix() {
    auto const in = c_open(text_file(), "r");
    char * line = nullptr;
    std::size_t capacity = 0;
    uint64 total = 0;
    for (ssize_t length; (length = getline(&line, &capacity, in.get())) != -1;)
        total += static_cast<uint64>(length);
    benchmark::DoNotOptimize(total);
    std::free(line);
}

void copy_limit() {
    host_file const in(large_file(), O_RDONLY);
    host_file const out(target_file(), O_WRONLY | O_CREAT | O_TRUNC);
    std::vector<char> buffer(block);
    for (ssize_t got; (got = read(in, buffer.data(), block)) > 0;)
        benchmark::DoNotOptimize(write(out, buffer.data(), static_cast<std::size_t>(got)));
}

void copy_copier() {
    io::file from = bench::file_at(large_file()), to = bench::file_at(target_file());
    from.data_fork().open();
    to.data_fork().create(true);
    io::fork_input in(from.data_fork());
    io::fork_output out(to.data_fork());
    stream::copier copier(block);
    benchmark::DoNotOptimize(copier.process(in, out));
    from.data_fork().close(true);
    to.data_fork().close(true);
}

void copy_filesystem() {
    std::filesystem::copy_file(large_file(), target_file(), std::filesystem::copy_options::overwrite_existing);
}

void copy_rdbuf() {
    std::ifstream in(large_file(), std::ios::binary);
    std::ofstream out(target_file(), std::ios::binary);
    out << in.rdbuf();
}

[[maybe_unused]] bool const registered = [] {
    auto const add = bench::add_file_row;
    char const * const reads = bench::file_reads;
    add(reads, "limit: read(2) and a loop", read_limit, size);
    add(reads, "socle, stream::input &", read_reference, size);
    add(reads, "socle, buffered_input &", read_class, size);
    add(reads, "getc_unlocked", read_getc, size);
    add(reads, "ifstream::get", read_ifstream, size);
    char const * const writes = bench::file_writes;
    add(writes, "limit: a loop and write(2)", write_limit, size);
    add(writes, "socle, stream::output &", write_reference, size);
    add(writes, "socle, buffered_output &", write_class, size);
    add(writes, "putc_unlocked", write_putc, size);
    add(writes, "ofstream::put", write_ofstream, size);
    char const * const lines = bench::file_lines;
    add(lines, "limit: read(2) and memchr", line_limit, size);
    add(lines, "socle, any line end, into a buffer", line_buffer, size);
    add(lines, "socle, any line end, into a string", line_string, size);
    add(lines, "socle, any line end, into a string, again", line_string_again, size);
    add(lines, "std::getline", line_std, size);
    add(lines, "getline(3)", line_posix, size);
    char const * const copies = bench::file_copies;
    add(copies, "limit: read(2) and write(2)", copy_limit, copy_size);
    add(copies, "socle, copier", copy_copier, copy_size);
    add(copies, "std::filesystem::copy_file", copy_filesystem, copy_size);
    add(copies, "ofstream << rdbuf", copy_rdbuf, copy_size);
    return true;
}();

} // namespace
