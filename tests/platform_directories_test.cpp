#include "socle/platform/directories.h"
#include "socle/platform/file_times.h"
#include "tests/support/elsewhere.h"
#include "tests/support/handles.h"
#include "tests/support/ntfs_folder.h"
#include "tests/support/watched_calls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

using namespace platform;
namespace fs = std::filesystem;
using namespace std::string_literals;

uint32 search_code(wide_string const & pattern) {
    WIN32_FIND_DATAW data;
    return code(search_handle(FindFirstFileW(pattern, data)) != nullptr);
}

TEST(platform_directories, are_searched_in_the_native_order) {
    scratch const folder;
    for (char const * name : {"b", "A", "a", "_", "B1", "\xC3\xA4", "\xC3\x84z", "!", "C", "c\xFF", "q?\\:\n"})
        folder.write(name, "");
    std::vector<wide_string> const expected = {
        u".", u"..", u"!", u"A", u"a", u"b", u"B1", u"C", u"c\xDCFF", u"q?\xF05C\xF03A\n", u"_", u"\xE4", u"\xC4z"};
    EXPECT_EQ(search(folder.path("*")), expected);
    EXPECT_EQ(search(folder.path("") + u"/*"), expected);
    EXPECT_EQ(search(folder.path("A")), (std::vector<wide_string>{u"A"}));

    // What is found can be opened and deleted by the name that was found, whatever the host thinks of it.
    WIN32_FIND_DATAA narrow;
    file_search * const ansi = FindFirstFileA("C:" + folder.folder() + "\\*", narrow);
    std::vector<narrow_string> names;
    do
        names.push_back(narrow.cFileName);
    while (FindNextFileA(ansi, narrow));
    FindClose(ansi);
    EXPECT_EQ(names, (std::vector<narrow_string>{".", "..", "!", "A", "a", "b", "B1", "C", "_", "\xE4", "\xC4z"}));
}

TEST(platform_directories, say_why_there_is_no_search) {
    scratch const folder;
    folder.write("file", "");
    fs::create_directory(folder.host("empty"));
    fs::create_symlink("empty", folder.host("link"));
    fs::create_symlink("nothing", folder.host("dangling"));
    struct {
        char const * pattern;
        uint32 code;
    } const table[] = {{"empty/*", 0}, {"link/*", 0},    {"none/*", 3},   {"file/*", 267}, {"dangling/*", 3},
                       {"none", 2},    {"none/none", 3}, {"dangling", 0}, {"a*b", 50},     {"empty/", 2}};
    for (auto const & c : table)
        EXPECT_EQ(search_code(folder.path("") + u"\\" + from_host(c.pattern)), c.code) << c.pattern;
    EXPECT_EQ(search_code(folder.path("empty") + u":s\\*"), 267u);
    EXPECT_EQ(search_code(u"C:\\*"), 0u);
    EXPECT_EQ(search_code(u"."), 0u);
    EXPECT_EQ(search_code(u"Q:\\*"), 3u);
    EXPECT_EQ(search(folder.path("empty") + u"\\*"), (std::vector<wide_string>{u".", u".."}));
}

TEST(platform_directories, are_made_and_removed) {
    scratch const folder;
    folder.write("file", "");
    fs::create_directory(folder.host("full"));
    folder.write("full/x", "");
    fs::create_symlink("full", folder.host("link"));
    fs::create_symlink("file", folder.host("file_link"));
    fs::create_symlink("nothing", folder.host("dangling"));
    struct {
        char const * name;
        uint32 create, remove;
    } const table[] = {
        {"file/new", 3, 3}, {"file_link", 183, 267}, {"dangling", 183, 267}, {"a?b", 123, 123}, {"link", 183, 0},
    };
    for (auto const & c : table) {
        auto const path = folder.path(c.name);
        EXPECT_EQ(code(CreateDirectoryW(path)), c.create) << c.name;
        EXPECT_EQ(code(RemoveDirectoryW(path)), c.remove) << c.name;
    }
    EXPECT_TRUE(folder.exists("full/x"));
    EXPECT_FALSE(folder.exists("link"));
    fs::create_directory(folder.host("odd?"));
    EXPECT_EQ(code(RemoveDirectoryW(folder.path("odd?"))), 0u);
    EXPECT_EQ(code(CreateDirectoryW(u"")), 3u);
}

TEST(platform_directories, reach_what_the_host_calls_as_it_likes) {
    scratch const folder;
    fs::create_directory(folder.host("f"));
    fs::create_directory(folder.host("n"));
    bool const ntfs = attach_volume('N', folder.host("n"), "NTFS") == 0;
    for (std::string const inside : {"f", "n"}) {
        for (std::string const & name :
             {"\xFF\xFE"s, "a\\b"s, "a:b"s, "what?"s, "line\nend"s, "tab\tx"s, "*"s, "<>|\""s, " blanks . "s, "nul"s,
              "\xEF\x81\x9C"s, "\xED\xA0\x80"s, "\xF0\x9F\x98\x80"s, std::string(255, 'x')}) {
            SCOPED_TRACE(name);
            std::string const host = inside + "/" + name;
            folder.write(host, "bytes");
            auto const found = search(folder.path(inside) + u"\\*");
            wide_string const path = folder.path(inside) + u'\\' + found.back();
            EXPECT_EQ(get(path), "bytes");
            EXPECT_EQ(to_host(path), folder.host(host));
            EXPECT_EQ(code(MoveFileW(path, folder.path(inside) + u"\\plain")), 0u);
            EXPECT_EQ(folder.read(inside + "/plain"), "bytes");
            EXPECT_EQ(code(DeleteFileW(folder.path(inside) + u"\\plain")), 0u);
            EXPECT_FALSE(folder.exists(host));
        }
        for (char16_t const * const unsafe : {u"a\"b", u"a*", u"a<", u">", u"a?b", u"a|b", u"a\x1F"}) {
            auto const path = folder.path(inside) + u'\\' + unsafe;
            EXPECT_EQ(put(path, ""), ERROR_INVALID_NAME);
            EXPECT_EQ(code(CreateDirectoryW(path)), ERROR_INVALID_NAME);
        }
    }
    if (ntfs)
        detach_volume('N');
}

using two_times = std::pair<uint64, uint64>; // of creation and of change
constexpr two_times in_2001_and_2012(126227808001234567, 130000000007654321);

two_times times_of(wide_string const & path) {
    two_times now;
    int const file = CreateFileW(path, 0, share_all, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    EXPECT_TRUE(GetFileTime(file, now.first, now.second) && CloseHandle(file));
    return now;
}

void set_times(wide_string const & path, uint64 const * created, uint64 const * modified) {
    int const file = CreateFileW(path, GENERIC_WRITE, share_all, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    EXPECT_TRUE(SetFileTime(file, created, modified) && CloseHandle(file)) << to_host(path);
}

TEST(platform_file_times, are_kept_for_files_folders_and_what_cannot_be_written) {
    scratch const folder;
    folder.write("file", "x");
    folder.write("locked", "x");
    fs::permissions(folder.host("locked"), fs::perms::owner_read);
    fs::create_directory(folder.host("folder"));
    auto const & [created, modified] = in_2001_and_2012;
    uint64 const before_1970 = 100000000000000000;
    for (char const * name : {"file", "locked", "folder"}) {
        auto const path = folder.path(name);
        auto const before = times_of(path);
        EXPECT_TRUE(before.first > created && before.first <= before.second);
        set_times(path, nullptr, &modified);
        EXPECT_EQ(times_of(path), two_times(before.first, modified)) << name;
        set_times(path, &created, nullptr);
        EXPECT_EQ(times_of(path), in_2001_and_2012) << name;
        set_times(path, &before_1970, &before_1970);
        EXPECT_EQ(times_of(path), two_times(before_1970, before_1970)) << name;
    }
    struct stat status {};
    ASSERT_EQ(stat(folder.host("locked").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0400u);
}

TEST(platform_file_times, are_the_same_by_path_and_by_handle) {
    ntfs_folder const folder;
    ASSERT_TRUE(folder.attached()) << ntfs_folder::limit;
    fs::create_directory(folder.host("folder"));
    for (char const * name : {"plain", "dated", "hidden"})
        folder.write(name, "x");
    fs::create_symlink("dated", folder.host("link"));
    fs::create_symlink("folder", folder.host("folder link"));
    fs::create_symlink("nothing", folder.host("lost link"));
    EXPECT_EQ(put(u"N:\\dated:note", ""), 0u);
    for (wide_string const path : {u"N:\\dated", u"N:\\dated:note", u"N:\\folder"})
        set_times(path, &in_2001_and_2012.first, &in_2001_and_2012.second);
    EXPECT_TRUE(SetFileAttributesW(u"N:\\hidden", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY));
    for (wide_string const name : {u"plain", u"dated", u"hidden", u"folder", u"folder\\", u"link", u"folder link",
                                   u"lost link", u"dated:note", u"none", u"none\\x", u"dated:none"}) {
        SCOPED_TRACE(std::string(name.begin(), name.end()));
        WIN32_FILE_ATTRIBUTE_DATA data{};
        uint32 const asked = code(GetFileAttributesExW(u"N:\\" + name, data));
        uint32 const bits = GetFileAttributesW(u"N:\\" + name);
        EXPECT_EQ(asked, code(bits != INVALID_FILE_ATTRIBUTES));
        if (asked != 0)
            continue;
        EXPECT_EQ(data.dwFileAttributes, bits);
        auto const times = times_of(u"N:\\" + name);
        EXPECT_EQ(two_times(data.ftCreationTime, data.ftLastWriteTime), times);
        bool const dated = name.starts_with(u"dated") || name.starts_with(u"folder") || name == u"link";
        EXPECT_EQ(times == in_2001_and_2012, dated);
    }
}

TEST(platform_directories, show_no_store_of_streams_however_they_are_reached) {
    scratch const folder;
    fs::create_directory(folder.host("volume"));
    ASSERT_EQ(attach_volume('N', folder.host("volume"), "NTFS"), 0u);
    EXPECT_EQ(put(u"N:\\f:note", ""), 0u);
    fs::create_directory_symlink("volume", folder.host("link"));
    fs::create_directory_symlink(".socle_streams", folder.host("volume/inside"));
    std::vector<wide_string> const expected = {u".", u"..", u"f", u"inside"};
    for (wide_string const & pattern : {wide_string(u"N:\\*"), folder.path("volume/*"), folder.path("link/*")})
        EXPECT_EQ(search(pattern), expected);
    EXPECT_EQ(search_code(u"N:\\inside\\*"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(detach_volume('N'), 0u);
}

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

TEST(platform_moves, go_between_file_systems_with_all_that_belongs_to_a_file) {
    scratch const folder;
    elsewhere const other;
    if (!other.differs_from(folder))
        GTEST_SKIP() << "there is one file system only";
    std::string const bytes(1 << 20, 'b');
    folder.write("file", bytes);
    setxattr(folder.host("file").c_str(), "user.note", "n", 1, 0);
    SetFileAttributesW(folder.path("file"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY);
    uint64 const time = times_of(folder.path("file")).second;
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
    EXPECT_EQ(times_of(other.path("file")).second, time);
    EXPECT_TRUE((GetFileAttributesW(other.path("file")) & FILE_ATTRIBUTE_READONLY) != 0);
    // And back, where attributes are kept.
    EXPECT_EQ(code(MoveFileW(other.path("file"), folder.path("file"))), 0u);
    EXPECT_EQ(times_of(folder.path("file")).second, time);
    EXPECT_EQ(other.entries(), 1u);
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
