#include "io/attributes.h"

#include <gtest/gtest.h>

namespace {

TEST(attributes, start_absent_with_the_default_of_each_value) {
    io::attributes const set;
    EXPECT_FALSE(set.modified.present() || set.win32.present() || set.mac_file.present() || set.mac_folder.present());
    EXPECT_FALSE(set.unix.present() || set.read_only.present() || set.created.present() || set.extra_path.present());
    EXPECT_EQ(set.win32.value().flags, 0u);
    EXPECT_EQ(set.mac_file.value().info.type.to_string(), "????");
    EXPECT_EQ(set.unix.value().mode, 0640u);
    EXPECT_FALSE(set.unix.value().extra1.present());
}

TEST(attributes, assigned_values_are_present_and_cleared_ones_keep_the_value) {
    io::attributes set;
    set.extra_path = any::path(u"a/b", true);
    set.read_only = false;
    io::attributes copy(set);
    copy.extra_path.clear();
    EXPECT_TRUE(set.extra_path.present());
    EXPECT_TRUE(copy.read_only.present());
    EXPECT_FALSE(copy.extra_path.present());
    EXPECT_EQ(copy.extra_path.value().size(), 2u);
}

TEST(attributes, dos_knows_five_of_the_bits) {
    struct {
        uint32 flags;
        uint16 from;
        uint32 then;
        uint16 to;
    } const cases[] = {
        {0x80000100, 0xFF, 0x80000037, 0x37},
        {0xFFFFFFFF, 0, 0xFFFF0000, 0},
        {0, 0xFFC8, 0, 0},
    };
    for (auto const & [flags, from, then, to] : cases) {
        io::win32::attributes bits;
        bits.flags = flags;
        EXPECT_EQ(bits.to_dos_flags(), flags & 0x37);
        bits.from_dos_flags(from);
        EXPECT_EQ(bits.flags, then);
        EXPECT_EQ(bits.to_dos_flags(), to);
    }
}

} // namespace
