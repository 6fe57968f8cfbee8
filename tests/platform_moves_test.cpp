#include "socle/platform/file_times.h"
#include "tests/support/elsewhere.h"
#include "tests/support/handles.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using namespace platform;
namespace fs = std::filesystem;

TEST(platform_moves, go_where_nothing_is) {
    scratch const folder;
    folder.write("file", "bytes");
    folder.write("other", "other");
    fs::create_directories(folder.host("tree/sub"));
    fs::create_symlink("nothing", folder.host("dangling"));
    fs::create_symlink("tree", folder.host("link"));
    fs::create_hard_link(folder.host("other"), folder.host("twin"));
    fs::permissions(folder.host("other"), fs::perms::owner_read);
    struct {
        char const * from;
        char const * to;
        uint32 code;
    } const table[] = {
        {"file", "other", 183},      {"file", "tree", 183},         {"file", "dangling", 183}, {"none", "new", 2},
        {"none/x", "new", 3},        {"file", "none/new", 3},       {"file", "other/new", 3},  {"file", "a?b", 123},
        {"file", "new/", 3},         {"tree", "tree/sub/in", 32},   {"tree", "tree", 0},       {"file", "file", 0},
        {"link/sub", "tree/sub", 0}, {"other", "twin", 183},        {"file", "tree/file", 0},  {"tree/file", "back", 0},
        {"other", "tree/other", 0},  {"dangling", "link/moved", 0}, {"tree/sub", "sub/", 0},   {"link", "renamed", 0},
    };
    for (auto const & c : table)
        EXPECT_EQ(code(MoveFileW(folder.path(c.from), folder.path(c.to))), c.code) << c.from << " to " << c.to;
    EXPECT_EQ(folder.read("back"), "bytes");
    EXPECT_EQ(folder.read("tree/other"), "other");
    EXPECT_TRUE(fs::is_symlink(folder.host("tree/moved")) && fs::is_symlink(folder.host("renamed")));
    EXPECT_TRUE(fs::is_directory(folder.host("sub")));
    folder.write("odd?", "found");
    EXPECT_EQ(code(MoveFileW(folder.path("odd?"), folder.path("even"))), 0u);
}

uint64 modified(wide_string const & path, uint64 & created) {
    int const file = CreateFileW(path, 0, 3, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    uint64 time = 0;
    EXPECT_TRUE(GetFileTime(file, created, time));
    CloseHandle(file);
    return time;
}

TEST(platform_moves, go_between_file_systems_with_all_that_belongs_to_a_file) {
    scratch const folder;
    elsewhere const other;
    if (!other.differs_from(folder))
        GTEST_SKIP() << "there is one file system only";
    std::string const bytes(1 << 20, 'b');
    folder.write("file", bytes);
    setxattr(folder.host("file").c_str(), "user.note", "n", 1, 0);
    SetFileAttributesW(folder.path("file"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY);
    uint64 created = 0, created_then = 0;
    uint64 const time = modified(folder.path("file"), created);
    fs::create_symlink("/nothing", folder.host("link"));
    fs::create_directory(folder.host("tree"));
    ASSERT_EQ(mkfifo(folder.host("pipe").c_str(), 0600), 0);

    folder.write("busy", "b");
    int const writer = CreateFileW(folder.path("busy"), GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, 0);
    EXPECT_EQ(code(MoveFileW(folder.path("busy"), other.path("busy"))), ERROR_SHARING_VIOLATION);
    CloseHandle(writer);
    EXPECT_EQ(code(MoveFileW(folder.path("tree"), other.path("tree"))), ERROR_NOT_SAME_DEVICE);
    EXPECT_EQ(code(MoveFileW(folder.path("pipe"), other.path("pipe"))), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(code(MoveFileW(folder.path("link"), other.path("link"))), 0u);
    EXPECT_EQ(fs::read_symlink(other.host("link")), "/nothing");
    EXPECT_EQ(code(MoveFileW(folder.path("file"), other.path("link"))), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(code(MoveFileW(folder.path("file"), other.path("file"))), 0u);
    EXPECT_FALSE(folder.exists("file"));
    EXPECT_EQ(other.read("file"), bytes);
    EXPECT_EQ(modified(other.path("file"), created_then), time);
    EXPECT_TRUE((GetFileAttributesW(other.path("file")) & FILE_ATTRIBUTE_READONLY) != 0);
    // And back, where attributes are kept.
    EXPECT_EQ(code(MoveFileW(other.path("file"), folder.path("file"))), 0u);
    EXPECT_EQ(modified(folder.path("file"), created_then), time);
    EXPECT_EQ(other.entries(), 1u);
}

TEST(platform_moves, take_streams_to_another_volume) {
    scratch const folder;
    fs::create_directory(folder.host("n"));
    if (attach_volume('N', folder.host("n"), "NTFS") != 0)
        GTEST_SKIP() << "no extended attributes in the folder for tests";
    fs::create_directory(folder.host("m"));
    ASSERT_EQ(attach_volume('M', folder.host("m"), "NTFS"), 0u);
    EXPECT_EQ(put(u"N:\\f", "data") + put(u"N:\\f:note", "remember"), 0u);
    EXPECT_EQ(code(MoveFileW(u"N:\\f", u"N:\\g")), 0u);
    EXPECT_EQ(get(u"N:\\g:note"), "remember");
    EXPECT_EQ(code(MoveFileW(u"N:\\g", folder.path("plain"))), ERROR_NOT_SUPPORTED); // it would lose the stream
    EXPECT_EQ(get(u"N:\\g:note"), "remember");
    EXPECT_EQ(code(MoveFileW(u"N:\\g", u"M:\\h")), 0u);
    EXPECT_EQ(get(u"M:\\h") + get(u"M:\\h:note"), "dataremember");
    EXPECT_EQ(get(u"N:\\g"), "2");
    EXPECT_EQ(code(MoveFileW(u"M:\\h:note", u"M:\\h:other")), ERROR_INVALID_NAME);
    detach_volume('N');
    detach_volume('M');
}

TEST(platform_moves, hold_where_the_host_promises_less) {
    scratch const folder;
    for (char const * calls : {"rename_no_replace", "rename_no_replace link"}) {
        watched_calls const refused(calls, EPERM);
        folder.write("file", "bytes");
        folder.write("there", "there");
        fs::create_directories(folder.host("tree/sub"));
        EXPECT_EQ(code(MoveFileW(folder.path("file"), folder.path("there"))), 183u);
        EXPECT_EQ(code(MoveFileW(folder.path("file"), folder.path("moved"))), 0u);
        EXPECT_EQ(code(MoveFileW(folder.path("tree"), folder.path("branch"))), 0u);
        EXPECT_EQ(folder.read("moved"), "bytes");
        EXPECT_EQ(folder.read("there"), "there");
        EXPECT_TRUE(folder.exists("branch/sub"));
        fs::remove(folder.host("moved"));
        fs::remove_all(folder.host("branch"));
    }
}

TEST(platform_moves, leave_a_file_that_changes_meanwhile) {
    scratch const folder;
    elsewhere const other;
    if (!other.differs_from(folder))
        GTEST_SKIP() << "there is one file system only";
    folder.write("file", "bytes");
    watched_calls const watched([&](std::string const & call) {
        if (call == "chown")
            std::ofstream(folder.host("file"), std::ios::app) << " and more";
        return 0;
    });
    EXPECT_EQ(code(MoveFileW(folder.path("file"), other.path("file"))), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(folder.read("file"), "bytes and more");
    EXPECT_EQ(other.entries(), 0u);
}

} // namespace
