#include "socle/any/integers.h"
#include "socle/nio/integer_codes.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using bit_input = nio::bit_input<1, 0, 1>;
using bit_output = nio::bit_output<1, 0>;
constexpr int64 largest = std::numeric_limits<int64>::max();

// Classes of a caller, which are never asked for memory.
struct single_input : stream::array_input {
    using stream::array_input::array_input;
};
struct single_output : stream::array_output {
    using stream::array_output::array_output;
};

byte_vector wz(int64 value) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    nio::write_wz(value, out);
    return bytes;
}

int64 from_wz(byte_vector const & bytes) {
    stream::vector_input in(bytes);
    return nio::read_wz(in);
}

byte_vector p2(std::vector<int64> const & values) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    bit_output bits(out);
    for (int64 const value : values)
        nio::write_p2(value, bits);
    bits.finish();
    EXPECT_EQ(bits.count(), 0);
    return bytes;
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

TEST(wz, known_codes) {
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

TEST(wz, reads_what_no_writer_makes) {
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
}

TEST(p2, known_codes) {
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
        stream::vector_input in(code);
        bit_input reader(in);
        EXPECT_EQ(nio::read_p2(reader), value);
        EXPECT_EQ(reader.count(), static_cast<int>(code.size()) * 8 - bits) << value;
    }
    EXPECT_EQ(p2({-1}), byte_vector{0x00});
    EXPECT_EQ(p2({0, 1, 2}), (byte_vector{0x02 | 0x04 << 2 | (0x0D << 5 & 0xFF), 0x0D >> 3}));
}

TEST(codes, read_in_blocks_as_byte_by_byte_and_bit_by_bit) {
    std::mt19937 random(3);
    for (unsigned round = 0; round < 4000; ++round) {
        std::vector<char> data(random() % 60);
        for (auto & byte : data)
            byte = static_cast<char>(round % 3 == 0 ? random() | random() : random());
        // More leading ones than a code needs, so that x grows beyond 64 bits.
        data.insert(data.begin(), round % 5 == 0 ? 15 : 0, '\xFF');
        auto const size = static_cast<uint32>(data.size());
        stream::array_input in(data.data(), size);
        single_input single(data.data(), size);
        single_input model(data.data(), size);
        for (stream::input * const each : std::initializer_list<stream::input *>{&in, &single, &model}) {
            each->read();
            if (round % 4 == 0)
                each->unread("\x81\xFF\x82\x03\xC5\x81\x92\x93\x94\x15\x16", 11);
        }
        bit_input bits(in);
        bit_input single_bits(single);
        bit_input model_bits(model);
        for (int step = 0; step < 30; ++step) {
            bool const by_bytes = random() % 4 == 0;
            int64 const value = by_bytes ? nio::read_wz(model) : model_read_p2(model_bits);
            ASSERT_EQ(by_bytes ? nio::read_wz(in) : nio::read_p2(bits), value) << round;
            ASSERT_EQ(by_bytes ? nio::read_wz(single) : nio::read_p2(single_bits), value) << round;
            if (step == 3) {
                ASSERT_EQ(bits.peek(20), model_bits.peek(20));
                single_bits.peek(20);
            }
            ASSERT_EQ(in.tell(), model.tell()) << round;
            ASSERT_EQ(single.tell(), model.tell()) << round;
            ASSERT_EQ(bits.count(), model_bits.count()) << round;
            ASSERT_EQ(single_bits.count(), model_bits.count()) << round;
        }
    }
}

TEST(codes, write_in_blocks_as_byte_by_byte_and_bit_by_bit) {
    std::mt19937_64 random(4);
    auto const succeeds = [](auto const & work) {
        try {
            work();
            return true;
        } catch (stream::exception const &) {
            return false;
        }
    };
    for (int round = 0; round < 3000; ++round) {
        std::vector<char> data(100, 'x');
        std::vector<char> model_data(data);
        auto const length = static_cast<uint32>(random() % 90);
        stream::array_output out(data.data(), length);
        single_output model(model_data.data(), length);
        bit_output bits(out);
        bit_output model_bits(model);
        for (int step = 0; step < 30; ++step) {
            auto const value = static_cast<int64>(random() >> random() % 64);
            bool const by_bytes = random() % 4 == 0;
            ASSERT_EQ(succeeds([&] { by_bytes ? nio::write_wz(value, out) : nio::write_p2(value, bits); }),
                      succeeds([&] { by_bytes ? nio::write_wz(value, model) : model_write_p2(value, model_bits); }));
            ASSERT_EQ(out.tell(), model.tell()) << round;
            ASSERT_EQ(bits.count(), model_bits.count()) << round;
            ASSERT_EQ(data, model_data) << round;
        }
    }
}

TEST(bit_input, asks_for_bytes_only_when_their_bits_are_wanted) {
    stream::array_input in("\xA5\x0F\xFF\x80\x01", 5);
    bit_input bits(in);
    EXPECT_EQ(bits.peek(0), 0);
    EXPECT_EQ(in.tell(), 0u);
    EXPECT_EQ(bits.get_bit(), 1);
    EXPECT_EQ(bits.get_bit(), 0);
    EXPECT_EQ(bits.peek(6), 0x29);
    EXPECT_EQ(in.tell(), 1u);
    EXPECT_EQ(bits.peek(7), 0x69);
    EXPECT_EQ(in.tell(), 2u);
    EXPECT_EQ(bits.peek(24), 0x3FC3E9);
    EXPECT_EQ(bits.peek(25), -1);
    EXPECT_EQ(bits.count(), 30);
    EXPECT_FALSE(bits.require(31)) << "has no room for another byte";
    bits.drop(22);
    EXPECT_TRUE(bits.require(16));
    EXPECT_FALSE(bits.require(17));
    EXPECT_EQ(bits.peek(16), 0x0180);
    bits.drop(1000);
    EXPECT_EQ(bits.count(), 16 - 1000);
    EXPECT_EQ(bits.get_bit(), -1);
}

TEST(bit_input, goes_on_saying_that_the_end_is_met) {
    stream::array_input in("\x03", 1);
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

TEST(bit_output, holds_back_up_to_31_bits) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    bit_output bits(out);
    for (int i = 0; i < 31; ++i)
        bits.put_bit(i % 3 == 0);
    EXPECT_TRUE(bytes.empty());
    bits.put_bit(1);
    EXPECT_EQ(bytes, (byte_vector{0x49, 0x92, 0x24}));
    EXPECT_EQ(bits.count(), 8);
    bits.put_bit(1);
    bits.drain();
    EXPECT_EQ(bits.count(), 1);
    bits.put_byte();
    EXPECT_EQ(bits.count(), -7);
    bits.put_bits(0x80 | 0x55 << 7, 14);
    bits.finish();
    bits.finish();
    EXPECT_EQ(bytes, (byte_vector{0x49, 0x92, 0x24, 0xC9, 0x01, 0x55}));

    char one[1];
    stream::array_output full(one, 1);
    bit_output kept(full);
    kept.put_bits(0x12345678, 31);
    EXPECT_THROW(kept.put_bit(1), stream::exception);
    EXPECT_EQ(kept.count(), 23) << "only what was written is gone";
}

} // namespace
