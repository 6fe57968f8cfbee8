#include "socle/platform/code_pages.h"
#include "socle/platform/directories.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "socle/platform/paths.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

/// What only Win32 has, or has in another way.
namespace {

using namespace platform;

uint32 code(bool done) { return done ? 0 : GetLastError(); }

TEST(win32_files, take_minus_one_for_no_handle_of_the_system) {
    // To the system it is the process itself.
    uint64 value = 0;
    EXPECT_EQ(code(CloseHandle(INVALID_HANDLE_VALUE)), 6u);
    EXPECT_EQ(code(GetFileSize(INVALID_HANDLE_VALUE, value)), 6u);
    EXPECT_EQ(GetFileType(INVALID_HANDLE_VALUE), FILE_TYPE_UNKNOWN);
}

// The codes that differ from those on other systems.
TEST(win32_files, answer_with_codes_of_the_system) {
    scratch const folder;
    folder.write("file", "");
    std::filesystem::create_directory(folder.host("folder"));
    auto const path = [&](std::string const & name) { return folder.path(name); };
    auto const open = [](wide_string const & whole) {
        int const file = CreateFileW(whole, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
        return code(file != INVALID_HANDLE_VALUE && CloseHandle(file));
    };
    EXPECT_EQ(open(path("a?")), 123u);
    EXPECT_EQ(open(path("") + u"file\\"), 123u);
    uint32 const too_long = open(path(std::string(256, 'x')));
    EXPECT_TRUE(too_long == 123 || too_long == 2) << too_long;
    WIN32_FIND_DATAW data;
    EXPECT_EQ(FindFirstFileW(path("file/*"), data), nullptr);
    EXPECT_TRUE(GetLastError() == 267 || GetLastError() == 123) << GetLastError();
    uint32 const into_itself = code(MoveFileW(path("folder"), path("folder/below")));
    EXPECT_TRUE(into_itself == 32 || into_itself == 87) << into_itself;
    int const held = CreateFileW(path("file"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    EXPECT_EQ(code(MoveFileW(path("file"), path("moved"))), 32u);
    EXPECT_EQ(code(DeleteFileW(path("file"))), 32u);
    EXPECT_TRUE(CloseHandle(held));
    EXPECT_EQ(open(path("file. ")), 0u);
    EXPECT_EQ(open(path("FILE")), 0u);
}

TEST(win32_files, live_at_paths_of_any_length) {
    scratch const folder;
    wide_string path = folder.path("");
    for (int i = 0; i < 6; ++i) {
        path += wide_string(100, static_cast<char16_t>(u'a' + i)) + u'\\';
        ASSERT_EQ(code(CreateDirectoryW(path)), 0u) << path.size();
    }
    path += u"file";
    int const file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, 0);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(GetFileAttributesW(path), FILE_ATTRIBUTE_ARCHIVE);
    WIN32_FIND_DATAW data;
    file_search * const search = FindFirstFileW(path, data);
    ASSERT_NE(search, nullptr);
    EXPECT_EQ(data.cFileName, u"file");
    FindClose(search);
    EXPECT_EQ(code(MoveFileW(path, path + u"_moved")), 0u);
    EXPECT_EQ(code(DeleteFileW(path + u"_moved")), 0u);
    for (std::size_t end = path.rfind(u'\\'); end > folder.path("").size(); end = path.rfind(u'\\', end - 1))
        EXPECT_EQ(code(RemoveDirectoryW(path.substr(0, end))), 0u);
}

TEST(win32_paths, keep_what_is_no_text) {
    wide_string const lone = {u'a', 0xD800, u'b', 0xDC80, 0xD83D, 0xDE00, u'\\', 0xDFFF, 0xE9};
    EXPECT_EQ(to_host(lone), "a\xED\xA0\x80"
                             "b\xED\xB2\x80\xF0\x9F\x98\x80\\\xED\xBF\xBF\xC3\xA9");
    EXPECT_EQ(from_host(to_host(lone)), lone);
    EXPECT_EQ(from_host("a/b\xFF\xC3"), u"a\\b\xFFFD\xFFFD");
    EXPECT_EQ(from_host("\xC0\x80\xF8\x88\x80\x80\x80").find(u'\0'), wide_string::npos);
    EXPECT_EQ(to_host(wide_string(u"C:\\a\0b", 6)), "");
    EXPECT_EQ(last_error(), 123u);
}

TEST(win32_volumes, are_ntfs_only_where_they_have_streams) {
    scratch const folder;
    wide_string system;
    ASSERT_TRUE(GetVolumeInformationW(folder.path("").substr(0, 3), system));
    uint32 const attached = attach_volume('N', folder.folder(), "NTFS");
    EXPECT_EQ(attached, system == u"NTFS" ? 0u : 50u);
    if (attached == 0)
        detach_volume('N');
    ASSERT_FALSE(folder.path("").starts_with(u"N:"));
    EXPECT_EQ(attach_volume(static_cast<char>(folder.path("")[0]), folder.folder(), "FAT"), 183u);
}

narrow_string encoded(uint32 page, wide_string const & text, bool * used_default) {
    narrow_string bytes(32, '\0');
    bytes.resize(WideCharToMultiByte(page, text.data(), static_cast<uint32>(text.size()), bytes.data(), 32, nullptr,
                                     used_default));
    return bytes;
}

TEST(win32_pages, give_no_letter_for_another) {
    struct {
        uint32 page;
        wide_string text;
        narrow_string bytes;
        bool used_default;
    } const table[] = {
        {1252, u"\u03B1\u0100\uFF21", "???", true},
        {1252, u"\u20AC\xE9", "\x80\xE9", false},
        {1253, u"\u03B1", "\xE1", false},
        {932, u"\u3042\uFF5E", "\x82\xA0\x81\x60", false},
    };
    for (auto const & row : table) {
        bool used = !row.used_default;
        EXPECT_EQ(encoded(row.page, row.text, &used), row.bytes) << row.page;
        EXPECT_EQ(used, row.used_default) << row.page;
    }
    // Pages that take neither flags nor the question what was lacking.
    EXPECT_EQ(encoded(65001, u"\xE9\u20AC", nullptr), "\xC3\xA9\xE2\x82\xAC");
    bool used = false;
    EXPECT_EQ(encoded(65001, u"x", &used), "");
    EXPECT_EQ(GetLastError(), 87u);
    EXPECT_EQ(encoded(12345, u"x", nullptr), "");
    EXPECT_EQ(GetLastError(), 87u);
}

TEST(win32_pages, are_listed_in_a_fixed_order) {
    std::vector<uint32> pages;
    EnumSystemCodePagesA([&](char const * page) {
        pages.push_back(static_cast<uint32>(std::stoul(page)));
        return pages.size() < 100;
    });
    ASSERT_GT(pages.size(), 20u);
    EXPECT_EQ(pages.front(), 1250u);
    auto const at = [&](uint32 page) { return std::find(pages.begin(), pages.end(), page) - pages.begin(); };
    EXPECT_LT(at(1258), at(437));
    EXPECT_LT(at(437), at(932));
    EXPECT_LT(at(932), at(10000));
    EXPECT_LT(at(10000), at(28591));
    EXPECT_EQ(at(65001), static_cast<std::ptrdiff_t>(pages.size()));
}

TEST(win32_arguments, are_utf_8) {
    char const * const narrow[] = {"program"};
    auto const given = arguments(1, narrow);
    ASSERT_FALSE(given.empty());
    EXPECT_TRUE(given.front().ends_with(".exe")) << given.front(); // the whole command line, not what was passed
}

TEST(win32_standard_streams, may_be_missing) {
    support::standard_input input;
    input.close();
    EXPECT_EQ(GetStdHandle(STD_INPUT_HANDLE), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 6u);
}

} // namespace
