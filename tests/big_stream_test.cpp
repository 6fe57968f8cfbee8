// A long named stream: 100 MB in our own store, 10 MB on a mounted disk.

#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/nio/move.h"
#include "tests/support/ntfs_image.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

constexpr uint32 megabyte = 1'000'000;

/// The parameter says whether the volume is a mounted disk.
class big_stream : public testing::TestWithParam<bool> {
protected:
    ~big_stream() override { platform::detach_volume('N'); }

    void SetUp() override {
        std::filesystem::create_directory(folder_.host("volume"));
        if (GetParam()) {
            disk_.emplace(folder_.host("image"), folder_.host("volume"));
            if (!disk_->mounted())
                GTEST_SKIP() << "an NTFS image cannot be made or mounted here";
        }
        ASSERT_EQ(platform::attach_volume('N', folder_.host("volume"), "NTFS"), 0u);
    }

    /// A megabyte that no other is like.
    static std::vector<char> block(uint32 number) {
        std::vector<char> bytes(megabyte);
        uint32 state = number + 1;
        for (char & byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<char>(state >> 24);
        }
        return bytes;
    }

    static void expect_blocks(wide_string const & path, uint32 blocks) {
        nio::file file(path, nio::file::mode_read);
        EXPECT_EQ(file.size(), uint64{blocks} * megabyte);
        std::vector<char> bytes(megabyte);
        for (uint32 i = 0; i < blocks; ++i)
            ASSERT_TRUE(file.read(bytes.data(), megabyte) == megabyte && bytes == block(i)) << "block " << i;
    }

    scratch folder_;
    std::optional<ntfs_image> disk_;
};

INSTANTIATE_TEST_SUITE_P(stores, big_stream, testing::Bool(),
                         [](auto const & store) { return store.param ? "disk" : "own"; });

TEST_P(big_stream, lives_and_dies_with_its_file) {
    uint32 const blocks = GetParam() ? 10 : 100;
    nio::file(u"N:\\file", nio::file::mode_new).close();
    nio::file file(u"N:\\file:big", nio::file::mode_anew);
    for (uint32 i = 0; i < blocks; ++i)
        file.write(block(i).data(), megabyte);
    EXPECT_THROW(nio::file(u"N:\\file:big", nio::file::mode_read_write), nio::exception) << "it is being written";
    file.close();
    expect_blocks(u"N:\\file:big", blocks);

    nio::file again(u"N:\\file:big:$DATA", nio::file::mode_read_write);
    EXPECT_TRUE(again.resize(uint64{blocks / 2} * megabyte));
    again.close();
    wide_string target = u"N:\\moved";
    nio::move(u"N:\\file", target, true);
    expect_blocks(u"N:\\moved:big", blocks / 2);
    EXPECT_FALSE(nio::exists(u"N:\\file:big"));

    nio::unlink(target, true);
    nio::file(target, nio::file::mode_new).close();
    EXPECT_FALSE(nio::exists(u"N:\\moved:big"));
}

} // namespace
