#include "socle/platform/code_pages.h"
#include "socle/platform/directories.h"
#include "socle/platform/file_times.h"
#include "socle/platform/posix/host/host_calls.h"
#include "tests/support/handles.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace platform;
namespace fs = std::filesystem;
using namespace std::string_literals;

std::vector<wide_string> search(wide_string const & pattern) {
    std::vector<wide_string> names;
    WIN32_FIND_DATAW data;
    file_search * const found = FindFirstFileW(pattern, data);
    if (found == nullptr)
        return names;
    do
        names.push_back(data.cFileName);
    while (FindNextFileW(found, data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    FindClose(found);
    return names;
}

uint32 search_code(wide_string const & pattern) {
    WIN32_FIND_DATAW data;
    file_search * const found = FindFirstFileW(pattern, data);
    if (found == nullptr)
        return GetLastError();
    FindClose(found);
    return 0;
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

TEST(platform_directories, take_their_streams_along) {
    ntfs_folder const folder;
    if (!folder.attached())
        GTEST_SKIP() << "no extended attributes in the folder for tests";
    ASSERT_EQ(code(CreateDirectoryW(u"N:\\d")), 0u);
    ASSERT_EQ(put(u"N:\\d:note", ""), 0u);
    EXPECT_EQ(search(u"N:\\*"), (std::vector<wide_string>{u".", u"..", u"d"}));
    EXPECT_EQ(code(RemoveDirectoryW(u"N:\\d")), 0u);
    ASSERT_EQ(code(CreateDirectoryW(u"N:\\d")), 0u);
    EXPECT_EQ(get(u"N:\\d:note"), "2");
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

} // namespace
