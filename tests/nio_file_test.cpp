#include "socle/nio/attributes.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string raised(std::function<void()> const & act) {
    try {
        act();
    } catch (nio::filesystem_exception const & e) {
        return e.message().substr(0, e.message().find(" ("));
    } catch (nio::exception const & e) {
        return e.message();
    }
    return "nothing";
}

std::string rest(nio::file & file) {
    std::string all(100'000, '\0');
    all.resize(file.read(all.data(), 100'000));
    return all;
}

void put(nio::file & file, std::string const & text) { file.write(text.data(), static_cast<uint32>(text.size())); }

TEST(nio_file, opens_by_its_mode) {
    scratch const folder;
    folder.write("file", "bytes");
    struct {
        char const * name;
        int mode;
        bool open;
        char const * raised;
    } const table[] = {
        {"none", 0, false, "nothing"},
        {"none", 1, false, "cannot open file"},
        {"none", 2, false, "cannot open file"},
        {"none", 5, false, "cannot open file"},
        {"none", 6, false, "cannot open file"},
        {"file", 7, false, "unknown file open mode"},
        {"file", -1, false, "unknown file open mode"},
        {"file", 1, true, "nothing"},
        {"file", 2, true, "nothing"},
        {"file", 3, false, "nothing"},
        {"new", 3, true, "nothing"},
        {"file", 5, true, "nothing"},
        {"file", 6, true, "nothing"},
        {"file", 4, true, "nothing"},
    };
    for (auto const & c : table) {
        bool open = false;
        EXPECT_EQ(raised([&] { open = nio::file(folder.path(c.name), c.mode).is_open(); }), c.raised)
            << c.name << c.mode;
        EXPECT_EQ(open, c.open) << c.name << c.mode;
    }
    EXPECT_EQ(folder.read("file"), ""); // the last one made it anew
}

// What is read, written and resized of an open file, the model of files and folders says.
TEST(nio_file, says_no_where_it_is_closed_and_to_sizes_that_no_file_has) {
    scratch const folder;
    nio::file file(folder.path("a/b/c"), nio::file::mode_closed);
    EXPECT_EQ(file.tell(), all_ones);
    EXPECT_FALSE(file.seek(0));
    EXPECT_FALSE(file.resize(3));
    EXPECT_EQ(raised([&] { file.size(); }), "cannot determine the size");
    char byte;
    EXPECT_EQ(file.read(&byte, 0), 0u);
    EXPECT_EQ(raised([&] { file.read(&byte, 1); }), "cannot read");
    EXPECT_EQ(raised([&] { file.write("x", 1); }), "cannot write");

    EXPECT_FALSE(file.create(false)); // with both parents
    put(file, "0123456789");
    EXPECT_EQ(static_cast<nio::output &>(file).size(), 10u);
    EXPECT_FALSE(file.seek(all_ones - 3));
    EXPECT_FALSE(file.resize(all_ones));
    EXPECT_EQ(file.tell(), 10u);
    EXPECT_FALSE(file.console());
}

TEST(nio_file, has_two_forks) {
    scratch const folder;
    ntfs_folder const ntfs;
    for (wide_string const & path : {folder.path("f"), wide_string(u"N:\\f")}) {
        if (path[0] == u'N' && !ntfs.attached())
            GTEST_SKIP() << ntfs_folder::limit;
        nio::file file(path, nio::file::mode_new);
        put(file, "data");
        file.close();
        EXPECT_EQ(raised([&] { file.open_rsrc(); }), "cannot open file");
        EXPECT_FALSE(file.create_rsrc(true, false));
        put(file, "resource");
        file.close();
        file.open_rw();
        EXPECT_EQ(file.size(), 4u);
        file.close();
        file.open_rsrc();
        EXPECT_EQ(rest(file), "resource");
        file.close();
        file.open();
        EXPECT_EQ(rest(file), "data");
    }
    EXPECT_FALSE(ntfs.exists("._f"));
    folder.write("._f", "short");
    nio::file file(folder.path("f"), nio::file::mode_closed);
    file.open_rsrc();
    EXPECT_EQ(file.size(), 0u);
    EXPECT_EQ(rest(file), "");
}

TEST(fork_names, are_told_by_text) {
    EXPECT_EQ(nio::ufs_name(u"dir\\a"), u"dir\\._a");
    EXPECT_EQ(nio::ufs_name(u"a"), u"._a");
    EXPECT_EQ(nio::ufs_name(u"C:\\dir/a"), u"C:\\dir/._a");
    EXPECT_EQ(nio::ntfs_rsrc_name(u"d\\a"), u"d\\a:AFP_Resource");
    EXPECT_EQ(nio::ntfs_info_name(u"d\\a"), u"d\\a:AFP_AfpInfo");
    EXPECT_TRUE(nio::is_ntfs_rsrc_name(u":AFP_Resource"));
    EXPECT_FALSE(nio::is_ntfs_rsrc_name(u"AFP_Resource"));
    EXPECT_FALSE(nio::is_ntfs_rsrc_name(u"a:AFP_Resourc"));
    EXPECT_TRUE(nio::is_ntfs_info_name(u"a:AFP_AfpInfo"));
    EXPECT_FALSE(nio::is_ntfs_info_name(u"a:AFP_AfpInf"));
}

TEST(fork_names, are_told_by_the_volume) {
    scratch const folder;
    ntfs_folder const ntfs;
    if (!ntfs.attached())
        GTEST_SKIP() << ntfs_folder::limit;
    wide_string const flat = folder.path("a");
    EXPECT_FALSE(nio::is_ntfs(flat));
    EXPECT_TRUE(nio::is_ntfs(u"N:\\a"));
    EXPECT_TRUE(nio::is_ntfs(u"n:/missing/a"));
    EXPECT_TRUE(nio::is_ntfs(ntfs.path("x/../a")));
    EXPECT_FALSE(nio::is_ntfs(u"Q:\\a"));
    EXPECT_FALSE(nio::is_ntfs(u"\\\\host\\share\\a"));
    EXPECT_FALSE(nio::is_ntfs(u""));
    struct row {
        wide_string path;
        bool must_exist, allow_ntfs, in_stream;
    };
    ntfs.write("plain", "");
    for (row const & r : {
             row{u"N:\\plain", false, true, true},
             row{u"N:\\plain", true, true, false},
             row{u"N:\\plain", false, false, false},
             row{flat, false, true, false},
         }) {
        EXPECT_EQ(nio::is_ntfs_rsrc_name(nio::rsrc_name(r.path, r.must_exist, r.allow_ntfs)), r.in_stream);
        EXPECT_EQ(nio::is_ntfs_info_name(nio::info_name(r.path, r.must_exist, r.allow_ntfs)), r.in_stream);
    }
    EXPECT_FALSE(nio::exists_ntfs(u"N:\\plain") || nio::exists_ntfs(flat));
    nio::file fork(u"N:\\plain:AFP_Resource", nio::file::mode_new);
    fork.close();
    EXPECT_TRUE(nio::exists_ntfs(u"N:\\plain"));
    EXPECT_FALSE(nio::exists_rsrc(flat));
    folder.write("._a", "");
    EXPECT_TRUE(nio::exists_rsrc(flat));
    EXPECT_TRUE(nio::exists_ufs(flat));
}

TEST(nio_attributes, go_from_one_file_to_another) {
    if (auto const limit = support::limit_of_creation_times(); !limit.empty())
        GTEST_SKIP() << limit;
    scratch const folder;
    folder.write("from", "x");
    folder.write("to", "y");
    fs::create_directory(folder.host("folder"));
    nio::item from(folder.path("from")), to(folder.path("to")), directory(folder.path("folder"));
    nio::attributes set(from);
    EXPECT_EQ(set.mode, 0640u);
    EXPECT_EQ(set.finder_info, (std::array<unsigned char, 32>{}));
    set.created.set(126227808000000000, nio::time::format_file_time);
    set.modified.set(126227808010000000, nio::time::format_file_time);
    set.read_only = true;
    set.file_attributes = platform::FILE_ATTRIBUTE_HIDDEN;
    std::generate(set.finder_info.begin(), set.finder_info.end(), [n = 0]() mutable { return ++n; });
    set.apply(to, true, true);
    nio::attributes got(to);
    EXPECT_EQ(got.mode, 0440u);
    EXPECT_TRUE(got.read_only);
    EXPECT_EQ(got.file_attributes, platform::FILE_ATTRIBUTE_HIDDEN | platform::FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(got.created.file_time(), set.created.file_time());
    EXPECT_EQ(got.modified.file_time(), set.modified.file_time());
    EXPECT_EQ(got.finder_info, set.finder_info);
    EXPECT_EQ(folder.read("._to").size(), 82u);

    nio::attributes plain;
    plain.apply(to, false, true); // no times, and no sidecar touched
    EXPECT_EQ(nio::attributes(to).modified.file_time(), set.modified.file_time());
    EXPECT_EQ(nio::attributes(to).finder_info, set.finder_info);
    EXPECT_EQ(nio::attributes(directory).mode, 0750u);
    set.apply(directory, false, false);
    EXPECT_EQ(nio::attributes(directory).mode, 0550u);
    plain.apply(directory, false, false);
    nio::item none(folder.path("none"));
    EXPECT_EQ(raised([&] { nio::attributes missing(none); }), "cannot access timestamps");
}

TEST(nio_attributes, go_to_sidecars_and_to_nothing_else) {
    scratch const folder;
    folder.write("f", "");
    nio::item item(folder.path("f"));
    nio::attributes set;
    folder.write("._f", "no sidecar at all, but someone's data");
    EXPECT_EQ(raised([&] { set.apply(item, true, false); }), "cannot write");
    fs::remove(folder.host("._f"));
    if (support::make_fifo(folder.host("._f")))
        EXPECT_EQ(raised([&] { set.load(item); }), "cannot open file"); // and does not wait for a writer
    fs::remove(folder.host("._f"));
    fs::create_directory(folder.host("._f"));
    EXPECT_EQ(raised([&] { set.load(item); }), "cannot open file");
    set.apply(item, true, false);
}

TEST(nio_attributes, keep_the_information_in_a_stream) {
    ntfs_folder const ntfs;
    if (!ntfs.attached())
        GTEST_SKIP() << ntfs_folder::limit;
    nio::file file(u"N:\\f", nio::file::mode_new);
    file.close();
    nio::attributes set(file);
    set.finder_info.fill('f');
    set.apply(file, true, true);
    EXPECT_EQ(nio::attributes(file).finder_info[0], 0); // looked for only beside a resource fork
    file.create_rsrc(true, false);
    file.close();
    EXPECT_EQ(nio::attributes(file).finder_info[0], 'f');
    // Read-only holds afterwards, and does not keep the information out, as often as it is applied.
    set.read_only = true;
    set.modified.set(126227808000000000, nio::time::format_file_time);
    for (unsigned char const mark : byte_vector{'g', 'h'}) {
        set.finder_info.fill(mark);
        set.apply(file, true, true);
        nio::attributes const got(file);
        EXPECT_TRUE(got.read_only);
        EXPECT_EQ(got.finder_info[0], mark);
        EXPECT_EQ(got.modified.file_time(), set.modified.file_time());
    }
    // Each handle of a backup serves one direction.
    char byte[100] = {};
    file.open_ntfs();
    EXPECT_EQ(raised([&] { file.write_ntfs(byte, 1); }), "cannot write");
    EXPECT_EQ(platform::last_error(), 5u);
    file.close_ntfs();
    EXPECT_TRUE(platform::SetFileAttributesW(u"N:\\f", 0));
    file.open_ntfs_w();
    EXPECT_EQ(raised([&] { file.read_ntfs(byte, 1); }), "invalid NTFS stream structure");
    EXPECT_EQ(platform::last_error(), 5u);
    file.close_ntfs();
}

} // namespace
