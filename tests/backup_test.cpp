// The backup calls on open files of an attached volume.

#include "socle/platform/backup.h"
#include "socle/platform/errors.h"
#include "tests/support/handles.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace platform;
using namespace std::string_literals;
namespace fs = std::filesystem;

struct backup : testing::Test {
    void SetUp() override { ASSERT_TRUE(volume.attached()) << ntfs_folder::limit; }

    /// What the next call reads of `file`, `size` bytes at most; the code in digits if it fails.
    std::string read(int file, uint32 size) {
        std::string bytes(size, '\0');
        uint32 got = 0;
        if (!BackupRead(file, bytes.data(), size, got, false, context))
            return std::to_string(GetLastError());
        bytes.resize(got);
        return bytes;
    }
    void end() {
        uint32 none = 0;
        EXPECT_TRUE(BackupRead(INVALID_HANDLE_VALUE, nullptr, 0, none, true, context));
        EXPECT_EQ(context, nullptr);
    }

    ntfs_folder volume;
    backup_context * context = nullptr;
};

// In pieces of one odd size, and back in pieces of another, to a file with streams of its own.
TEST_F(backup, goes_to_the_file_wherever_it_lies) {
    volume.write("from", "data");
    volume.write("to", "longer data");
    put(u"N:\\from:note", "of the stream");
    put(u"N:\\from:empty", "");
    put(u"N:\\to:note", "something longer that goes");
    int const from = open(volume.host("from").c_str(), O_RDONLY), to = open(volume.host("to").c_str(), O_RDWR);
    fs::rename(volume.host("from"), volume.host("moved"));
    std::string records;
    for (std::string piece(7, '\0'); piece.size() == 7; records += piece)
        piece = read(from, 7);
    EXPECT_EQ(read(from, 1), "");
    EXPECT_EQ(records, "\1\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0data"
                       "\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x18\0\0\0:\0e\0m\0p\0t\0y\0:\0$\0D\0A\0T\0A\0"
                       "\4\0\0\0\0\0\0\0\15\0\0\0\0\0\0\0\x16\0\0\0:\0n\0o\0t\0e\0:\0$\0D\0A\0T\0A\0of the stream"s);
    end();

    std::string const other_record = "\3\0\0\0\0\0\0\0\5\0\0\0\0\0\0\0\0\0\0\0abcde"s;
    records = other_record + records + other_record;
    uint32 done = 0;
    for (std::size_t at = 0; at < records.size(); at += 3) {
        auto const size = static_cast<uint32>(std::min<std::size_t>(3, records.size() - at));
        ASSERT_TRUE(BackupWrite(to, records.data() + at, size, done, context));
        EXPECT_EQ(done, size);
    }
    end();
    EXPECT_EQ(volume.read("to"), "data");
    EXPECT_EQ(get(u"N:\\to:note") + get(u"N:\\to:empty"), "of the stream");
    close(from);
    close(to);
}

TEST_F(backup, skips_within_a_record_and_tells_what_fails) {
    volume.write("file", "data");
    put(u"N:\\file:note", "note");
    int const file = open(volume.host("file").c_str(), O_RDWR);
    uint64 skipped = 0;
    EXPECT_EQ(read(file, 20).size(), 20u);
    EXPECT_TRUE(BackupSeek(file, 3, skipped, context));
    EXPECT_FALSE(BackupSeek(file, all_ones, skipped, context));
    EXPECT_EQ(GetLastError(), ERROR_SEEK);
    EXPECT_EQ(skipped, 1u);
    EXPECT_EQ(read(file, 1)[0], char(BACKUP_ALTERNATE_DATA));
    end();
    EXPECT_EQ(read(INVALID_HANDLE_VALUE, 20), std::to_string(ERROR_INVALID_HANDLE));
    end();
    // A file that has become shorter than its head said is no silent success.
    EXPECT_EQ(read(file, 20).size(), 20u);
    fs::resize_file(volume.host("file"), 0);
    EXPECT_EQ(read(file, 1), std::to_string(ERROR_INVALID_DATA));
    end();
    uint32 done = 0;
    std::string const wrong = "\xff\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s;
    EXPECT_FALSE(BackupWrite(file, wrong.data(), 20, done, context));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_DATA);
    end();
    close(file);
}

} // namespace
