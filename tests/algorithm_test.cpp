#include "socle/algorithm/crc.h"
#include "socle/algorithm/random.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

namespace {

using algorithm::random::java_generator;

using crc_16 = algorithm::crc::xmodem;

byte_vector bytes(narrow_string const & text) { return {text.begin(), text.end()}; }

void feed(crc_16 & crc, byte_vector const & data) { crc.update(data.data(), static_cast<uint32>(data.size())); }

TEST(crc, table_and_worked_values) {
    using algorithm::crc::crc_table;
    EXPECT_EQ(crc_table[0], 0x0000u);
    EXPECT_EQ(crc_table[1], 0x1021u);
    EXPECT_EQ(crc_table[2], 0x2042u);
    EXPECT_EQ(crc_table[255], 0x1EF0u);

    crc_16 crc;
    EXPECT_TRUE(crc.result().empty());
    crc.finish();
    EXPECT_EQ(crc.result(), (byte_vector{0x00, 0x00}));
    crc.reset();
    feed(crc, bytes("123456789"));
    crc.finish();
    EXPECT_EQ(crc.state(), 0x31C3u);
    EXPECT_EQ(crc.result(), (byte_vector{0x31, 0xC3}));
}

TEST(crc, of_32_bits_comes_in_pieces) {
    auto const digits = bytes("123456789");
    EXPECT_EQ(algorithm::crc::crc_32(digits.data(), 9), 0xCBF43926u);
    EXPECT_EQ(algorithm::crc::crc_32(digits.data() + 4, 5, algorithm::crc::crc_32(digits.data(), 4)), 0xCBF43926u);
    EXPECT_EQ(algorithm::crc::crc_32(nullptr, 0), 0u);
}

TEST(crc, finishes_once_until_reset) {
    crc_16 crc;
    crc.hook(1, 2);
    feed(crc, bytes("123456789"));
    crc.finish();
    feed(crc, bytes("more"));
    crc.finish();
    EXPECT_TRUE(crc.finished());
    EXPECT_EQ(crc.result(), (byte_vector{0x31, 0xC3}));

    crc.reset();
    EXPECT_FALSE(crc.finished());
    EXPECT_EQ(crc.state(), 0u);
    EXPECT_EQ(crc.result(), (byte_vector{0x31, 0xC3}));
    crc.update('A');
    crc.finish();
    EXPECT_EQ(crc.result(), (byte_vector{0x58, 0xE5}));
}

TEST(crc, blocks_of_any_length_give_the_state_of_single_bytes) {
    byte_vector data(100);
    std::iota(data.begin(), data.end(), static_cast<unsigned char>(0xB7));
    for (uint32 split = 0; split <= 40; ++split)
        for (uint32 length = split; length <= data.size(); ++length) {
            crc_16 single;
            crc_16 blocks;
            for (uint32 i = 0; i < length; ++i)
                single.update(data[i]);
            blocks.update(data.data(), split);
            blocks.update(data.data() + split, length - split);
            ASSERT_EQ(blocks.state(), single.state()) << split << " of " << length;
        }
}

/// Taken from a run of the Java platform's standard random class: the first words, and word 100,000.
struct run {
    uint64 seed;
    std::array<uint32, 4> words;
    uint32 last;
};

TEST(java_generator, draws_what_the_java_platform_draws) {
    java_generator generator(7);
    for (auto const & [seed, words, last] : {
             run{0, {0xBB20B460, 0xD4D95138, 0x3D93CB7A, 0x9B3970BE}, 0x09F5B5D7},
             run{1, {0xBB1AD573, 0x19B89CD8, 0x68FB0E6F, 0x684DF992}, 0x2C20B1EB},
             run{42, {0xBA419D35, 0x0DFE8AF7, 0xAEE7BBE1, 0x0C45C028}, 0x1C5720D8},
             run{all_ones, {0x44D96CB3, 0x708722C3, 0x03242017, 0x8C4BFF9E}, 0xF796C703},
             run{0x5DEECE66D, {0x00000000, 0x0040942D, 0x0AA8544E, 0x2D3873C4}, 0x6FB0C063},
             run{0x1000000000007, {0xBB0F1799, 0xA3773418, 0xBFC9945A, 0x02770B39}, 0x7076AA13},
             run{0xEEDDEF0B82167EEB, {0xB28D8B43, 0xA0BDEB2B, 0x3AF4D17E, 0x08A8200A}, 0x6E412CDF},
         }) {
        generator.seed(seed);
        uint32 drawn = 0;
        for (std::size_t i = 0; i < 100'000; ++i) {
            drawn = generator.next_word();
            if (i < words.size())
                EXPECT_EQ(drawn, words[i]) << seed;
        }
        EXPECT_EQ(drawn, last) << seed;
        generator.seed(seed);
        EXPECT_EQ(generator.next(1), words[0] >> 31) << seed;
        EXPECT_EQ(generator.next(17), words[1] >> 15) << seed;
    }
}

TEST(java_generator, fills_with_the_bytes_of_its_words) {
    java_generator generator(7);
    generator.seed(0);
    byte_vector bytes(8, 0xEE);
    generator.fill(bytes.data(), 7);
    EXPECT_EQ(bytes, (byte_vector{0x60, 0xB4, 0x20, 0xBB, 0x38, 0x51, 0xD9, 0xEE}));
    EXPECT_EQ(generator.next_word(), 0x3D93CB7Au) << "the rest of the last word is dropped";
}

TEST(java_generator, takes_its_first_state_as_it_comes) {
    java_generator generator(0xFFFF'0000'0000'0001);
    EXPECT_EQ(generator.state(), 0xFFFF'0000'0000'0001u);
    generator.next(1);
    EXPECT_EQ(generator.state(), 0x5DEECE66Du + 11);
    generator.seed(0xFFFF'0000'0000'0000);
    EXPECT_EQ(generator.state(), 0x5DEECE66Du);
    EXPECT_EQ(java_generator().state() >> 32, 0u);
}

} // namespace
