// A long named stream through the file calls: 100 MB in our own store, 10 MB on a mounted disk.

#include "platform/backup.h"
#include "platform/directories.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/host.h"
#include "tests/support/ntfs_image.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <vector>

namespace {

using namespace platform;
namespace fs = std::filesystem;

constexpr uint32 megabyte = 1'000'000;

/// The parameter says whether the volume is a mounted disk.
class big_stream : public testing::TestWithParam<bool> {
protected:
    big_stream() {
        char pattern[] = "/var/tmp/socle_big_XXXXXX";
        folder_ = mkdtemp(pattern);
        fs::create_directory(folder_ / "volume");
    }
    ~big_stream() override {
        detach_volume('N');
        disk_.reset();
        fs::remove_all(folder_);
    }

    void SetUp() override {
        if (GetParam()) {
            disk_.emplace(folder_ / "image", folder_ / "volume");
            if (!disk_->mounted()) {
                GTEST_SKIP() << "an NTFS image cannot be made or mounted here";
            }
        }
        ASSERT_EQ(attach_volume('N', folder_ / "volume", "NTFS"), 0u);
    }

    static int open_for_writing(wide_string const & path, uint32 disposition) {
        return CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, disposition, 0);
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
        int const file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
        ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
        uint64 size = 0;
        EXPECT_TRUE(GetFileSize(file, size));
        EXPECT_EQ(size, uint64{blocks} * megabyte);
        std::vector<char> bytes(megabyte);
        for (uint32 i = 0; i < blocks; ++i) {
            uint32 done = 0;
            ASSERT_TRUE(ReadFile(file, bytes.data(), megabyte, done));
            ASSERT_TRUE(done == megabyte && bytes == block(i)) << "block " << i;
        }
        EXPECT_TRUE(CloseHandle(file));
    }

    /// The names and sizes of the streams, by the backup calls: "name size, ".
    static wide_string list(wide_string const & path) {
        int const file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
        EXPECT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
        wide_string streams;
        backup_context * context = nullptr;
        unsigned char head[20];
        uint32 done = 0;
        while (BackupRead(file, reinterpret_cast<char *>(head), 20, done, false, context) && done == 20) {
            uint32 size = 0;
            for (std::size_t i = 12; i-- > 8;) {
                size = size << 8 | head[i];
            }
            char16_t name[256] = {};
            BackupRead(file, reinterpret_cast<char *>(name), head[16], done, false, context);
            std::string const digits = ' ' + std::to_string(size) + ", ";
            streams.append(name).append(digits.begin(), digits.end());
            uint64 skipped = 0;
            BackupSeek(file, all_ones, skipped, context);
        }
        BackupRead(file, nullptr, 0, done, true, context);
        CloseHandle(file);
        return streams;
    }

    fs::path folder_;
    std::optional<ntfs_image> disk_;
};

INSTANTIATE_TEST_SUITE_P(stores, big_stream, testing::Bool(),
                         [](auto const & store) { return store.param ? "disk" : "own"; });

TEST_P(big_stream, lives_and_dies_with_its_file) {
    uint32 const blocks = GetParam() ? 10 : 100;
    CloseHandle(open_for_writing(u"N:\\file", CREATE_NEW));
    int const file = open_for_writing(u"N:\\file:big", CREATE_ALWAYS);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
    for (uint32 i = 0; i < blocks; ++i) {
        uint32 done = 0;
        ASSERT_TRUE(WriteFile(file, block(i).data(), megabyte, done));
        ASSERT_EQ(done, megabyte);
    }
    EXPECT_EQ(open_for_writing(u"N:\\file:big", OPEN_EXISTING), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_TRUE(CloseHandle(file));
    expect_blocks(u"N:\\file:big", blocks);

    int const again = open_for_writing(u"N:\\file:big:$DATA", OPEN_EXISTING);
    uint64 position = 0;
    EXPECT_TRUE(SetFilePointer(again, int64{blocks / 2} * megabyte, FILE_BEGIN, position));
    EXPECT_TRUE(SetEndOfFile(again));
    EXPECT_TRUE(CloseHandle(again));
    expect_blocks(u"N:\\file:big", blocks / 2);

    ASSERT_TRUE(CreateDirectoryW(u"N:\\folder"));
    ASSERT_TRUE(MoveFileW(u"N:\\file", u"N:\\folder\\moved"));
    expect_blocks(u"N:\\folder\\moved:big", blocks / 2);
    EXPECT_EQ(GetFileAttributesW(u"N:\\file:big"), INVALID_FILE_ATTRIBUTES);
    std::string const size = std::to_string(blocks / 2 * megabyte);
    EXPECT_EQ(list(u"N:\\folder\\moved"), u" 0, :big:$DATA " + wide_string(size.begin(), size.end()) + u", ");

    ASSERT_TRUE(DeleteFileW(u"N:\\folder\\moved"));
    CloseHandle(open_for_writing(u"N:\\folder\\moved", CREATE_NEW));
    EXPECT_EQ(GetFileAttributesW(u"N:\\folder\\moved:big"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(list(u"N:\\folder\\moved"), u" 0, ");
}

} // namespace
