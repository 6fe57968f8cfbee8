// Texts cut at commas, numbers as text, and bytes given back.

#include "bench/pieces_data.h"
#include "socle/stream/filter_input.h"
#include "socle/stream/vector_input.h"
#include "socle/un/digits.h"
#include "socle/un/tokenizer.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <streambuf>
#include <vector>

namespace {

using bench::format;
using bench::parse;

std::size_t count_commas(std::string const & text) {
    std::size_t found = 0;
    char const * at = text.data();
    char const * const end = at + text.size();
    for (; (at = static_cast<char const *>(std::memchr(at, ',', std::size_t(end - at)))) != nullptr; ++at)
        ++found;
    return found;
}

uint64 parse_loop(std::string const & text) {
    uint64 value = 0;
    for (char const c : text) {
        if (c < '0' || c > '9')
            break;
        value = value * 10 + static_cast<uint64>(c - '0');
    }
    return value;
}

/// Digits from the last one, into a buffer, and from there into a string.
std::string format_loop(uint64 value) {
    char digits[20];
    char * first = std::end(digits);
    do {
        *--first = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    return std::string(first, std::end(digits));
}

/// A byte read and given back, again and again.
template <class Turn>
void give_back(benchmark::State & state, Turn turn) {
    for (auto _ : state)
        for (int i = 0; i < 1000; ++i)
            benchmark::DoNotOptimize(turn());
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * 1000));
}

void unread(benchmark::State & state) {
    byte_vector const bytes(100, 'x');
    stream::vector_input memory(bytes);
    stream::filter_input filter(memory);
    stream::input & in = filter;
    give_back(state, [&] {
        int const byte = in.read();
        in.unread(static_cast<char>(byte));
        return byte;
    });
}

void unread_sungetc(benchmark::State & state) {
    struct : std::streambuf {
        char bytes[100] = {};
        void open() { setg(bytes, bytes, std::end(bytes)); }
    } buffer;
    buffer.open();
    give_back(state, [&] {
        int const byte = buffer.sbumpc();
        buffer.sungetc();
        return byte;
    });
}

[[maybe_unused]] bool const registered = [] {
    using benchmark::State;
    using bench::add;
    add(bench::split_row, "limit: memchr alone", [](State & state) { bench::split(state, count_commas); });
    add(bench::split_row, "socle, un::tokenizer",
        [](State & state) { bench::split(state, [](std::string const & text) { return un::tokenizer(text, ','); }); });
    using bench::parsing;
    add(parsing, "limit: plain loop", [](State & state) { parse(state, parse_loop); });
    add(parsing, "socle, un::read",
        [](State & state) { parse(state, [](std::string const & text) { return un::read(text, 10); }); });
    add(parsing, "std::from_chars", [](State & state) {
        parse(state, [](std::string const & text) {
            uint64 value = 0;
            std::from_chars(text.data(), text.data() + text.size(), value);
            return value;
        });
    });
    add(parsing, "strtoull", [](State & state) {
        parse(state, [](std::string const & text) { return std::strtoull(text.c_str(), nullptr, 10); });
    });
    using bench::formatting;
    add(formatting, "limit: plain loop into a new string", [](State & state) { format(state, format_loop); });
    add(formatting, "socle, un::write",
        [](State & state) { format(state, [](uint64 value) { return un::write(value, 10, 0); }); });
    add(formatting, "std::to_chars, into a new string", [](State & state) {
        format(state, [](uint64 value) {
            char digits[20];
            return std::string(digits, std::to_chars(digits, std::end(digits), value).ptr);
        });
    });
    add(formatting, "snprintf, into a new string", [](State & state) {
        format(state, [](uint64 value) {
            char digits[21];
            int const length = std::snprintf(digits, sizeof digits, "%llu", static_cast<unsigned long long>(value));
            return std::string(digits, static_cast<std::size_t>(length));
        });
    });
    char const * const unreading = "unread, a source that cannot seek";
    add(unreading, "limit: a pointer moved", [](State & state) {
        char const bytes[100] = {};
        char const * volatile at = bytes;
        give_back(state, [&] {
            char const byte = *at;
            at = at + 1;
            at = at - 1;
            return byte;
        });
    });
    add(unreading, "socle, read and unread", unread);
    add(unreading, "sbumpc and sungetc", unread_sungetc);
    return true;
}();

} // namespace
