// The backup calls on open files of an attached volume.

#include "socle/platform/backup.h"
#include "socle/platform/errors.h"
#include "socle/platform/posix/paths/volumes.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace {

using namespace platform;
namespace fs = std::filesystem;

TEST(backup, goes_to_the_file_wherever_it_lies) {
    ntfs_folder const volume;
    ASSERT_TRUE(volume.attached()) << "no extended attributes in the folder for tests";
    fs::path const folder = volume.folder();
    volume.write("from", "data");
    volume.write("to", "");
    posix::named_streams const & streams = *posix::volume_of_letter(u'N')->streams;
    posix::descriptor_guard stream;
    ASSERT_EQ(posix::open_stream(streams, (folder / "from").c_str(), u"note", O_WRONLY, stream), 0u);
    ASSERT_EQ(::write(stream.get(), "of the stream", 13), 13);
    int const from = open((folder / "from").c_str(), O_RDONLY);
    int const to = open((folder / "to").c_str(), O_RDWR);
    fs::rename(folder / "from", folder / "moved");

    backup_context * reading = nullptr;
    backup_context * writing = nullptr;
    char block[4096];
    uint32 got = 0;
    uint32 put = 0;
    ASSERT_TRUE(BackupRead(from, block, sizeof block, got, false, reading));
    EXPECT_EQ(got, 20u + 4 + 20 + 22 + 13);
    ASSERT_TRUE(BackupWrite(to, block, got, put, writing));
    EXPECT_EQ(put, got);
    uint64 skipped = 0;
    EXPECT_FALSE(BackupSeek(from, all_ones, skipped, reading));
    EXPECT_EQ(GetLastError(), ERROR_SEEK);
    for (backup_context ** context : {&reading, &writing}) {
        EXPECT_TRUE(BackupRead(from, nullptr, 0, got, true, *context));
        EXPECT_EQ(*context, nullptr);
    }
    ASSERT_EQ(posix::open_stream(streams, (folder / "to").c_str(), u"note", O_RDONLY, stream), 0u);
    EXPECT_EQ(posix::host::lseek(stream.get(), 0, SEEK_END), 13);

    EXPECT_FALSE(BackupRead(-1, block, 20, got, false, reading));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    BackupRead(-1, nullptr, 0, got, true, reading);
    close(from);
    close(to);
}

} // namespace
