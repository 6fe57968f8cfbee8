// UTF-8 and code pages on long texts, beside the C library's conversions.

#include "bench/codec_data.h"
#include "socle/nio/encoding.h"
#include "socle/nio/utf8.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <iconv.h>
#include <string>

namespace {

using text_function = wide_string const & (*)();
using codec_data::ascii;
using codec_data::cjk;
using codec_data::done;
using codec_data::european;

template <text_function text>
void copy_units(benchmark::State & state) {
    wide_string target(text().size(), u'\0');
    for (auto _ : state) {
        std::memcpy(target.data(), text().data(), target.size() * sizeof target[0]);
        benchmark::ClobberMemory();
    }
    done(state);
}

template <text_function text>
void utf8_encode(benchmark::State & state) {
    narrow_string out;
    for (auto _ : state) {
        nio::_utf8_encode(text(), out);
        benchmark::ClobberMemory();
    }
    done(state);
}

template <text_function text>
void utf8_decode(benchmark::State & state) {
    narrow_string bytes;
    nio::_utf8_encode(text(), bytes);
    wide_string out;
    for (auto _ : state) {
        nio::_utf8_decode(bytes, out, true);
        benchmark::ClobberMemory();
    }
    done(state);
}

template <text_function text, int page>
void page_encode(benchmark::State & state) {
    bench::meter const meter;
    for (auto _ : state)
        benchmark::DoNotOptimize(nio::encode(text(), page));
    meter.done(state, codec_data::count);
}

template <text_function text, int page>
void page_decode(benchmark::State & state) {
    auto const bytes = nio::encode(text(), page);
    bench::meter const meter;
    for (auto _ : state)
        benchmark::DoNotOptimize(nio::decode(bytes, page));
    meter.done(state, codec_data::count);
}

/// All of `from`, in one call.
template <class From, class To>
std::size_t convert(iconv_t handle, From const & from, To & to) {
    auto * in = reinterpret_cast<char *>(const_cast<typename From::value_type *>(from.data()));
    auto * out = reinterpret_cast<char *>(to.data());
    std::size_t in_left = from.size() * sizeof from[0], out_left = to.size() * sizeof to[0];
    std::size_t const before = out_left;
    iconv(handle, &in, &in_left, &out, &out_left);
    return (before - out_left) / sizeof to[0];
}

template <text_function text>
void iconv_encode(benchmark::State & state, char const * name) {
    iconv_t const handle = iconv_open(name, "UTF-16LE");
    std::string out(text().size() * 3, '\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(convert(handle, text(), out));
    iconv_close(handle);
    done(state);
}

template <text_function text>
void iconv_decode(benchmark::State & state, char const * name) {
    iconv_t const encoder = iconv_open(name, "UTF-16LE");
    std::string bytes(text().size() * 3, '\0');
    bytes.resize(convert(encoder, text(), bytes));
    iconv_close(encoder);
    iconv_t const handle = iconv_open("UTF-16LE", name);
    wide_string out(text().size(), u'\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(convert(handle, bytes, out));
    iconv_close(handle);
    done(state);
}

/// One row each way for a text and a form of it.
template <text_function text>
void add_utf8(std::string const & name) {
    auto const add = [&](std::string const & row, std::string const & who, auto function, auto... arguments) {
        benchmark::RegisterBenchmark((row + ", " + name + '/' + who).c_str(), function, arguments...);
    };
    add("UTF-8 encode", "limit: copy of the units", copy_units<text>);
    add("UTF-8 encode", "socle", utf8_encode<text>);
    add("UTF-8 encode", "iconv", iconv_encode<text>, "UTF-8");
    add("UTF-8 decode", "limit: copy of the units", copy_units<text>);
    add("UTF-8 decode", "socle", utf8_decode<text>);
    add("UTF-8 decode", "iconv", iconv_decode<text>, "UTF-8");
}

template <text_function text, int page>
void add_page(std::string const & name, char const * host_name) {
    auto const add = [&](std::string const & row, std::string const & who, auto function, auto... arguments) {
        benchmark::RegisterBenchmark((row + ", " + name + '/' + who).c_str(), function, arguments...);
    };
    add("page encode", "limit: copy of the units", copy_units<text>);
    add("page encode", "socle", page_encode<text, page>);
    add("page encode", "iconv", iconv_encode<text>, host_name);
    add("page decode", "limit: copy of the units", copy_units<text>);
    add("page decode", "socle", page_decode<text, page>);
    add("page decode", "iconv", iconv_decode<text>, host_name);
}

[[maybe_unused]] bool const registered = [] {
    add_utf8<ascii>("ASCII");
    add_utf8<european>("European");
    add_utf8<cjk>("CJK");
    add_page<european, 1252>("1252", "CP1252");
    add_page<cjk, 932>("932", "CP932");
    return true;
}();

} // namespace
