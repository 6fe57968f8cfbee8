#include "algorithm/random.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using algorithm::random::java_generator;

/// Taken from a run of the Java platform's standard random class: the first words, the first bytes, and word 100,000.
struct run {
    uint64 seed;
    std::array<uint32, 6> words;
    byte_vector bytes;
    uint32 last;
};

run const runs[] = {
    {0,
     {0xBB20B460, 0xD4D95138, 0x3D93CB7A, 0x9B3970BE, 0xA32DC9F6, 0x4F1DF03A},
     {0x60, 0xB4, 0x20, 0xBB, 0x38, 0x51, 0xD9},
     0x09F5B5D7},
    {1,
     {0xBB1AD573, 0x19B89CD8, 0x68FB0E6F, 0x684DF992, 0x352CCCFC, 0x0946B8F0},
     {0x73, 0xD5, 0x1A, 0xBB, 0xD8, 0x9C, 0xB8},
     0x2C20B1EB},
    {42,
     {0xBA419D35, 0x0DFE8AF7, 0xAEE7BBE1, 0x0C45C028, 0x4F083CE4, 0xF12BBB4B},
     {0x35, 0x9D, 0x41, 0xBA, 0xF7, 0x8A, 0xFE},
     0x1C5720D8},
    {all_ones,
     {0x44D96CB3, 0x708722C3, 0x03242017, 0x8C4BFF9E, 0xA97E5E69, 0x99CDBB4C},
     {0xB3, 0x6C, 0xD9, 0x44, 0xC3, 0x22, 0x87},
     0xF796C703},
    {0x5DEECE66D,
     {0x00000000, 0x0040942D, 0x0AA8544E, 0x2D3873C4, 0x5D5692AC, 0x17617168},
     {0x00, 0x00, 0x00, 0x00, 0x2D, 0x94, 0x40},
     0x6FB0C063},
    {0x1000000000007,
     {0xBB0F1799, 0xA3773418, 0xBFC9945A, 0x02770B39, 0x592AD309, 0x7D984A5D},
     {0x99, 0x17, 0x0F, 0xBB, 0x18, 0x34, 0x77},
     0x7076AA13},
    {0xEEDDEF0B82167EEB,
     {0xB28D8B43, 0xA0BDEB2B, 0x3AF4D17E, 0x08A8200A, 0xCB60EF1D, 0x8BC5A2DB},
     {0x43, 0x8B, 0x8D, 0xB2, 0x2B, 0xEB, 0xBD},
     0x6E412CDF},
};

TEST(JavaGenerator, DrawsWhatTheJavaPlatformDraws) {
    java_generator generator(7);
    for (auto const & [seed, words, bytes, last] : runs) {
        generator.seed(seed);
        for (uint32 const word : words)
            EXPECT_EQ(generator.next_word(), word) << seed;
        uint32 drawn = 0;
        for (std::size_t i = words.size(); i < 100'000; ++i)
            drawn = generator.next_word();
        EXPECT_EQ(drawn, last) << seed;

        byte_vector filled(bytes.size() + 1, 0xEE);
        generator.seed(seed);
        generator.fill(filled.data(), static_cast<uint32>(bytes.size()));
        EXPECT_EQ(filled.back(), 0xEE) << "writes past its end";
        filled.pop_back();
        EXPECT_EQ(filled, bytes) << seed;
        generator.seed(seed);
        EXPECT_EQ(generator.next(1), words[0] >> 31) << seed;
        EXPECT_EQ(generator.next(17), words[1] >> 15) << seed;
    }
}

TEST(JavaGenerator, TakesItsFirstStateAsItComes) {
    java_generator generator(0xFFFF'0000'0000'0001);
    EXPECT_EQ(generator.state(), 0xFFFF'0000'0000'0001u);
    generator.next(1);
    EXPECT_EQ(generator.state(), 0x5DEECE66Du + 11);
    generator.seed(0xFFFF'0000'0000'0000);
    EXPECT_EQ(generator.state(), 0x5DEECE66Du);
    EXPECT_EQ(java_generator().state() >> 32, 0u);
}

} // namespace
