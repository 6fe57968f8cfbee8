#include "any/integers.h"
#include "nio/integer_codes.h"
#include "stream/array_input.h"
#include "stream/array_output.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace {

using bit_input = nio::bit_input<1, 0, 1>;
using bit_output = nio::bit_output<1, 0>;
constexpr int64 largest = std::numeric_limits<int64>::max();

/// A caller's source, which counts how often it is asked.
struct source : nio::input {
    explicit source(byte_vector data) : bytes(std::move(data)) {}
    uint32 read(char * buffer, uint32 count) override {
        ++calls;
        count = static_cast<uint32>(std::min<uint64>(count, bytes.size() - at));
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), count, buffer);
        at += count;
        return count;
    }
    byte_vector bytes;
    uint64 at = 0;
    int calls = 0;
};

/// A caller's sink, which fails at the byte of number `limit`.
struct target : nio::output {
    using nio::output::write;
    void write(char const * data, uint32 count) override {
        if (bytes.size() >= limit)
            throw std::runtime_error("full");
        bytes.insert(bytes.end(), data, data + count);
    }
    byte_vector bytes;
    uint64 limit = all_ones;
};

byte_vector wz(int64 value) {
    target out;
    nio::write_wz(value, out);
    return out.bytes;
}

int64 from_wz(byte_vector const & bytes) {
    source in(bytes);
    return nio::read_wz(in);
}

byte_vector p2(std::vector<int64> const & values) {
    target out;
    bit_output bits(out);
    for (int64 const value : values)
        nio::write_p2(value, bits);
    bits.finish();
    EXPECT_EQ(bits.count(), 0);
    return out.bytes;
}

/// Powers of two with their neighbours, then values of evenly spread bit lengths.
std::vector<int64> many_values() {
    std::vector<int64> values = {0, -2, largest, std::numeric_limits<int64>::min()};
    for (int bit = 0; bit < 63; ++bit)
        for (int64 const near : {-1, 0, 1})
            values.push_back((int64{1} << bit) + near);
    std::mt19937_64 random(1);
    for (int i = 0; i < 1'000'000; ++i)
        values.push_back(static_cast<int64>(random() >> (1 + random() % 63)));
    return values;
}

/// The p2 code bit by bit, as its definition has it.
void model_write_p2(int64 value, bit_output & out) {
    uint64 const x = static_cast<uint64>(value) + 1;
    int weight = nio::hamming_weight(static_cast<int64>(x));
    for (int i = 1; i < weight; ++i)
        out.put_bit(1);
    out.put_bit(0);
    for (uint64 mask = 1; weight > 0; mask <<= 1) {
        out.put_bit((x & mask) != 0);
        weight -= (x & mask) != 0;
    }
}

int64 model_read_p2(bit_input & in) {
    uint64 weight = 1;
    while (in.get_bit() == 1)
        ++weight;
    uint64 x = 0;
    for (uint64 mask = 1; weight > 0; mask <<= 1) {
        if (in.get_bit() != 0) {
            x |= mask;
            --weight;
        }
    }
    return static_cast<int64>(x - 1);
}

TEST(HammingWeight, CountsTheWholePattern) {
    for (auto const & [value, weight] :
         {std::pair<int64, int>{0, 0}, {1, 1}, {255, 8}, {largest, 63}, {-1, 64}, {-largest - 1, 1}})
        EXPECT_EQ(nio::hamming_weight(value), weight) << value;
}

TEST(Wz, KnownCodes) {
    struct row {
        int64 value;
        byte_vector code;
    };
    for (auto const & [value, code] :
         {row{0, {0x00}}, row{1, {0x01}}, row{127, {0x7F}}, row{128, {0x81, 0x00}}, row{300, {0x82, 0x2C}},
          row{16383, {0xFF, 0x7F}}, row{16384, {0x81, 0x80, 0x00}}, row{2097151, {0xFF, 0xFF, 0x7F}},
          row{2097152, {0x81, 0x80, 0x80, 0x00}}, row{4294967296, {0x90, 0x80, 0x80, 0x80, 0x00}},
          row{(int64{1} << 56) - 1, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}},
          row{int64{1} << 56, {0x81, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x00}},
          row{largest, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}},
          row{-1, {0x81, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}}}) {
        EXPECT_EQ(wz(value), code) << value;
        EXPECT_EQ(nio::size_wz(value), code.size()) << value;
        EXPECT_EQ(from_wz(code), value);
    }
}

TEST(Wz, ReadsWhatNoWriterMakes) {
    struct row {
        byte_vector code;
        int64 value;
    };
    byte_vector overlong(100'000, 0x80);
    overlong.insert(overlong.end(), {0x81, 0x02});
    byte_vector const lost(1000, 0xFF);
    for (auto const & [code, value] :
         {row{{}, 0}, row{{0x80, 0x01}, 1}, row{{0x81}, 1}, row{{0x82, 0xAC}, 300}, row{overlong, 130}, row{lost, -1}})
        EXPECT_EQ(from_wz(code), value) << code.size();
    source two({0x05, 0x82, 0x2C, 0x07});
    EXPECT_EQ(nio::read_wz(two), 5);
    EXPECT_EQ(two.at, 1u);
    EXPECT_EQ(nio::read_wz(two), 300);
    EXPECT_EQ(two.at, 3u);
}

TEST(P2, KnownCodes) {
    struct row {
        int64 value;
        byte_vector code;
        int bits;
    };
    for (auto const & [value, code, bits] :
         {row{0, {0x02}, 2}, row{1, {0x04}, 3}, row{2, {0x0D}, 4}, row{3, {0x08}, 4}, row{6, {0x3B}, 6},
          row{7, {0x10}, 5}, row{8, {0x25}, 6}, row{14, {0xF7}, 8}, row{100, {0x57, 0x06}, 11},
          row{255, {0x00, 0x02}, 10}, row{0xFFFF'FFFF, {0, 0, 0, 0, 2}, 34},
          row{largest, {0, 0, 0, 0, 0, 0, 0, 0, 1}, 65},
          row{-2,
              {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
              128}}) {
        EXPECT_EQ(p2({value}), code) << value;
        source in(code);
        bit_input reader(in);
        EXPECT_EQ(nio::read_p2(reader), value);
        EXPECT_EQ(reader.count(), static_cast<int>(code.size()) * 8 - bits) << value;
    }
    EXPECT_EQ(p2({-1}), byte_vector{0x00});
    EXPECT_EQ(p2({0, 1, 2}), (byte_vector{0x02 | 0x04 << 2 | (0x0D << 5 & 0xFF), 0x0D >> 3}));
}

TEST(Codes, RoundTripManyValues) {
    target bytes;
    target packed;
    stream::binary_output bits(packed);
    for (int64 const value : many_values()) {
        nio::write_wz(value, bytes);
        any::write(value, bits);
    }
    bits.bits().finish();

    source in(std::move(bytes.bytes));
    source packed_in(std::move(packed.bytes));
    stream::binary_input reader(packed_in);
    for (int64 const value : many_values()) {
        ASSERT_EQ(nio::read_wz(in), value);
        ASSERT_EQ(any::read(reader), value);
    }
    EXPECT_EQ(in.at, in.bytes.size());
    EXPECT_EQ(packed_in.at, packed_in.bytes.size());
}

TEST(P2, MovesTheSameBytesAtTheSameTimeAsBitByBit) {
    std::vector<int64> values = many_values();
    values.resize(20'000);
    target out;
    target model_out;
    bit_output writer(out);
    bit_output model_writer(model_out);
    for (int64 const value : values) {
        nio::write_p2(value, writer);
        model_write_p2(value, model_writer);
        ASSERT_EQ(out.bytes.size(), model_out.bytes.size());
    }
    writer.finish();
    EXPECT_EQ(out.bytes.size(), model_out.bytes.size() + static_cast<unsigned>(model_writer.count() + 7) / 8);

    source in(out.bytes);
    source model_in(out.bytes);
    bit_input reader(in);
    bit_input model_reader(model_in);
    for (int64 const value : values) {
        ASSERT_EQ(nio::read_p2(reader), value);
        ASSERT_EQ(model_read_p2(model_reader), value);
        ASSERT_EQ(in.at, model_in.at);
        ASSERT_EQ(reader.count(), model_reader.count());
    }
}

TEST(P2, TruncatedAndHostileBytesReadAsBitByBit) {
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        byte_vector data(random() % 40);
        for (auto & byte : data)
            byte = static_cast<unsigned char>(round % 3 == 0 ? random() | random() : random());
        // Codes with more than 64 bits of x: leading ones, then a few of the body's among many zeros.
        if (round % 5 == 0)
            data.insert(data.begin(), 15, 0xFF);
        source in(data);
        source model_in(data);
        bit_input reader(in);
        bit_input model(model_in);
        while (model.count() >= 0) {
            ASSERT_EQ(nio::read_p2(reader), model_read_p2(model)) << round;
            ASSERT_EQ(reader.count(), model.count()) << round;
            ASSERT_EQ(in.at, model_in.at) << round;
        }
    }
}

TEST(BitInput, AsksForBytesOnlyWhenTheirBitsAreWanted) {
    source in({0xA5, 0x0F, 0xFF, 0x80, 0x01});
    bit_input bits(in);
    EXPECT_EQ(bits.peek(0), 0);
    EXPECT_EQ(in.calls, 0);
    EXPECT_EQ(bits.get_bit(), 1);
    EXPECT_EQ(bits.get_bit(), 0);
    EXPECT_EQ(in.at, 1u);
    EXPECT_EQ(bits.peek(6), 0x29);
    EXPECT_EQ(in.at, 1u);
    EXPECT_EQ(bits.peek(7), 0x69);
    EXPECT_EQ(in.at, 2u);
    EXPECT_EQ(bits.peek(24), 0x3FC3E9);
    EXPECT_EQ(bits.peek(25), -1);
    EXPECT_EQ(bits.count(), 30);
    EXPECT_FALSE(bits.require(31)) << "has no room for another byte";
    bits.drop(22);
    EXPECT_TRUE(bits.require(16));
    EXPECT_FALSE(bits.require(17));
    EXPECT_EQ(bits.peek(17), -1);
    EXPECT_EQ(bits.peek(16), 0x0180);
    bits.drop(1000);
    EXPECT_EQ(bits.count(), 16 - 1000);
    EXPECT_EQ(bits.get_bit(), -1);
}

TEST(BitInput, GoesOnSayingThatTheEndIsMet) {
    source in({0x03});
    bit_input bits(in);
    bits.drop(3);
    EXPECT_EQ(bits.peek(1), 0) << "bits dropped ahead are not delivered";
    bits.drop(5);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(bits.get_bit(), -1);
    EXPECT_EQ(bits.count(), -100);
    bits.drop(std::numeric_limits<int>::max());
    bits.drop(std::numeric_limits<int>::max());
    EXPECT_EQ(bits.get_bit(), -1);
    EXPECT_EQ(nio::read_p2(bits), 0);
}

TEST(BitOutput, HoldsBackUpTo31Bits) {
    target out;
    bit_output bits(out);
    for (int i = 0; i < 31; ++i)
        bits.put_bit(i % 3 == 0);
    EXPECT_TRUE(out.bytes.empty());
    bits.put_bit(1);
    EXPECT_EQ(out.bytes, (byte_vector{0x49, 0x92, 0x24}));
    EXPECT_EQ(bits.count(), 8);
    bits.put_bit(1);
    bits.drain();
    EXPECT_EQ(out.bytes.back(), 0xC9);
    EXPECT_EQ(bits.count(), 1);
    bits.put_byte();
    EXPECT_EQ(out.bytes.back(), 0x01);
    EXPECT_EQ(bits.count(), -7);
    bits.put_bits(0x80 | 0x55 << 7, 14);
    EXPECT_EQ(bits.count(), 7);
    bits.finish();
    EXPECT_EQ(out.bytes.back(), 0x55);
    bits.finish();
    EXPECT_EQ(out.bytes.size(), 6u);
}

TEST(BitOutput, KeepsItsBitsWhenTheTargetFails) {
    target out;
    out.limit = 1;
    bit_output bits(out);
    bits.put_bits(0x12345678, 31);
    EXPECT_THROW(bits.put_bit(1), std::runtime_error);
    out.limit = all_ones;
    bits.put_bit(1);
    bits.finish();
    EXPECT_EQ(out.bytes, (byte_vector{0x78, 0x56, 0x34, 0x92}));
}

// Classes of the caller, which are never asked for memory, beside those of the library.
struct single_input : stream::array_input {
    using stream::array_input::array_input;
};

struct single_output : stream::array_output {
    using stream::array_output::array_output;
};

TEST(Codes, ReadTheSameFromMemoryAsByteByByte) {
    std::mt19937 random(3);
    for (int round = 0; round < 3000; ++round) {
        std::vector<char> data(random() % 60);
        for (auto & byte : data)
            byte = static_cast<char>(round % 2 == 0 ? random() | random() : random());
        stream::array_input in(data.data(), static_cast<uint32>(data.size()));
        single_input single(data.data(), static_cast<uint32>(data.size()));
        for (stream::input * const each : {static_cast<stream::input *>(&in), static_cast<stream::input *>(&single)}) {
            each->read();
            if (round % 4 == 0)
                each->unread("\x81\xFF\x82\x03\xC5\x81\x92\x93\x94\x15\x16", 11);
        }
        bit_input bits(in);
        bit_input single_bits(single);
        for (int step = 0; step < 30; ++step) {
            if (random() % 3 == 0) {
                ASSERT_EQ(nio::read_wz(in), nio::read_wz(single)) << round;
            } else {
                if (random() % 4 == 0) {
                    ASSERT_EQ(bits.peek(step), single_bits.peek(step)) << round;
                }
                ASSERT_EQ(nio::read_p2(bits), nio::read_p2(single_bits)) << round;
            }
            ASSERT_EQ(in.tell(), single.tell()) << round;
            ASSERT_EQ(bits.count(), single_bits.count()) << round;
        }
    }
}

TEST(Codes, WriteTheSameToMemoryAsByteByByte) {
    std::mt19937_64 random(4);
    for (int round = 0; round < 3000; ++round) {
        std::vector<char> data(100, 'x');
        std::vector<char> single_data(data);
        auto const length = static_cast<uint32>(random() % 90);
        stream::array_output out(data.data(), length);
        single_output single(single_data.data(), length);
        bit_output bits(out);
        bit_output single_bits(single);
        auto const write = [](auto const & work) {
            try {
                work();
                return true;
            } catch (stream::exception const &) {
                return false;
            }
        };
        for (int step = 0; step < 30; ++step) {
            auto const value = static_cast<int64>(random() >> random() % 64);
            bool const wz = random() % 2 == 0;
            bool const done = write([&] { wz ? nio::write_wz(value, out) : nio::write_p2(value, bits); });
            bool const single_done =
                write([&] { wz ? nio::write_wz(value, single) : nio::write_p2(value, single_bits); });
            ASSERT_EQ(done, single_done) << round;
            ASSERT_EQ(out.tell(), single.tell()) << round;
            ASSERT_EQ(bits.count(), single_bits.count()) << round;
            ASSERT_EQ(data, single_data) << round;
        }
    }
}

} // namespace
