// Folders that are held open: what is done in them is done nowhere else.

#include "socle/platform/folders.h"
#include "tests/support/deep_folders.h"
#include "tests/support/handles.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <vector>

namespace {

using namespace platform;
namespace fs = std::filesystem;

struct entry {
    wide_string name;
    uint32 kind;
    bool operator==(entry const &) const = default;
};

std::vector<entry> entries(open_folder const & folder) {
    std::vector<entry> found;
    WIN32_FIND_DATAW data;
    file_search * const search = FindFirstFileW(folder, data);
    for (bool more = search != nullptr; more; more = FindNextFileW(search, data))
        found.push_back({data.cFileName, data.dwFileAttributes});
    FindClose(search);
    return found;
}

TEST(platform_folders, open_without_following_a_link) {
    scratch const here;
    fs::create_directories(here.host("folder/sub"));
    fs::create_directory_symlink("folder", here.host("link"));
    fs::create_directory_symlink("nothing", here.host("dangling"));
    fs::create_directory_symlink("../folder", here.host("folder/link"));
    here.write("file", "");
    here.write("folder/file", "");
    mkfifo(here.host("pipe").c_str(), 0600);
    struct {
        wide_string path;
        uint32 code;
    } const paths[] = {
        {u"folder", 0},  {u"folder/", 0},   {u"folder/sub\\.\\", 0}, {u"link/sub", 0},   {u"link", 267},
        {u"link/", 267}, {u"link\\.", 267}, {u"link/.//", 267},      {u"dangling", 267}, {u"file", 267},
        {u"pipe", 267},  {u"none", 3},      {u"file/x", 267},        {u"none/x", 3},
    };
    for (auto const & c : paths)
        EXPECT_EQ(code(open_folder().open(here.path("") + c.path)), c.code)
            << narrow_string(c.path.begin(), c.path.end());
    open_folder folder;
    ASSERT_TRUE(folder.open(here.path("folder")));
    EXPECT_EQ(code(open_folder().open(folder, u"link")), ERROR_DIRECTORY);
    EXPECT_EQ(code(open_folder().open(folder, u"\xD800")), ERROR_INVALID_NAME);
}

TEST(platform_folders, list_what_kind_their_entries_are) {
    scratch const here;
    fs::create_directory(here.host("Folder"));
    fs::create_directory_symlink("Folder", here.host("to_folder"));
    fs::create_symlink("plain", here.host("to_file"));
    fs::create_symlink("nothing", here.host("dangling"));
    here.write("plain", "");
    mkfifo(here.host("pipe").c_str(), 0600);
    open_folder folder;
    ASSERT_TRUE(folder.open(here.path("")));
    std::vector<entry> const expected = {
        {u"dangling", FILE_ATTRIBUTE_REPARSE_POINT},
        {u"Folder", FILE_ATTRIBUTE_DIRECTORY},
        {u"pipe", FILE_ATTRIBUTE_DEVICE},
        {u"plain", 0},
        {u"to_file", FILE_ATTRIBUTE_REPARSE_POINT},
        {u"to_folder", FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY},
    };
    EXPECT_EQ(entries(folder), expected);
    for (entry const & each : expected) {
        EXPECT_EQ(GetFileKindW(folder, each.name), each.kind);
        EXPECT_EQ(GetFileKindW(here.path("") + each.name), each.kind);
        uint32 const all = GetFileAttributesW(folder, each.name);
        constexpr uint32 kinds = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT;
        EXPECT_EQ(all & kinds, each.kind);
        EXPECT_EQ(all, GetFileAttributesW(here.path("") + each.name));
    }
    here.write("later", "");
    EXPECT_EQ(entries(folder).size(), expected.size() + 1) << "a second search";
}

// Somebody else puts a link to `outside` where the held folder was, and where one of its entries was.
TEST(platform_folders, are_not_left_for_what_takes_their_place) {
    scratch const here;
    for (char const * folder : {"tree/sub", "outside"})
        fs::create_directories(here.host(folder));
    for (char const * file : {"tree/sub/file", "tree/sub/gone", "outside/file", "outside/new", "outside/gone"})
        here.write(file, "kept");
    open_folder tree, sub;
    ASSERT_TRUE(tree.open(here.path("tree")));
    ASSERT_TRUE(sub.open(tree, u"sub"));
    fs::rename(here.host("tree"), here.host("moved"));
    fs::create_directory_symlink("outside", here.host("tree"));
    fs::rename(here.host("moved/sub"), here.host("moved/away"));
    fs::create_directory_symlink("../outside", here.host("moved/sub"));

    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(GetFileAttributesExW(sub, u"file", data));
    EXPECT_TRUE(SetFileAttributesW(sub, u"file", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(code(DeleteFileW(sub, u"file")), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(SetFileAttributesW(sub, u"file", FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(GetFileAttributesW(sub, u"file"), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(MoveFileW(sub, u"file", sub, u"new"));
    EXPECT_TRUE(DeleteFileW(sub, u"new"));
    EXPECT_TRUE(DeleteFileW(sub, u"gone"));
    EXPECT_TRUE(CreateDirectoryW(sub, u"made"));
    int const file = CreateFileW(sub, u"out", GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, 0);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(entries(sub), (std::vector<entry>{{u"made", FILE_ATTRIBUTE_DIRECTORY}, {u"out", 0}}));
    sub.close();
    EXPECT_EQ(code(sub.open(tree, u"sub")), ERROR_DIRECTORY);
    EXPECT_TRUE(RemoveDirectoryW(tree, u"sub")) << "the link itself";
    EXPECT_EQ(entries(tree), (std::vector<entry>{{u"away", FILE_ATTRIBUTE_DIRECTORY}}));
    EXPECT_EQ(here.read("outside/file") + here.read("outside/new") + here.read("outside/gone"), "keptkeptkept");
    EXPECT_FALSE(here.exists("outside/made") || here.exists("outside/out"));
}

// However the path of a link is spelled, it is the link that is asked, moved and removed.
TEST(platform_folders, links_to_them_are_not_gone_through) {
    ntfs_folder const here;
    for (bool const attached : {true, false}) {
        if (!attached && here.attached())
            detach_volume('N');
        for (wide_string const end : {u"", u"\\", u"//", u"\\.", u"/.\\", u"\\x\\..\\"}) {
            SCOPED_TRACE(narrow_string(end.begin(), end.end()));
            auto const make_link = [&] { fs::create_directory_symlink("target", here.host("link")); };
            fs::create_directory(here.host("target"));
            here.write("target/file", "kept");
            wide_string const link = here.path("link") + end;
            make_link();
            uint32 const kind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
            WIN32_FILE_ATTRIBUTE_DATA data{};
            EXPECT_EQ(GetFileKindW(link), kind);
            EXPECT_EQ(GetFileAttributesW(link), kind);
            EXPECT_TRUE(GetFileAttributesExW(link, data));
            EXPECT_EQ(data.dwFileAttributes, kind);
            EXPECT_EQ(code(open_folder().open(link)), ERROR_DIRECTORY);
            EXPECT_EQ(code(MoveFileW(link, here.path("moved"))), 0u);
            EXPECT_EQ(code(MoveFileW(here.path("moved"), here.path("link"))), 0u);
            EXPECT_EQ(code(DeleteFileW(link)), 0u);
            EXPECT_FALSE(here.exists("link"));
            make_link();
            EXPECT_EQ(code(RemoveDirectoryW(link)), 0u);
            EXPECT_FALSE(here.exists("link"));
            EXPECT_EQ(here.read("target/file"), "kept");
        }
    }
    // What is no folder has no path that ends in a separator.
    fs::create_symlink("target/file", here.host("to_file"));
    for (char const * file : {"target/file/", "to_file/"}) {
        EXPECT_EQ(code(DeleteFileW(here.path(file))), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(code(GetFileKindW(here.path(file)) != INVALID_FILE_ATTRIBUTES), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(code(MoveFileW(here.path(file), here.path("moved"))), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(code(SetFileAttributesW(here.path(file), 0)), ERROR_PATH_NOT_FOUND);
    }
}

// Up to the host's longest path, 4,095 bytes, everything is reached by its path; behind it, by open folders alone.
TEST(platform_folders, are_reached_by_the_longest_path) {
    ntfs_folder const here;
    constexpr std::size_t longest = 4095;
    std::vector<open_folder> chain(1);
    ASSERT_TRUE(chain[0].open(here.path("")));
    std::size_t size = here.folder().size() + 1;
    wide_string path = here.path("");
    auto const go_down = [&](std::size_t name_size) {
        wide_string const name(name_size, u'd');
        open_folder below;
        EXPECT_TRUE(CreateDirectoryW(chain.back(), name) && below.open(chain.back(), name));
        chain.push_back(std::move(below));
        path += name + u'\\';
        size += name_size + 1;
    };
    chain.reserve(64);
    while (size < longest - 250)
        go_down(100);
    for (bool const attached : {here.attached(), false}) {
        if (!attached && here.attached())
            detach_volume('N');
        for (std::size_t const whole : {longest - 1, longest, longest + 1}) {
            wide_string const name(whole - size, u'e');
            bool const reached = attached || whole <= longest;
            CreateDirectoryW(chain.back(), name);
            EXPECT_EQ(GetFileKindW(chain.back(), name), FILE_ATTRIBUTE_DIRECTORY);
            EXPECT_EQ(code(GetFileKindW(path + name) != INVALID_FILE_ATTRIBUTES), reached ? 0u : 206u) << whole;
            WIN32_FILE_ATTRIBUTE_DATA data;
            EXPECT_EQ(code(GetFileAttributesExW(path + name, data)), reached ? 0u : 206u) << whole;
            EXPECT_EQ(code(open_folder().open(path + name)), whole <= longest ? 0u : 206u) << whole;
            EXPECT_EQ(code(RemoveDirectoryW(path + name)), reached ? 0u : 206u) << whole;
        }
    }
    while (!chain.empty())
        chain.pop_back();
}

TEST(platform_folders, are_not_climbed_out_of_a_folder_that_was_moved) {
    scratch const here;
    make_chain(here, u"d", 20);
    here.write("d/d/file", "kept");
    fs::create_directories(here.host("other/d"));
    here.write("other/d/file", "kept");
    std::vector<open_folder> chain(20);
    ASSERT_TRUE(chain[0].open(here.path("d")));
    for (std::size_t i = 1; i < chain.size(); ++i)
        ASSERT_TRUE(chain[i].open(chain[i - 1], u"d"));
    fs::rename(here.host("d/d/d"), here.host("other/d/d"));
    while (chain.size() > 2)
        chain.pop_back();
    for (open_folder & each : chain) {
        EXPECT_EQ(code(DeleteFileW(each, u"file")), ERROR_PATH_NOT_FOUND);
        EXPECT_TRUE(entries(each).empty());
    }
    EXPECT_EQ(here.read("other/d/file") + here.read("d/d/file"), "keptkept");
    while (!chain.empty())
        chain.pop_back();
}

TEST(platform_folders, on_volumes) {
    ntfs_folder const here;
    ASSERT_TRUE(here.attached()) << "no extended attributes in the folder for tests";
    fs::create_directories(here.host("sub/inner/deep"));
    ASSERT_EQ(attach_volume('M', here.host("sub/inner"), "NTFS"), 0u);
    for (wide_string const file : {u"N:\\sub\\file:note", u"M:\\deep:note"})
        CloseHandle(CreateFileW(file, GENERIC_WRITE, 0, CREATE_NEW, 0));
    auto const stores = [&] {
        auto const in = [&](char const * store) {
            return std::distance(fs::directory_iterator(here.host(store)), fs::directory_iterator());
        };
        return std::pair<long, long>(in(".socle_streams"), in("sub/inner/.socle_streams"));
    };
    EXPECT_EQ(stores(), std::pair(1L, 1L));
    open_folder top, sub, inner;
    ASSERT_TRUE(top.open(here.path("")));
    EXPECT_EQ(entries(top), (std::vector<entry>{{u"sub", FILE_ATTRIBUTE_DIRECTORY}}));
    EXPECT_EQ(code(inner.open(top, u".socle_streams")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(code(inner.open(u"N:\\.socle_streams")), ERROR_ACCESS_DENIED);
    ASSERT_TRUE(sub.open(top, u"sub"));
    ASSERT_TRUE(inner.open(sub, u"inner"));
    EXPECT_EQ(entries(inner), (std::vector<entry>{{u"deep", FILE_ATTRIBUTE_DIRECTORY}})) << "another volume begins";
    EXPECT_TRUE(RemoveDirectoryW(inner, u"deep"));
    EXPECT_TRUE(DeleteFileW(sub, u"file"));
    EXPECT_EQ(stores(), std::pair(0L, 0L)) << "streams go with their file";
    detach_volume('M');
}

} // namespace
