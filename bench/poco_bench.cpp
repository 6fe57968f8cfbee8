#include "bench/integers.h"
#include "bench/pieces_data.h"

#include <Poco/BinaryReader.h>
#include <Poco/BinaryWriter.h>
#include <Poco/MemoryStream.h>
#include <Poco/StringTokenizer.h>

namespace {

std::string & memory() {
    static std::string bytes(bench::integers_size, 'x');
    return bytes;
}

template <class Value>
void read(benchmark::State & state) {
    for (auto _ : state) {
        Poco::MemoryInputStream stream(memory().data(), static_cast<std::streamsize>(memory().size()));
        Poco::BinaryReader in(stream, Poco::BinaryReader::BIG_ENDIAN_BYTE_ORDER);
        bench::read_integers<Value>(in);
    }
    bench::integers_done<Value>(state);
}

template <class Value>
void write(benchmark::State & state) {
    for (auto _ : state) {
        Poco::MemoryOutputStream stream(memory().data(), static_cast<std::streamsize>(memory().size()));
        Poco::BinaryWriter out(stream, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER);
        bench::write_integers<Value>(out);
    }
    bench::integers_done<Value>(state);
}

template <class Value>
void add_integers() {
    bench::add(bench::integers_row<Value>("reads"), "Poco", read<Value>);
    bench::add(bench::integers_row<Value>("writes"), "Poco", write<Value>);
}

std::streamsize write_varints(std::string & code) {
    Poco::MemoryOutputStream stream(code.data(), static_cast<std::streamsize>(code.size()));
    Poco::BinaryWriter out(stream);
    for (int64 const value : bench::spread_values())
        out.write7BitEncoded(static_cast<Poco::UInt64>(value));
    return stream.charsWritten();
}

void varints_done(benchmark::State & state) {
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * bench::spread_values().size()));
}

void encode_varints(benchmark::State & state) {
    std::string code(10'000'000, '\0');
    for (auto _ : state) {
        write_varints(code);
        benchmark::ClobberMemory();
    }
    varints_done(state);
}

void decode_varints(benchmark::State & state) {
    std::string code(10'000'000, '\0');
    std::streamsize const size = write_varints(code);
    for (auto _ : state) {
        Poco::MemoryInputStream stream(code.data(), size);
        Poco::BinaryReader in(stream);
        Poco::UInt64 sum = 0;
        for (std::size_t i = 0; i < bench::spread_values().size(); ++i) {
            Poco::UInt64 value = 0;
            in.read7BitEncoded(value);
            sum ^= value;
        }
        benchmark::DoNotOptimize(sum);
    }
    varints_done(state);
}

[[maybe_unused]] bool const registered = [] {
    add_integers<Poco::UInt16>();
    add_integers<Poco::UInt32>();
    add_integers<Poco::UInt64>();
    bench::add("wz writes, 1,000,000 values", "Poco, varint", encode_varints);
    bench::add("wz reads, 1,000,000 values", "Poco, varint", decode_varints);
    bench::add(bench::split_row, "Poco::StringTokenizer", [](benchmark::State & state) {
        bench::split(state, [](std::string const & text) { return Poco::StringTokenizer(text, ",").count(); });
    });
    return true;
}();

} // namespace
