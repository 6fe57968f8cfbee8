#include "socle/io/attributes.h"
#include "socle/io/directory.h"
#include "socle/io/exception.h"
#include "socle/nio/attributes.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/platform/code_pages.h"
#include "socle/platform/error_text.h"
#include "socle/platform/errors.h"
#include "socle/platform/host.h"
#include "socle/platform/posix/host/host_error.h"
#include "tests/support/ntfs_folder.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

any::path path_in(scratch const & folder, std::string const & name) { return {folder.path(name), true}; }

TEST(io_directory, what_is_listed_but_cannot_be_reached_ends_the_emptying) {
    scratch const folder;
    // Its entries are listed, but an ordinary user reaches none of them.
    fs::create_directories(folder.host("tree/locked"));
    folder.write("tree/locked/listed", "");
    folder.write("tree/other", "");
    fs::permissions(folder.host("tree/locked"), fs::perms::owner_read | fs::perms::owner_write);
    io::directory tree(path_in(folder, "tree"));
    tree.unlink_with_children(false);
    EXPECT_FALSE(folder.exists("tree/other"));
    EXPECT_EQ(folder.exists("tree/locked"), geteuid() != 0);
    if (geteuid() != 0) {
        EXPECT_THROW(tree.unlink_with_children(true), io::exception);
        fs::permissions(folder.host("tree/locked"), fs::perms::owner_all);
    }
}

TEST(path, keeps_every_byte_of_the_hosts) {
    for (char const * host : {"/", "/a", "/tmp/\xC3\xA9\xFF/x:y\\z", "a/b"})
        EXPECT_EQ(any::path::from_host(host).to_host(), host);
    EXPECT_EQ(any::path::from_host("/a/./b").full_string(), u"C:\\a\\b");
}

TEST(code_pages, are_those_that_are_listed) {
    for (uint32 const page : {0u, 1u, 37u, 54936u}) {
        char16_t unit = u'a';
        char byte = 'a';
        EXPECT_EQ(platform::MultiByteToWideChar(page, "a", 1, &unit, 1), 0u);
        EXPECT_EQ(platform::WideCharToMultiByte(page, u"a", 1, &byte, 1, nullptr, nullptr), 0u);
        EXPECT_EQ(platform::last_error(), 87u);
    }
}

TEST(system_error, every_failure_of_the_host_has_a_text) {
    using namespace platform;
    for (auto const & [error, code] :
         {std::pair(0, 0u), std::pair(EMFILE, 4u), std::pair(ENFILE, 4u), std::pair(EACCES, 5u), std::pair(EROFS, 19u),
          std::pair(ENOSPC, 112u), std::pair(ENAMETOOLONG, 206u)})
        EXPECT_EQ(posix::code_of(posix::host_error(error)), code) << error;
    SetLastError(77);
    for (int error = 1; error < 140; ++error) {
        uint32 const code = posix::code_of(posix::host_error(error)).value();
        EXPECT_NE(code, 0u) << error;
        narrow_string const text = system_error_text(code);
        EXPECT_NE(text, "unknown error") << error;
        EXPECT_TRUE(!text.empty() && std::string_view("\r\n.").find(text.back()) == std::string_view::npos) << text;
    }
    EXPECT_EQ(system_error_text(0xFFFFFFFF), "unknown error");
    EXPECT_EQ(GetLastError(), 77u);
}

TEST(io_attributes, are_no_guess_where_the_host_fails) {
    scratch const folder;
    folder.write("file", "x");
    io::attributes set;
    set.created = any::time(126227808000000000, nio::time::format_file_time);
    set.apply(path_in(folder, "file"), 0);
    for (char const * const failing : {"getxattr", "listxattr"}) {
        watched_calls const refused(failing, EIO);
        EXPECT_THROW(io::attributes().load(path_in(folder, "file"), 0), io::exception) << failing;
    }
}

TEST(io_attributes, keep_what_a_host_without_extended_attributes_can) {
    scratch const folder;
    folder.write("from", "x");
    folder.write("to", "y");
    watched_calls const refused("getxattr lgetxattr setxattr removexattr listxattr", ENOTSUP);
    io::attributes set, got;
    set.load(path_in(folder, "from"), 0);
    set.modified = any::time(126227808000000000, nio::time::format_file_time);
    set.created = set.modified.value();
    io::win32::attributes bits;
    bits.flags = 0x23; // read-only, hidden and archive
    set.win32 = bits;
    set.apply(path_in(folder, "to"), 0);
    got.load(path_in(folder, "to"), 0);
    EXPECT_EQ(got.modified.value().file_time(), set.modified.value().file_time());
    EXPECT_TRUE(got.read_only.value());
    EXPECT_EQ(got.win32.value().flags, 0x21u); // what is hidden cannot be kept
    EXPECT_FALSE(io::item(path_in(folder, "to")).directory());
}

TEST(nio_attributes, tell_why_the_stream_of_the_information_cannot_be_opened) {
    ntfs_folder const ntfs;
    if (!ntfs.attached())
        GTEST_SKIP() << ntfs_folder::limit;
    ntfs.write("f", "x");
    nio::file file(u"N:\\f", nio::file::mode_read);
    file.close();
    nio::attributes set(file);
    set.finder_info.fill('f');
    watched_calls const held("flock", EWOULDBLOCK);
    EXPECT_THROW(set.apply(file, true, true), nio::exception);
    EXPECT_EQ(platform::last_error(), 32u);
}

} // namespace
