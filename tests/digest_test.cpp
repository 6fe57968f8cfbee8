#include "socle/algorithm/crc.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

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

} // namespace
