#include "socle/nio/integer_codes.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using bit_input = nio::bit_input<1, 0, 1>;
using bit_output = nio::bit_output<1, 0>;
constexpr int64 largest = std::numeric_limits<int64>::max();

TEST(wz, known_codes) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    for (int64 const value : {int64{0}, int64{300}, largest, int64{-1}})
        nio::write_wz(value, out);
    EXPECT_EQ(bytes, (byte_vector{0x00, 0x82, 0x2C, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                  0x7F, 0x81, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}));
}

TEST(p2, known_codes) {
    struct row {
        std::vector<int64> values;
        byte_vector code;
    };
    for (auto const & [values, code] : {row{{14}, {0xF7}}, row{{100}, {0x57, 0x06}}, row{{255}, {0x00, 0x02}},
                                        row{{-1}, {0x00}}, row{{largest}, {0, 0, 0, 0, 0, 0, 0, 0, 1}},
                                        row{{0, 1, 2}, {0x02 | 0x04 << 2 | (0x0D << 5 & 0xFF), 0x0D >> 3}}}) {
        byte_vector bytes;
        stream::vector_output out(bytes);
        bit_output bits(out);
        for (int64 const value : values)
            nio::write_p2(value, bits);
        bits.finish();
        EXPECT_EQ(bytes, code);
        EXPECT_EQ(bits.count(), 0);
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
