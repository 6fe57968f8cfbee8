#include "socle/platform/errors.h"
#include "socle/platform/paths.h"
#include "socle/platform/posix/paths/resolve.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace platform;
namespace fs = std::filesystem;

class platform_paths : public testing::Test {
protected:
    ~platform_paths() override {
        for (char letter : {'N', 'M', 'R'})
            detach_volume(letter);
        fs::current_path("/");
    }

    static wide_string full(wide_string const & path) {
        wide_string result;
        return GetFullPathNameW(path, result) ? result : u"(failed)";
    }

    scratch scratch_;
};

TEST_F(platform_paths, become_absolute_in_the_text) {
    fs::current_path("/usr");
    struct {
        wide_string path, full;
    } const cases[] = {
        {u"a", u"C:\\usr\\a"},
        {u".", u"C:\\usr"},
        {u"..\\..\\..\\a/b\\", u"C:\\a\\b\\"},
        {u"/a//b\\.\\..\\c", u"C:\\a\\c"},
        {u"c:", u"c:\\"},
        {u"C:a", u"C:\\a"},
        {u"C:\\..", u"C:\\"},
        {u"Q:\\no\\..\\x", u"Q:\\x"},
        {u"\\\\server/share\\a\\..\\..\\b", u"\\\\server\\share\\b"},
        {u"\\\\server\\share", u"\\\\server\\share"},
        {u"\\\\server\\share/", u"\\\\server\\share\\"},
        {u"\\\\server\\share\\a\\..", u"\\\\server\\share\\"},
        {u"//server", u"\\\\server"},
        {u"a\\...\\b. ", u"C:\\usr\\a\\...\\b. "},
        {u"nul:x\\y", u"C:\\usr\\nul:x\\y"},
        {u"", u"(failed)"},
        {wide_string(u"a\0b", 3), u"(failed)"},
    };
    for (auto const & c : cases)
        EXPECT_EQ(full(c.path), c.full) << narrow_string(c.path.begin(), c.path.end());
    EXPECT_EQ(from_host("/a\\b/c:d"), u"C:\\a\uF05Cb\\c\uF03Ad");
}

TEST_F(platform_paths, without_a_place_on_the_host_are_refused) {
    struct {
        wide_string path;
        uint32 code;
    } const cases[] = {
        {u"Q:\\x", 3},
        {u"\\\\server\\share\\x", 53},
        {wide_string(u"C:\\a\0b", 6), 123},
        {wide_string{u'C', u':', u'\\', 0xD800}, 123},
        {wide_string{u'C', u':', u'\\', 0xDC7F}, 123},
        {u"C:\\f:stream", 123},
        {u"C:\\a:b\\c", 123},
    };
    for (auto const & c : cases) {
        SetLastError(0);
        EXPECT_EQ(to_host(c.path), "");
        EXPECT_EQ(last_error(), c.code);
        posix::resolved_path resolved;
        EXPECT_EQ(posix::resolve(c.path, resolved), c.code);
    }
}

TEST_F(platform_paths, on_a_volume_get_its_letter_however_they_are_spelled) {
    fs::create_directories(scratch_.host("vol/sub/deep"));
    fs::create_directory_symlink(scratch_.host("vol"), scratch_.host("link"));
    fs::create_directory_symlink(scratch_.folder(), scratch_.host("vol/out"));
    ASSERT_EQ(attach_volume('n', scratch_.host("link"), "FAT"), 0u);
    ASSERT_EQ(attach_volume('M', scratch_.host("vol/sub"), "NTFS"), 0u);
    EXPECT_EQ(full(scratch_.path("vol/f")), u"N:\\f");
    EXPECT_EQ(full(scratch_.path("vol")), u"N:\\");
    EXPECT_EQ(full(scratch_.path("link/no/f/")), u"N:\\no\\f\\");
    EXPECT_EQ(full(scratch_.path("volume")), scratch_.path("volume"));
    EXPECT_EQ(full(u"N:\\sub\\deep"), u"M:\\deep");
    EXPECT_EQ(full(u"N:sub\\deep\\f:note"), u"M:\\deep\\f:note");
    EXPECT_EQ(full(u"N:\\out\\f"), scratch_.path("f"));
    EXPECT_EQ(full(u"n:\\f"), u"n:\\f");
    fs::current_path(scratch_.host("vol/sub"));
    EXPECT_EQ(full(u"f"), u"M:\\f");
    EXPECT_EQ(full(u"..\\f"), u"N:\\f");
    EXPECT_EQ(to_host(u"M:\\deep/f"), scratch_.host("vol/sub/deep/f"));

    posix::resolved_path resolved;
    ASSERT_EQ(posix::resolve(u"N:\\sub\\deep\\f:note:$data", resolved), 0u);
    EXPECT_EQ(resolved.real, scratch_.host("vol/sub/deep/f"));
    EXPECT_EQ(resolved.stream, u"note");
    EXPECT_EQ(posix::resolve(u"M:\\.socle_streams\\x", resolved), 5u);
    EXPECT_EQ(posix::resolve(u"M:\\.socle_streams", resolved), 5u);
    for (wide_string const path : {u"M:\\.socle_streams2", u"M:\\deep\\.socle_streams"})
        EXPECT_EQ(posix::resolve(path, resolved), 0u);
    EXPECT_EQ(posix::resolve(u"N:\\f:note", resolved), 123u);
    EXPECT_EQ(posix::resolve(u"N:\\no\\a?", resolved), 123u);
    scratch_.write("vol/f", "");
    EXPECT_EQ(posix::resolve(u"N:\\f\\x", resolved), 3u);

    ASSERT_EQ(attach_volume('R', "/", "FAT"), 0u);
    EXPECT_EQ(full(scratch_.path("f")), u'R' + scratch_.path("f").substr(1));
    EXPECT_EQ(full(scratch_.path("vol/sub/f")), u"M:\\f");
    for (wide_string const root : {u"C:\\", u"R:\\", u"R:\\.", u"N:\\"})
        EXPECT_EQ(posix::resolve(root, resolved), 0u);
}

// Beside what is so on every system.
TEST_F(platform_paths, of_volumes_are_checked) {
    scratch_.write("file", "");
    for (narrow_string const & folder :
         {narrow_string(scratch_.host("file")), narrow_string(), narrow_string("/\0x", 3)})
        EXPECT_EQ(attach_volume('N', folder, "odd"), 3u) << folder;
    EXPECT_EQ(attach_volume('c', scratch_.folder(), "odd"), 183u);
    wide_string system;
    EXPECT_TRUE(GetVolumeInformationW(u"C:\\", system));
    EXPECT_NE(system, u"unknown");
    EXPECT_FALSE(GetVolumeInformationW(u"C:\\file", system));
    EXPECT_EQ(last_error(), 123u);
    EXPECT_FALSE(GetVolumeInformationW(u"Q:\\", system));
    EXPECT_EQ(last_error(), 3u);
    EXPECT_EQ(detach_volume('C'), 3u);
}

TEST_F(platform_paths, relative_to_a_folder_that_is_gone_fail) {
    fs::create_directory(scratch_.host("gone"));
    fs::current_path(scratch_.host("gone"));
    fs::remove(scratch_.host("gone"));
    EXPECT_EQ(full(u"f"), u"(failed)");
    EXPECT_EQ(last_error(), 3u);
    EXPECT_EQ(full(u"\\f"), u"C:\\f");
}

} // namespace
