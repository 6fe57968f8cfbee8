#include "bench/codec_data.h"

#include <QString>
#include <benchmark/benchmark.h>

namespace {

using text_function = wide_string const & (*)();

template <text_function text>
QString units() {
    return QString::fromUtf16(text().data(), static_cast<int>(text().size()));
}

template <text_function text>
void encode(benchmark::State & state) {
    QString const from = units<text>();
    for (auto _ : state)
        benchmark::DoNotOptimize(from.toUtf8());
    codec_data::done(state);
}

template <text_function text>
void decode(benchmark::State & state) {
    QByteArray const bytes = units<text>().toUtf8();
    for (auto _ : state)
        benchmark::DoNotOptimize(QString::fromUtf8(bytes));
    codec_data::done(state);
}

BENCHMARK(encode<codec_data::ascii>)->Name("UTF-8 encode, ASCII/Qt");
BENCHMARK(encode<codec_data::european>)->Name("UTF-8 encode, European/Qt");
BENCHMARK(encode<codec_data::cjk>)->Name("UTF-8 encode, CJK/Qt");
BENCHMARK(decode<codec_data::ascii>)->Name("UTF-8 decode, ASCII/Qt");
BENCHMARK(decode<codec_data::european>)->Name("UTF-8 decode, European/Qt");
BENCHMARK(decode<codec_data::cjk>)->Name("UTF-8 decode, CJK/Qt");

} // namespace
