#include "socle/io/exception.h"
#include "socle/io/system_error.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/platform/directories.h"
#include "socle/platform/error_text.h"
#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/files.h"
#include "socle/platform/folders.h"
#include "socle/platform/host.h"
#include "socle/platform/host_names.h"
#include "socle/platform/paths.h"
#include "tests/support/handles.h"

#include <gtest/gtest.h>

#include <functional>

/// What the layer answers on every system.
namespace {

using namespace platform;
namespace fs = std::filesystem;

class platform_contract : public handles_test {};

TEST_F(platform_contract, files_open_or_say_why_not) {
    scratch_.write("file", "bytes");
    scratch_.write("locked", "bytes");
    ASSERT_TRUE(support::make_read_only(scratch_.host("locked")));
    fs::create_directory(scratch_.host("folder"));
    expect({
        {"file", 0, 0, 80, 0, 0, 0},
        {"locked", 0, 5, 80, 5, 0, 0},
        {"folder", 5, 5, 80, 5, 0, 0},
        {"none", 2, 2, 0, 0, 2, 2},
        {"none/file", 3, 3, 3, 3, 3, 3},
        {"a?b", 123, 123, 123, 123, 123, 123},
    });
    EXPECT_EQ(scratch_.read("locked") + scratch_.read("file"), "bytes");
    EXPECT_EQ(code_of(CreateFileW(scratch_.path("a") + wide_string(u"\0x", 2), GENERIC_READ, 3, OPEN_EXISTING, 0)),
              123u);
    EXPECT_EQ(code_of(CreateFileW(u"", GENERIC_READ, 3, OPEN_EXISTING, 0)), 3u);
    EXPECT_NE(code_of(CreateFileW(u"Q:\\x", GENERIC_READ, 3, OPEN_EXISTING, 0)), 0u);
    EXPECT_TRUE(nothing_is_there());
}

TEST_F(platform_contract, read_write_and_resize) {
    int const file = create("file");
    ASSERT_GE(file, 0);
    uint32 done = 0;
    uint64 position = 0;
    uint64 size = 0;
    EXPECT_TRUE(WriteFile(file, "0123456789", 10, done));
    EXPECT_EQ(done, 10u);
    EXPECT_TRUE(SetFilePointer(file, 4, FILE_BEGIN, position) && SetEndOfFile(file) && GetFileSize(file, size));
    EXPECT_EQ(size, 4u);
    EXPECT_TRUE(SetFilePointer(file, int64{5} << 32, FILE_BEGIN, position) && SetEndOfFile(file));
    EXPECT_TRUE(GetFileSize(file, size) && SetFilePointer(file, 0, FILE_CURRENT, position));
    EXPECT_EQ(size, uint64{5} << 32);
    EXPECT_EQ(position, uint64{5} << 32);
    EXPECT_FALSE(SetFilePointer(file, -1, FILE_BEGIN, position));
    EXPECT_EQ(GetLastError(), 131u);
    EXPECT_TRUE(SetFilePointer(file, (int64{5} << 32) - 3, FILE_BEGIN, position));
    char bytes[8] = "xxxxxxx";
    EXPECT_TRUE(ReadFile(file, bytes, 8, done));
    EXPECT_EQ(std::string(bytes, 8), std::string("\0\0\0xxxx\0", 8));
    EXPECT_EQ(done, 3u);
    EXPECT_TRUE(ReadFile(file, bytes, 8, done) && FlushFileBuffers(file));
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(GetFileType(file), FILE_TYPE_DISK);
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(platform_contract, refuse_what_the_handle_is_not_for) {
    scratch_.write("file", "bytes");
    int const reader = open("file");
    int const writer = CreateFileW(scratch_.path("file"), GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, 0);
    int const times = CreateFileW(scratch_.path("file"), 0, share_all, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    char byte = 'x';
    uint32 done = 7;
    uint64 value = 0;
    struct {
        char const * what;
        bool result;
        uint32 code;
    } const cases[] = {
        {"write", WriteFile(reader, &byte, 1, done), GetLastError()},
        {"resize", SetEndOfFile(reader), GetLastError()},
        {"flush", FlushFileBuffers(reader), GetLastError()},
        {"read", ReadFile(writer, &byte, 1, done), GetLastError()},
        {"read times", ReadFile(times, &byte, 1, done), GetLastError()},
        {"resize times", SetEndOfFile(times), GetLastError()},
    };
    bool const tells_why = support::limit_of_resizing().empty();
    for (auto const & c : cases) {
        EXPECT_FALSE(c.result) << c.what;
        if (tells_why || !std::string(c.what).starts_with("resize"))
            EXPECT_EQ(c.code, 5u) << c.what;
    }
    for (int const file : {reader, writer, times})
        EXPECT_TRUE(CloseHandle(file));
    for (int const file : {INVALID_HANDLE_VALUE, 100000}) {
        for (auto const & use : std::vector<std::function<bool()>>{
                 [&] { return WriteFile(file, &byte, 1, done); }, [&] { return ReadFile(file, &byte, 1, done); },
                 [&] { return SetFilePointer(file, 0, FILE_CURRENT, value); }, [&] { return SetEndOfFile(file); },
                 [&] { return FlushFileBuffers(file); }, [&] { return GetFileSize(file, value); },
                 [&] { return GetFileTime(file, value, value); }, [&] { return SetFileTime(file, &value, nullptr); },
                 [&] { return SetFileTime(file, nullptr, &value); }, [&] { return GetFileType(file) != 0; },
                 [&] { return CloseHandle(file); }}) {
            SetLastError(0);
            EXPECT_FALSE(use());
            EXPECT_EQ(GetLastError(), 6u);
        }
    }
}

TEST_F(platform_contract, pipes_have_no_positions_and_end_in_codes) {
    int ends[2];
    ASSERT_TRUE(support::make_pipe(ends));
    EXPECT_EQ(GetFileType(ends[0]), FILE_TYPE_PIPE);
    char bytes[4];
    uint32 done = 0;
    uint64 value = 0;
    EXPECT_TRUE(WriteFile(ends[1], "ab", 2, done));
    EXPECT_TRUE(FlushFileBuffers(ends[1])); // does not wait for the reader
    EXPECT_TRUE(ReadFile(ends[0], bytes, 4, done));
    EXPECT_EQ(done, 2u);
    EXPECT_EQ(code(SetFilePointer(ends[0], 0, FILE_CURRENT, value)), 25u);
    EXPECT_EQ(code(GetFileSize(ends[0], value)), 50u);
    EXPECT_TRUE(CloseHandle(ends[1]));
    EXPECT_EQ(code(ReadFile(ends[0], bytes, 4, done)), 109u);
    EXPECT_EQ(done, 0u);
    EXPECT_TRUE(CloseHandle(ends[0]));
    ASSERT_TRUE(support::make_pipe(ends));
    EXPECT_TRUE(CloseHandle(ends[0]));
    EXPECT_EQ(code(WriteFile(ends[1], "ab", 2, done)), 232u);
    EXPECT_TRUE(CloseHandle(ends[1]));
}

TEST_F(platform_contract, the_last_error_outlives_what_the_runtime_does) {
    EXPECT_EQ(code_of(open("none")), 2u);
    try {
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(GetLastError(), 2u);
    EXPECT_EQ(code_of(create("new")), 0u);
    EXPECT_EQ(GetLastError(), 2u);
}

TEST_F(platform_contract, attributes_and_times_are_set_and_asked) {
    scratch_.write("file", "x");
    scratch_.write("locked", "x");
    ASSERT_TRUE(support::make_read_only(scratch_.host("locked")));
    fs::create_directory(scratch_.host("folder"));
    EXPECT_EQ(GetFileAttributesW(scratch_.path("file")), FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(GetFileAttributesW(scratch_.path("folder")), FILE_ATTRIBUTE_DIRECTORY);
    uint64 const in_2012 = 130'000'000'000'000'000, in_2110 = 160'624'512'000'000'000;
    for (auto const & [name, modified] : {std::pair("file", in_2012), std::pair("folder", in_2012),
                                          std::pair("file", in_2110), std::pair("locked", in_2012)}) {
        if (std::string("locked") == name && !support::limit_of_times().empty())
            continue;
        int const handle =
            CreateFileW(scratch_.path(name), GENERIC_WRITE, share_all, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
        ASSERT_NE(handle, INVALID_HANDLE_VALUE) << name;
        EXPECT_TRUE(SetFileTime(handle, nullptr, &modified)) << name;
        EXPECT_TRUE(CloseHandle(handle));
        WIN32_FILE_ATTRIBUTE_DATA data{};
        EXPECT_TRUE(GetFileAttributesExW(scratch_.path(name), data)) << name;
        EXPECT_EQ(data.ftLastWriteTime, modified) << name;
    }
    for (uint32 const bits : {0x22u, 0x24u, 0x20u, 0x21u}) {
        EXPECT_TRUE(SetFileAttributesW(scratch_.path("file"), bits));
        EXPECT_EQ(GetFileAttributesW(scratch_.path("file")), bits);
    }
    EXPECT_EQ(code(DeleteFileW(scratch_.path("file"))), 5u);
    EXPECT_TRUE(SetFileAttributesW(scratch_.path("file"), 0x20));
    EXPECT_EQ(code(DeleteFileW(scratch_.path("file"))), 0u);
    for (auto const & [name, error] : {std::pair("none", 2u), std::pair("none/x", 3u)}) {
        EXPECT_EQ(GetFileAttributesW(scratch_.path(name)), INVALID_FILE_ATTRIBUTES);
        EXPECT_EQ(GetLastError(), error);
        EXPECT_EQ(code(SetFileAttributesW(scratch_.path(name), 1)), error);
        EXPECT_TRUE(nothing_is_there());
    }
}

TEST_F(platform_contract, searches_deliver_all_in_the_order_of_capitals) {
    for (char const * name : {"b", "A", "_", "B1", "!", "C"})
        scratch_.write(name, "");
    EXPECT_EQ(search(scratch_.path("*")), (std::vector<wide_string>{u".", u"..", u"!", u"A", u"b", u"B1", u"C", u"_"}));
    WIN32_FIND_DATAW data;
    for (auto const & [pattern, error] : {std::pair("none", 2u), std::pair("none/*", 3u), std::pair("none/none", 3u)}) {
        EXPECT_EQ(FindFirstFileW(scratch_.path(pattern), data), nullptr);
        EXPECT_EQ(GetLastError(), error) << pattern;
    }
    EXPECT_EQ(FindFirstFileW(u"", data), nullptr);
    EXPECT_EQ(GetLastError(), 3u);
}

TEST_F(platform_contract, folders_are_made_moved_and_removed) {
    scratch_.write("file", "");
    fs::create_directory(scratch_.host("full"));
    scratch_.write("full/x", "");
    struct {
        char const * name;
        uint32 create, remove;
    } const table[] = {{"new", 0, 0}, {"file", 183, 267}, {"full", 183, 145}, {"none/new", 3, 3}, {"trailing/", 0, 0}};
    for (auto const & c : table) {
        EXPECT_EQ(code(CreateDirectoryW(scratch_.path(c.name))), c.create) << c.name;
        EXPECT_EQ(code(RemoveDirectoryW(scratch_.path(c.name))), c.remove) << c.name;
    }
    EXPECT_EQ(code(DeleteFileW(scratch_.path("full"))), 5u);
    EXPECT_EQ(code(MoveFileW(scratch_.path("file"), scratch_.path("full"))), 183u);
    EXPECT_EQ(code(MoveFileW(scratch_.path("none"), scratch_.path("other"))), 2u);
    EXPECT_EQ(code(MoveFileW(scratch_.path("file"), scratch_.path("none/file"))), 3u);
    EXPECT_EQ(code(MoveFileW(scratch_.path("full"), scratch_.path("moved"))), 0u);
    EXPECT_TRUE(scratch_.exists("moved/x") && !scratch_.exists("full"));
}

TEST_F(platform_contract, folders_are_held_open_and_take_one_name) {
    fs::create_directories(scratch_.host("folder/sub"));
    scratch_.write("folder/file", "bytes");
    open_folder folder, sub;
    EXPECT_EQ(code(folder.open(scratch_.path("folder/file"))), 267u);
    EXPECT_EQ(code(DeleteFileW(folder, u"file")), 6u);
    ASSERT_TRUE(folder.open(scratch_.path("folder")));
    struct {
        wide_string name;
        uint32 code;
    } const table[] = {{u"file", 267}, {u"none", 2},   {u"", 123},          {u".", 123},  {u"..", 123},
                       {u"a\\b", 123}, {u"sub/", 123}, {u"file:note", 123}, {u"C:", 123}, {u"sub", 0}};
    for (auto const & c : table)
        EXPECT_EQ(code(sub.open(folder, c.name)), c.code) << narrow_string(c.name.begin(), c.name.end());

    EXPECT_EQ(code(MoveFileW(folder, u"file", sub, u"moved")), 0u);
    EXPECT_EQ(scratch_.read("folder/sub/moved"), "bytes");
    EXPECT_EQ(code_of(CreateFileW(folder, u"new", GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW, 0)), 0u);
    EXPECT_EQ(code(CreateDirectoryW(folder, u"new")), 183u);
    EXPECT_EQ(GetFileKindW(folder, u"sub"), FILE_ATTRIBUTE_DIRECTORY);
    std::vector<wide_string> names;
    WIN32_FIND_DATAW data;
    file_search * const search = FindFirstFileW(folder, data);
    for (bool more = search != nullptr; more; more = FindNextFileW(search, data))
        names.push_back(data.cFileName);
    FindClose(search);
    EXPECT_EQ(names, (std::vector<wide_string>{u"new", u"sub"}));
    EXPECT_EQ(code(DeleteFileW(sub, u"moved")), 0u);
    sub.close();
    EXPECT_EQ(code(RemoveDirectoryW(folder, u"sub")), 0u);
    EXPECT_FALSE(scratch_.exists("folder/sub"));
}

TEST_F(platform_contract, volumes_are_folders_with_a_letter) {
    fs::create_directory(scratch_.host("volume"));
    scratch_.write("volume/file", "bytes");
    EXPECT_EQ(attach_volume('C', scratch_.folder(), "FAT"), 183u);
    EXPECT_EQ(attach_volume('1', scratch_.folder(), "FAT"), 87u);
    EXPECT_EQ(attach_volume('N', support::text_of(scratch_.host("none")), "FAT"), 3u);
    ASSERT_EQ(attach_volume('n', support::text_of(scratch_.host("volume")), "FAT"), 0u);
    EXPECT_EQ(attach_volume('N', scratch_.folder(), "FAT"), 183u);
    wide_string text;
    EXPECT_TRUE(GetVolumeInformationW(u"N:\\", text));
    EXPECT_EQ(text, u"FAT");
    EXPECT_TRUE(GetFullPathNameW(scratch_.path("volume/a/../file"), text));
    EXPECT_EQ(text, u"N:\\file");
    EXPECT_TRUE(GetFullPathNameW(scratch_.path("volumes"), text));
    EXPECT_EQ(text, scratch_.path("volumes"));
    EXPECT_EQ(to_host(u"N:\\file"), scratch_.host("volume/file"));
    EXPECT_EQ(code_of(CreateFileW(u"n:/file", GENERIC_READ, share_all, OPEN_EXISTING, 0)), 0u);
    EXPECT_EQ(code(MoveFileW(u"N:\\file", u"N:\\moved")), 0u);
    EXPECT_EQ(scratch_.read("volume/moved"), "bytes");
    EXPECT_EQ(detach_volume('N'), 0u);
    EXPECT_EQ(detach_volume('N'), 3u);
    EXPECT_NE(code_of(CreateFileW(u"N:\\moved", GENERIC_READ, share_all, OPEN_EXISTING, 0)), 0u);
    EXPECT_TRUE(nothing_is_there());
}

TEST(host_names, come_back_as_they_were) {
    struct row {
        narrow_string host;
        wide_string name;
    };
    for (row const & r : {
             row{"", u""}, row{"a \x01*?", u"a \x01*?"}, row{"\xc3\xa9\xe2\x82\xac", u"\xe9\u20ac"},
             row{"\xf0\x90\x82\x80\xf4\x8f\xbf\xbf", u"\U00010080\U0010FFFF"}, row{"a\\b:c", u"a\xf05c\x62\xf03a\x63"},
             row{"\xef\x81\x9c\xef\x80\xba", u"\xdcef\xdc81\xdc9c\xdcef\xdc80\xdcba"}, row{"\xff\xfe", u"\xdcff\xdcfe"},
             row{"\xc0\xaf", u"\xdcc0\xdcaf"},                     // overlong
             row{"\xe0\x80\xaf", u"\xdce0\xdc80\xdcaf"},           // overlong
             row{"\xed\xa0\x80", u"\xdced\xdca0\xdc80"},           // a surrogate
             row{"\xf4\x90\x80\x80", u"\xdcf4\xdc90\xdc80\xdc80"}, // above the last character
             row{"\xe2\x82", u"\xdce2\xdc82"},                     // cut off
             row{"\xe2\x28\xe2\x82\xac", u"\xdce2(\u20ac"},        // goes on behind the bad byte
         }) {
        EXPECT_EQ(from_host_name(r.host), r.name);
        narrow_string back = "before";
        EXPECT_TRUE(to_host_name(r.name, back));
        EXPECT_EQ(back, r.host);
    }
    EXPECT_EQ(from_host_text("C:\\\xff\xef\x81\x9c"), u"C:\\\xdcff\xf05c");
}

TEST(host_names, refused) {
    narrow_string host;
    for (wide_string const & name : {wide_string(u"a\0b", 3), wide_string(u"a/b"), wide_string(u"a\\b"),
                                     wide_string(u"a:b"), wide_string(u"\xd800"), wide_string(u"\xd800x"),
                                     wide_string(u"\xdc7f"), wide_string(u"\xdd00"), wide_string(u"\xdfff")})
        EXPECT_FALSE(to_host_name(name, host));
}

TEST(system_error, text_in_a_buffer) {
    char buffer[256];
    uint32 const size = FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, sizeof buffer);
    EXPECT_TRUE(narrow_string(buffer, size).ends_with(".\r\n"));
    EXPECT_EQ(buffer[size], '\0');
    EXPECT_EQ(FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, size + 1), size);
    EXPECT_EQ(FormatMessageA(ERROR_FILE_NOT_FOUND, buffer, size), 0u);
}

TEST(system_error, in_a_filesystem_exception) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    nio::filesystem_exception const missing("cannot open file", u"a\\\xe9\u0436");
    EXPECT_EQ(missing.message(), "cannot open file (a\\\xe9_) 2 " + system_error_text(2));
    EXPECT_EQ(missing.error(), 2u);
    SetLastError(0xFFFFFFFF);
    EXPECT_EQ(nio::filesystem_exception("odd", u"").message(), "odd () 4294967295 unknown error");
    SetLastError(ERROR_BROKEN_PIPE);
    nio::filesystem_exception const ended("cannot read", u"stdin");
    EXPECT_EQ(ended.message(), "cannot read");
    EXPECT_EQ(ended.error(), 109u);
    try {
        throw ended;
    } catch (basic::exception const & e) {
        EXPECT_EQ(e.message(), "cannot read");
    }
}

TEST(system_error, raised_by_the_io_family) {
    any::path const path(any::string(u"a\\\xe9"), false);
    SetLastError(ERROR_FILE_NOT_FOUND);
    try {
        io::raise_system_error(path, "cannot open", "io::fork");
        ADD_FAILURE();
    } catch (io::exception const & e) {
        EXPECT_EQ(e.message(), "cannot open \"a\\\xe9\"; 2 " + system_error_text(2));
        EXPECT_EQ(e.origin(), "io::fork");
        EXPECT_EQ(e.error(), 2);
    }
    SetLastError(ERROR_BROKEN_PIPE);
    EXPECT_NO_THROW(io::raise_system_error(path, "cannot read from", "io::fork"));
}

} // namespace
