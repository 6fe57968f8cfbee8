#include "bench/codes_data.h"
#include "socle/nio/integer_codes.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"

#include <benchmark/benchmark.h>

#include <bit>

namespace {

using bench::spread_values;

/// Room for every code of `spread_values`.
constexpr std::size_t room = 32'000'000;

template <class Encode>
std::vector<char> encoded(Encode encode) {
    std::vector<char> code(room);
    code.resize(encode(code));
    return code;
}

template <class Encode>
void measure_write(benchmark::State & state, Encode encode) {
    std::vector<char> code(room);
    uint64 size = 0;
    for (auto _ : state) {
        size = encode(code);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * spread_values().size()));
    state.SetBytesProcessed(static_cast<int64>(state.iterations() * size));
}

/// `decode` gives the `sum_of` the values.
template <class Decode>
void measure_read(benchmark::State & state, std::vector<char> const & code, Decode decode) {
    for (auto _ : state)
        benchmark::DoNotOptimize(decode(code));
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * spread_values().size()));
    state.SetBytesProcessed(static_cast<int64>(state.iterations() * code.size()));
}

template <class Next>
int64 sum_of(Next next) {
    int64 sum = 0;
    for (std::size_t i = 0; i < spread_values().size(); ++i)
        sum ^= next();
    return sum;
}

stream::array_input input_over(std::vector<char> const & code) {
    return {code.data(), static_cast<uint32>(code.size())};
}

uint64 write_wz(std::vector<char> & code) {
    stream::array_output out(code.data(), room);
    for (int64 const value : spread_values())
        nio::write_wz(value, out);
    return out.tell();
}

uint64 raw_write_wz(std::vector<char> & code) {
    auto * to = reinterpret_cast<unsigned char *>(code.data());
    for (int64 const signed_value : spread_values()) {
        auto const value = static_cast<uint64>(signed_value);
        int shift = 0;
        while (value >> shift > 0x7F)
            shift += 7;
        for (; shift > 0; shift -= 7)
            *to++ = static_cast<unsigned char>(value >> shift | 0x80);
        *to++ = value & 0x7F;
    }
    return static_cast<uint64>(to - reinterpret_cast<unsigned char *>(code.data()));
}

uint64 write_p2(std::vector<char> & code) {
    stream::array_output out(code.data(), room);
    nio::bit_output<1, 0> bits(out);
    for (int64 const value : spread_values())
        nio::write_p2(value, bits);
    bits.finish();
    return out.tell();
}

/// Single bits into bytes in memory.
uint64 raw_write_p2(std::vector<char> & code) {
    char * to = code.data();
    unsigned held = 0;
    int count = 0;
    auto const put = [&](unsigned bit) {
        held |= bit << count;
        if (++count == 8) {
            *to++ = static_cast<char>(held);
            held = 0;
            count = 0;
        }
    };
    for (int64 const value : spread_values()) {
        uint64 x = static_cast<uint64>(value) + 1;
        for (int weight = std::popcount(x); weight > 1; --weight)
            put(1);
        put(0);
        for (; x != 0; x >>= 1)
            put(x & 1);
    }
    *to++ = static_cast<char>(held);
    return static_cast<uint64>(to - code.data());
}

void wz_write_raw_loop(benchmark::State & state) { measure_write(state, raw_write_wz); }
BENCHMARK(wz_write_raw_loop)->Name("wz writes, 1,000,000 values/limit: plain loop");

void wz_write_socle(benchmark::State & state) { measure_write(state, write_wz); }
BENCHMARK(wz_write_socle)->Name("wz writes, 1,000,000 values/socle");

void wz_read_raw_loop(benchmark::State & state) {
    measure_read(state, encoded(write_wz), [](std::vector<char> const & code) {
        return sum_of([from = code.data()]() mutable {
            uint64 value = *from & 0x7F;
            while ((*from++ & 0x80) != 0)
                value = value << 7 | (*from & 0x7F);
            return static_cast<int64>(value);
        });
    });
}
BENCHMARK(wz_read_raw_loop)->Name("wz reads, 1,000,000 values/limit: plain loop");

void wz_read_socle(benchmark::State & state) {
    measure_read(state, encoded(write_wz), [](std::vector<char> const & code) {
        stream::array_input in = input_over(code);
        return sum_of([&] { return nio::read_wz(in); });
    });
}
BENCHMARK(wz_read_socle)->Name("wz reads, 1,000,000 values/socle");

void p2_write_raw_loop(benchmark::State & state) { measure_write(state, raw_write_p2); }
BENCHMARK(p2_write_raw_loop)->Name("p2 writes, 1,000,000 values/limit: plain loop");

void p2_write_socle(benchmark::State & state) { measure_write(state, write_p2); }
BENCHMARK(p2_write_socle)->Name("p2 writes, 1,000,000 values/socle");

void p2_read_raw_loop(benchmark::State & state) {
    measure_read(state, encoded(write_p2), [](std::vector<char> const & code) {
        return sum_of([from = code.data(), place = 0]() mutable {
            auto const get = [&] {
                unsigned const bit = static_cast<unsigned char>(*from) >> place & 1;
                place = (place + 1) % 8;
                from += place == 0;
                return bit;
            };
            int weight = 1;
            while (get() == 1)
                ++weight;
            uint64 x = 0;
            for (int i = 0; weight > 0; ++i) {
                unsigned const bit = get();
                x |= uint64{bit} << i;
                weight -= static_cast<int>(bit);
            }
            return static_cast<int64>(x - 1);
        });
    });
}
BENCHMARK(p2_read_raw_loop)->Name("p2 reads, 1,000,000 values/limit: plain loop");

void p2_read_socle(benchmark::State & state) {
    measure_read(state, encoded(write_p2), [](std::vector<char> const & code) {
        stream::array_input in = input_over(code);
        nio::bit_input<1, 0, 1> bits(in);
        return sum_of([&] { return nio::read_p2(bits); });
    });
}
BENCHMARK(p2_read_socle)->Name("p2 reads, 1,000,000 values/socle");

} // namespace
