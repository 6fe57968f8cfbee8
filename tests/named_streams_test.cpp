// Named streams of files on attached volumes: how long they live, where they are found again, and their backups.

#include "socle/nio/file.h"
#include "socle/platform/backup.h"
#include "socle/platform/directories.h"
#include "socle/platform/posix/paths/volumes.h"
#include "socle/platform/stream_names.h"
#include "tests/support/handles.h"
#include "tests/support/ntfs_folder.h"
#include "tests/support/ntfs_image.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <thread>

namespace {

using namespace platform;
using namespace std::string_literals;
namespace fs = std::filesystem;
using names = std::vector<wide_string>;

class named_streams_test : public testing::Test {
protected:
    named_streams_test() { fs::create_directory(path("")); }
    ~named_streams_test() override {
        detach_volume('N');
        detach_volume('M');
    }

    void SetUp() override { attach("volume"); }

    void attach(char const * volume) const {
        detach_volume('N');
        ASSERT_EQ(attach_volume('N', here_.host(volume), "NTFS"), 0u) << "no extended attributes in /var/tmp?";
    }

    fs::path path(std::string const & name) const { return here_.host("volume/" + name); }

    /// Makes a file with one stream, "note".
    void make(std::string const & name, std::string const & note = "mine") const {
        here_.write("volume/" + name, "data");
        EXPECT_EQ(put(u"N:\\" + from_host(name) + u":note", note), 0u);
    }

    static names list(wide_string const & file) {
        names found;
        EXPECT_EQ(posix::volume_of_letter(file[0])->streams->list(to_host(file).c_str(), found), 0u);
        return found;
    }

    /// A copy with the extended attributes, as tools make it that keep them.
    void copy_all(std::string const & from, std::string const & to) const {
        std::string const command = "cp -a '" + here_.host(from).string() + "' '" + here_.host(to).string() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    scratch here_;
};

TEST(stream_names, parse) {
    struct row {
        wide_string text;
        uint32 code;
        wide_string name;
    };
    wide_string const longest(255, u'n');
    for (row const & r : {
             row{u"note", 0, u"note"},
             row{u"note:$DATA", 0, u"note"},
             row{u"note:$data", 0, u"note"},
             row{u"$DATA", 0, u"$DATA"},
             row{u":$DATA", 0, u""},
             row{u"a?<*\x01", 0, u"a?<*\x01"},
             row{longest, 0, longest},
             row{longest + u"n", 123, u""},
             row{u"", 123, u""},
             row{u":", 123, u""},
             row{u"note:", 123, u""},
             row{u"note:$INDEX", 123, u""},
             row{u"note:$DATA:", 123, u""},
             row{u"a\\b", 123, u""},
             row{u"a/b", 123, u""},
             row{wide_string(u"a\0b", 3), 123, u""},
         }) {
        wide_string name;
        EXPECT_EQ(parse_stream_name(r.text, name), r.code);
        EXPECT_EQ(name, r.name);
    }
}

TEST(stream_names, stored_names_are_safe_and_come_back) {
    for (wide_string const & name :
         {wide_string(u"AFP_Resource"), wide_string(u".."), wide_string(u"a+b~"), wide_string(u"\xd800 \x01"),
          wide_string(255, u'x'), wide_string(255, u'\x4e00'), wide_string(120, u'x')}) {
        narrow_string stored = stored_stream_name(name);
        std::size_t length = 0;
        for (char c : stored) {
            length = c == '/' ? 0 : length + 1;
            EXPECT_LE(length, 143u);
        }
        EXPECT_EQ(stored.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_+~/"), narrow_string::npos);
        std::erase_if(stored, [](char c) { return c == '~' || c == '/'; });
        wide_string back;
        EXPECT_TRUE(stream_name_of(stored, back));
        EXPECT_EQ(back, name);
    }
    wide_string back;
    for (char const * foreign : {"", "+004", "+00zz", "+0061", "A", ".", "a b"})
        EXPECT_FALSE(stream_name_of(foreign, back)) << foreign;
}

/// What both stores do: our own, and that of a mounted disk (the parameter is true).
class both_stores_test : public named_streams_test, public testing::WithParamInterface<bool> {
protected:
    ~both_stores_test() override { detach_volume('N'); }

    void SetUp() override {
        if (GetParam()) {
            disk_.emplace(here_.host("image"), path(""));
            if (!disk_->mounted())
                GTEST_SKIP() << "an NTFS image cannot be made or mounted here";
        }
        attach("volume");
        EXPECT_FALSE(fs::exists(path(".socle_streams")));
    }

    std::optional<ntfs_image> disk_;
};

INSTANTIATE_TEST_SUITE_P(stores, both_stores_test, testing::Bool(),
                         [](auto const & store) { return store.param ? "disk" : "own"; });

TEST_P(both_stores_test, live_with_their_file) {
    wide_string const longest = u":" + wide_string(255, u'\x4e00');
    here_.write("volume/file", "data");
    EXPECT_EQ(list(u"N:\\file"), names{});
    EXPECT_EQ(get(u"N:\\file:note"), "2");
    EXPECT_EQ(put(u"N:\\file:note", "one") + put(u"N:\\file" + longest, "two"), 0u);
    EXPECT_EQ(list(u"N:\\file"), (names{u"note", longest.substr(1)}));
    EXPECT_EQ(get(u"N:\\file" + longest), "two");

    fs::create_directory(path("folder"));
    fs::rename(path("file"), path("folder/moved"));
    fs::create_hard_link(path("folder/moved"), path("second"));
    fs::create_symlink("second", path("link"));
    for (wide_string const name : {u"folder\\moved", u"second", u"link"})
        EXPECT_EQ(get(u"N:\\" + name + u":note"), "one");
    for (wide_string const name : {u"folder\\moved", u"link"}) {
        EXPECT_TRUE(DeleteFileW(u"N:\\" + name));
        EXPECT_EQ(get(u"N:\\second:note"), "one");
    }
    EXPECT_TRUE(DeleteFileW(u"N:\\second"));
    if (!GetParam())
        EXPECT_EQ(here_.entries("volume/.socle_streams"), 0u);
    EXPECT_EQ(put(u"N:\\second", ""), 0u);
    EXPECT_EQ(list(u"N:\\second"), names{});
}

TEST_P(both_stores_test, folders_have_them_too) {
    fs::create_directory(path("folder"));
    EXPECT_EQ(put(u"N:\\folder:s", "of a folder") + put(u"N:\\:s", "of the volume"), 0u);
    EXPECT_EQ(get(u"N:\\folder:s") + get(u"N:\\:s"), "of a folderof the volume");
    EXPECT_EQ(list(u"N:\\"), (names{u"s"}));
    EXPECT_TRUE(RemoveDirectoryW(u"N:\\folder") && DeleteFileW(u"N:\\:s"));
    if (!GetParam())
        EXPECT_EQ(here_.entries("volume/.socle_streams"), 1u) << "those of the folder have gone, too";
    EXPECT_EQ(list(u"N:\\"), names{});
}

TEST_P(both_stores_test, move_with_their_file) {
    std::string bytes; // a megabyte, no two parts of which are alike
    for (int i = 0; i < 200'000; ++i)
        bytes += std::to_string(i);
    make("file", bytes);
    EXPECT_EQ(put(u"N:\\file:empty", ""), 0u);
    fs::create_directory(here_.host("other"));
    ASSERT_EQ(attach_volume('M', here_.host("other"), "NTFS"), 0u);
    EXPECT_EQ(code(MoveFileW(u"N:\\file", u"N:\\moved")), 0u);
    EXPECT_EQ(code(MoveFileW(u"N:\\moved", here_.path("plain"))), ERROR_NOT_SUPPORTED) << "they would be lost";
    for (wide_string const file : {u"N:\\moved", u"M:\\file"}) {
        EXPECT_EQ(list(file), (names{u"empty", u"note"}));
        EXPECT_TRUE(get(file + u":note") == bytes);
        EXPECT_TRUE(nio::file(file + u":note:$DATA", nio::file::mode_read_write).resize(bytes.size() / 2));
        bytes.resize(bytes.size() / 2);
        EXPECT_EQ(code(MoveFileW(u"N:\\moved", u"M:\\file")), file[0] == u'N' ? 0u : 2u);
    }
    EXPECT_EQ(get(u"M:\\file") + get(u"N:\\moved"), "data2");
    EXPECT_EQ(code(MoveFileW(u"M:\\file:note", u"M:\\file:other")), ERROR_INVALID_NAME);
}

TEST_F(named_streams_test, what_cannot_have_them) {
    for (uint32 const access : {GENERIC_WRITE, GENERIC_READ})
        EXPECT_EQ(code(CreateFileW(u"N:\\missing:s", access, share_all, OPEN_EXISTING, 0) != INVALID_HANDLE_VALUE), 2u);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_NE(put(u"N:\\pipe:s", ""), 0u);
    EXPECT_EQ(here_.entries("volume/.socle_streams"), 0u);
    EXPECT_EQ(list(u"N:\\pipe"), names{});
    EXPECT_EQ(attach_volume('M', "/proc/self", "NTFS"), ERROR_NOT_SUPPORTED);
    watched_calls const none("getxattr lgetxattr setxattr removexattr listxattr", ENOTSUP);
    EXPECT_EQ(list(u"N:\\"), names{}) << "where another file system is mounted";
}

TEST_F(named_streams_test, made_by_many_at_once) {
    if (auto const limit = support::limit_of_processes(); !limit.empty())
        GTEST_SKIP() << limit;
    for (std::string const file : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
        here_.write("volume/" + file, "data");
        wide_string const path = u"N:\\" + from_host(file);
        std::vector<std::thread> threads;
        for (char16_t name = u'a'; name < u'i'; ++name)
            threads.emplace_back([&, name] { EXPECT_EQ(put(path + u':' + name, "x"), 0u); });
        for (std::thread & thread : threads)
            thread.join();
        EXPECT_EQ(list(path).size(), 8u);
    }
}

TEST_F(named_streams_test, a_copy_has_none_while_its_original_is_there) {
    make("file");
    copy_all("volume/file", "volume/copy");
    EXPECT_EQ(get(u"N:\\copy:note"), "2");
    EXPECT_EQ(put(u"N:\\copy:note", "its own"), 0u);
    EXPECT_EQ(get(u"N:\\file:note"), "mine");
    EXPECT_TRUE(DeleteFileW(u"N:\\copy"));
    EXPECT_EQ(get(u"N:\\file:note"), "mine");
    copy_all("volume/file", "volume/copy");
    EXPECT_TRUE(DeleteFileW(u"N:\\file"));
    EXPECT_EQ(list(u"N:\\copy"), names{}) << "they have been removed with their file";
}

TEST_F(named_streams_test, a_copy_takes_over_where_its_original_has_gone) {
    make("file");
    copy_all("volume/file", "volume/file.new");
    fs::rename(path("file.new"), path("file"));
    EXPECT_EQ(get(u"N:\\file:note"), "mine");
    copy_all("volume/file", "volume/other");
    EXPECT_EQ(put(u"N:\\file:note", "changed"), 0u);
    EXPECT_EQ(get(u"N:\\file:note"), "changed");
    // The original may have been moved, not removed, and then each has its own.
    fs::rename(path("file"), path("old"));
    copy_all("volume/old", "volume/file");
    EXPECT_EQ(get(u"N:\\file:note"), "changed");
    EXPECT_EQ(put(u"N:\\file:more", "of the copy") + put(u"N:\\file:note", "of the copy"), 0u);
    EXPECT_EQ(get(u"N:\\old:note"), "changed");
    EXPECT_EQ(list(u"N:\\old"), names{u"note"});
}

TEST_F(named_streams_test, a_copied_or_moved_volume_keeps_them) {
    for (char const * name : {"a", "renamed", "copied"})
        make(name, name);
    fs::rename(path("renamed"), path("r"));
    copy_all("volume/copied", "volume/x copy");
    fs::create_hard_link(path("a"), path("b"));
    EXPECT_EQ(put(u"N:\\:note", "of the volume"), 0u);
    auto const expect_all = [&](char const * volume) {
        attach(volume);
        EXPECT_EQ(get(u"N:\\:note") + get(u"N:\\x copy:note"), "of the volume2");
        EXPECT_EQ(get(u"N:\\a:note") + get(u"N:\\b:note"), "aa");
        EXPECT_EQ(get(u"N:\\r:note") + get(u"N:\\copied:note"), "renamedcopied");
    };
    fs::rename(path(""), here_.host("moved"));
    expect_all("moved");
    copy_all("moved", "copy");
    expect_all("copy");
    expect_all("moved");
    // The streams of a copy are copies.
    attach("copy");
    EXPECT_EQ(put(u"N:\\a:note", "new"), 0u);
    EXPECT_TRUE(DeleteFileW(u"N:\\r"));
    EXPECT_EQ(get(u"N:\\b:note"), "new");
    expect_all("moved");
}

// A copy that cannot be written.
TEST_F(named_streams_test, a_read_only_copy_shows_them) {
    make("a");
    copy_all("volume", "copy");
    watched_calls const refused("setxattr removexattr chmod chown mkdir", EROFS);
    attach("copy");
    fs::permissions(here_.host("copy/a"), fs::perms::owner_all);
    EXPECT_EQ(get(u"N:\\a:note"), "mine");
    EXPECT_EQ(put(u"N:\\a:note", ""), ERROR_WRITE_PROTECT);
}

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

// What is read and written in pieces, and of other records, the model of backups says.
TEST_F(backup, goes_to_the_file_wherever_it_lies) {
    volume.write("from", "data");
    volume.write("to", "longer data");
    put(u"N:\\from:note", "of the stream");
    put(u"N:\\from:empty", "");
    put(u"N:\\to:note", "something longer that goes");
    int const from = open(volume.host("from").c_str(), O_RDONLY), to = open(volume.host("to").c_str(), O_RDWR);
    fs::rename(volume.host("from"), volume.host("moved"));
    std::string const records = read(from, 1000);
    EXPECT_EQ(records, "\1\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0data"
                       "\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x18\0\0\0:\0e\0m\0p\0t\0y\0:\0$\0D\0A\0T\0A\0"
                       "\4\0\0\0\0\0\0\0\15\0\0\0\0\0\0\0\x16\0\0\0:\0n\0o\0t\0e\0:\0$\0D\0A\0T\0A\0of the stream"s);
    end();
    uint32 done = 0;
    EXPECT_TRUE(BackupWrite(to, records.data(), uint32(records.size()), done, context));
    EXPECT_EQ(done, records.size());
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
