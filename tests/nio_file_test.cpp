#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "socle/un/digits.h"
#include "tests/support/ntfs_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

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

TEST(nio_file, reads_writes_and_resizes) {
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
    EXPECT_EQ(file.tell(), 10u);
    EXPECT_TRUE(file.seek(6));
    EXPECT_TRUE(file.resize(20));
    EXPECT_EQ(file.tell(), 6u);
    EXPECT_TRUE(file.resize(4));
    EXPECT_EQ(file.tell(), 4u);
    EXPECT_EQ(static_cast<nio::output &>(file).size(), 4u);
    EXPECT_FALSE(file.seek(all_ones - 3));
    EXPECT_FALSE(file.resize(all_ones));
    EXPECT_EQ(file.tell(), 4u);
    file.seek(0);
    EXPECT_EQ(rest(file), "0123");
    EXPECT_FALSE(file.console());
    file.close();
    EXPECT_FALSE(file.create(false));
    EXPECT_FALSE(file.is_open());
    EXPECT_FALSE(file.create(true));
    EXPECT_EQ(file.size(), 0u);
}

TEST(nio_file, is_created_under_a_normal_name) {
    scratch const folder;
    nio::file file(folder.path("dir") + u"\\a?b", nio::file::mode_closed);
    EXPECT_TRUE(file.create(false));
    EXPECT_EQ(file.path(), folder.path("dir") + u"\\a_b");
    put(file, "first");
    file.close();
    file.path() = folder.path("dir") + u"\\a?b";
    EXPECT_EQ(raised([&] { file.create(false); }), "cannot create");
    EXPECT_EQ(file.path(), folder.path("dir") + u"\\a?b");
    EXPECT_EQ(folder.read("dir/a_b"), "first");
    nio::directory directory(folder.path("x?/y*"));
    EXPECT_TRUE(directory.create());
    EXPECT_TRUE(fs::is_directory(folder.host("x_/y_")));
    EXPECT_FALSE(directory.create());
}

TEST(nio_file, keeps_its_fork_in_a_sidecar) {
    scratch const folder;
    folder.write("f", "data");
    nio::file file(folder.path("f"), nio::file::mode_closed);
    EXPECT_EQ(raised([&] { file.open_rsrc(); }), "cannot open file");
    EXPECT_FALSE(file.create_rsrc(true, false));
    EXPECT_EQ(file.tell(), 0u);
    EXPECT_EQ(file.size(), 0u);
    EXPECT_EQ(folder.read("._f").size(), 82u);
    put(file, "resource");
    EXPECT_TRUE(file.resize(3));
    EXPECT_EQ(file.tell(), 3u);
    file.close();
    EXPECT_EQ(folder.read("._f").substr(82), "res");
    file.open_rsrc_rw();
    EXPECT_EQ(rest(file), "res");
    file.seek(0);
    EXPECT_EQ(rest(file), "res");
    file.close();
    EXPECT_FALSE(file.create_rsrc(true, false)); // one is there
    EXPECT_FALSE(file.is_open());
    file.open();
    EXPECT_EQ(rest(file), "data");
    file.close();

    folder.write("g", "");
    folder.write("._g", "short");
    nio::file other(folder.path("g"), nio::file::mode_closed);
    other.open_rsrc();
    EXPECT_EQ(other.size(), 0u);
    EXPECT_EQ(rest(other), "");

    nio::file odd(folder.path("") + u"\\n?", nio::file::mode_closed);
    EXPECT_TRUE(odd.create_rsrc(false, true));
    EXPECT_EQ(odd.path(), folder.path("") + u"\\n_");
    EXPECT_EQ(folder.read("._n_").size(), 82u);

    file.unlink(true);
    EXPECT_FALSE(folder.exists("f") || folder.exists("._f"));
    file.unlink(false);
    EXPECT_EQ(raised([&] { file.unlink(true); }), "cannot delete");
}

TEST(nio_file, keeps_its_fork_in_a_stream) {
    ntfs_folder const ntfs;
    if (!ntfs.attached())
        GTEST_SKIP() << ntfs_folder::limit;
    nio::file file(u"N:\\f", nio::file::mode_new);
    put(file, "data");
    file.close();
    EXPECT_FALSE(file.create_rsrc(true, false));
    put(file, "resource");
    file.close();
    file.open_rsrc();
    EXPECT_EQ(rest(file), "resource");
    file.close();
    EXPECT_FALSE(ntfs.exists("._f"));
    std::map<wide_string, std::string> const others = {
        {u":note", "remember"},
        {u":" + wide_string(60, u'n'), "a name that is longer than most"},
        {u":large", std::string(100'000, 'l')},
    };
    for (auto const & [name, bytes] : others) {
        nio::file stream(u"N:\\f" + name, nio::file::mode_new);
        put(stream, bytes);
    }
    nio::file information(u"N:\\f:AFP_AfpInfo", nio::file::mode_new);
    put(information, "information");
    information.close();

    // All but the data and the forks goes through a backup to another file, in pieces of any size.
    for (uint32 const size : {1u, 7u, 64u, 65'536u}) {
        file.open_ntfs();
        std::string const digits = std::to_string(size);
        nio::file copy(u"N:\\copy" + wide_string(digits.begin(), digits.end()), nio::file::mode_new);
        copy.close();
        copy.open_ntfs_w();
        std::string block(size, '\0');
        for (uint32 got; (got = file.read_ntfs(block.data(), size)) > 0;)
            copy.write_ntfs(block.data(), got);
        EXPECT_EQ(file.read_ntfs(block.data(), size), 0u);
        file.close_ntfs();
        copy.close_ntfs();
        EXPECT_FALSE(copy.is_open());
        for (auto const & [name, bytes] : others) {
            nio::file copied(copy.path() + name, nio::file::mode_read);
            EXPECT_TRUE(rest(copied) == bytes);
        }
        EXPECT_FALSE(nio::exists(copy.path() + u":AFP_Resource") || nio::exists(copy.path() + u":AFP_AfpInfo"));
        EXPECT_EQ(nio::file(copy.path(), nio::file::mode_read).size(), 0u);
    }
}

TEST(nio_directory, shows_no_sidecars) {
    scratch const folder;
    for (char const * name : {"a", "._a", "b", "._c", ".x", "..x"})
        folder.write(name, "");
    auto const root = folder.path("");
    nio::directory const directory(root);
    std::vector<wide_string> shown;
    for (auto it = directory.begin(); it != directory.end(); ++it)
        shown.push_back(it->substr(it->rfind(u'\\') + 1));
    EXPECT_EQ(shown, (std::vector<wide_string>{u"..x", u".x", u"a", u"b"}));
    // A copy shows the same entry, but goes on from the top.
    auto it = directory.begin();
    ++it, ++it, ++it;
    nio::directory::iterator copy(it);
    EXPECT_EQ(*copy, *it);
    ++copy;
    EXPECT_TRUE(copy->ends_with(u"\\.x"));
    auto other = directory.end();
    other = it;
    EXPECT_EQ(*other, *it);
    EXPECT_TRUE((other++)->ends_with(u"\\.x"));
    EXPECT_TRUE((++it) == directory.end());
    EXPECT_TRUE(nio::directory(folder.path("none")).begin() == directory.end());
    EXPECT_TRUE(nio::directory().begin() == directory.end());
}

TEST(nio_directory, has_room_for_temporary_ones) {
    scratch const folder;
    nio::directory made;
    made.create_temp(folder.path("new"));
    nio::file file(u"", nio::file::mode_closed);
    file.create_temp(made.path());
    EXPECT_TRUE(file.is_open());
    EXPECT_TRUE(file.path().starts_with(made.path() + u'\\'));
    EXPECT_TRUE(made.path().starts_with(folder.path("new") + u'\\'));
}

TEST(nio_directory, is_emptied_but_not_through_links) {
    if (auto const limit = support::limit_of_links(); !limit.empty())
        GTEST_SKIP() << limit;
    scratch const folder;
    for (char const * name : {"outside/deep", "tree/sub/sub"})
        fs::create_directories(folder.host(name));
    for (char const * name :
         {"outside/file", "outside/deep/file", "tree/a", "tree/._a", "tree/sub/b", "tree/sub/sub/c"})
        folder.write(name, "x");
    support::make_link("../outside", folder.host("tree/link"));
    support::make_link("../outside/file", folder.host("tree/sub/file_link"));
    support::make_link("nothing", folder.host("tree/dangling"));
    support::make_link("loop", folder.host("tree/loop"));
    support::make_link("outside", folder.host("root_link"));
    support::make_fifo(folder.host("tree/pipe"));
    nio::directory tree(folder.path("tree"));
    EXPECT_EQ(raised([&] { tree.unlink(true); }), "cannot delete");
    tree.unlink(false);
    tree.unlink_with_children(true);
    EXPECT_FALSE(folder.exists("tree"));
    nio::directory(folder.path("root_link")).unlink_with_children(true);
    EXPECT_FALSE(folder.exists("root_link"));
    EXPECT_TRUE(folder.exists("outside/file") && folder.exists("outside/deep/file"));
    nio::unlink(folder.path("outside/file"), true);
    EXPECT_EQ(raised([&] { nio::unlink(folder.path("outside/file"), true); }), "cannot delete");
}

TEST(nio_directory, fails_at_once_where_nothing_can_be_made) {
    scratch const folder;
    folder.write("file", "");
    wide_string deep = folder.path("file");
    for (int i = 0; i < 60; ++i)
        deep += u"\\d";
    nio::directory directory(deep);
    EXPECT_FALSE(directory.create());
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

TEST(nio_attributes, come_from_sidecars_of_other_programs) {
    std::string const nothing = un::hex(narrow_string(32, '\0'));
    std::pair<char const *, std::string> const table[] = {
        {"Both Forks", "4150504c536f436c200000000000000000000000000000000000000000000000"},
        {"Bundle Flags", "7273726352534544640000000000000000000000000000000000000000000000"},
        {"Placed Icon", "5445585443574945004400000000000000000000000000000000000000000000"},
        {"five_entries", "5445585443574945000000000000000000000000000000000000000000000000"},
        {"moved_entry", "504446204341524f01020102030405060708090a0b0c0d0e0f10111213141516"},
        {"no_entry_nine", nothing},
        {"version_one", nothing},
    };
    for (auto const & [name, finder] : table) {
        nio::item item(platform::from_host(std::string(TEST_SAMPLES "/appledouble/") + name));
        auto const found = nio::attributes(item).finder_info;
        EXPECT_EQ(un::hex(byte_vector(found.begin(), found.end())), finder) << name;
    }
}

TEST(nio_attributes, change_only_the_information_of_a_sidecar) {
    scratch const folder;
    folder.write("f", "");
    // Another program's: the resource data first, the information behind it.
    std::string const head = "\0\5\x16\7\0\2\0\0________________\0\2"
                             "\0\0\0\2\0\0\0\x32\0\0\0\4"
                             "\0\0\0\x09\0\0\0\x36\0\0\0\x20"s;
    std::string const info(32, 'i'), foreign = head + "rsrc" + info + "more";
    folder.write("._f", foreign);
    nio::item item(folder.path("f"));
    nio::attributes set(item);
    EXPECT_EQ(set.finder_info[0], 'i');
    set.finder_info.fill('n');
    set.apply(item, true, false);
    EXPECT_EQ(folder.read("._f"), head + "rsrc" + std::string(32, 'n') + "more");
    for (std::string const & other :
         {"no sidecar at all, but someone's data"s, head.substr(0, 40), head.substr(0, 30)}) {
        folder.write("._f", other);
        set.finder_info.fill('k');
        set.load(item);
        EXPECT_EQ(set.finder_info[0], 'k');
        EXPECT_EQ(raised([&] { set.apply(item, true, false); }), "cannot write");
        EXPECT_EQ(folder.read("._f"), other);
    }
    // An entry that is too short, and one that lies over the entries.
    for (auto const & [at, byte] : {std::pair{49, '\x10'}, std::pair{45, '\x28'}}) {
        std::string damaged = foreign;
        damaged[static_cast<std::size_t>(at)] = byte;
        folder.write("._f", damaged);
        EXPECT_EQ(raised([&] { set.apply(item, true, false); }), "cannot write");
        EXPECT_EQ(folder.read("._f"), damaged);
    }
    folder.write("._f", "");
    set.apply(item, true, false);
    EXPECT_EQ(folder.read("._f").size(), 82u);
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
    nio::file info(u"N:\\f:AFP_AfpInfo", nio::file::mode_read);
    std::string const block = rest(info);
    EXPECT_EQ(block, "AFP\0\0\0\1\0\0\0\0\0\0\0\0\0"s + std::string(32, 'f') + std::string(12, '\0'));
    info.close();
    EXPECT_EQ(nio::attributes(file).finder_info[0], 0); // looked for only beside a resource fork
    file.create_rsrc(true, false);
    file.close();
    EXPECT_EQ(nio::attributes(file).finder_info[0], 'f');
    set.apply(file, true, false);
    EXPECT_EQ(ntfs.read("._f").size(), 82u);
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
