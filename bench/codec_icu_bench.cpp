#include "bench/codec_data.h"

#include <benchmark/benchmark.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <string>

namespace {

using text_function = wide_string const & (*)();
using codec_data::done;

template <text_function text>
void encode_utf8(benchmark::State & state) {
    std::string out(text().size() * 3, '\0');
    for (auto _ : state) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &length, text().data(),
                    static_cast<int32_t>(text().size()), &error);
        benchmark::DoNotOptimize(length);
    }
    done(state);
}

template <text_function text>
void decode_utf8(benchmark::State & state) {
    std::string bytes(text().size() * 3, '\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8(bytes.data(), static_cast<int32_t>(bytes.size()), &length, text().data(),
                static_cast<int32_t>(text().size()), &error);
    bytes.resize(static_cast<std::size_t>(length));
    wide_string out(text().size(), u'\0');
    for (auto _ : state) {
        u_strFromUTF8(out.data(), static_cast<int32_t>(out.size()), &length, bytes.data(),
                      static_cast<int32_t>(bytes.size()), &error);
        benchmark::DoNotOptimize(length);
    }
    done(state);
}

template <text_function text>
void encode_page(benchmark::State & state, char const * name) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter * const converter = ucnv_open(name, &error);
    std::string out(text().size() * 2, '\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(ucnv_fromUChars(converter, out.data(), static_cast<int32_t>(out.size()), text().data(),
                                                 static_cast<int32_t>(text().size()), &error));
    ucnv_close(converter);
    done(state);
}

template <text_function text>
void decode_page(benchmark::State & state, char const * name) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter * const converter = ucnv_open(name, &error);
    std::string bytes(text().size() * 2, '\0');
    bytes.resize(static_cast<std::size_t>(ucnv_fromUChars(converter, bytes.data(), static_cast<int32_t>(bytes.size()),
                                                          text().data(), static_cast<int32_t>(text().size()), &error)));
    wide_string out(text().size(), u'\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(ucnv_toUChars(converter, out.data(), static_cast<int32_t>(out.size()), bytes.data(),
                                               static_cast<int32_t>(bytes.size()), &error));
    ucnv_close(converter);
    done(state);
}

BENCHMARK(encode_utf8<codec_data::ascii>)->Name("UTF-8 encode, ASCII/ICU");
BENCHMARK(encode_utf8<codec_data::european>)->Name("UTF-8 encode, European/ICU");
BENCHMARK(encode_utf8<codec_data::cjk>)->Name("UTF-8 encode, CJK/ICU");
BENCHMARK(decode_utf8<codec_data::ascii>)->Name("UTF-8 decode, ASCII/ICU");
BENCHMARK(decode_utf8<codec_data::european>)->Name("UTF-8 decode, European/ICU");
BENCHMARK(decode_utf8<codec_data::cjk>)->Name("UTF-8 decode, CJK/ICU");
[[maybe_unused]] bool const registered = [] {
    benchmark::RegisterBenchmark("page encode, 1252/ICU", encode_page<codec_data::european>, "windows-1252");
    benchmark::RegisterBenchmark("page decode, 1252/ICU", decode_page<codec_data::european>, "windows-1252");
    benchmark::RegisterBenchmark("page encode, 932/ICU", encode_page<codec_data::cjk>, "windows-932");
    benchmark::RegisterBenchmark("page decode, 932/ICU", decode_page<codec_data::cjk>, "windows-932");
    return true;
}();

} // namespace
