#include "socle/io/directory.h"
#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/nio/directory.h"
#include "socle/platform/host.h"
#include "tests/support/raised.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <iterator>
#include <ranges>

namespace {

namespace fs = std::filesystem;

any::path path_in(scratch const & folder, std::string const & name) { return {folder.path(name), true}; }

std::string raised(auto && call) { return support::raised_as<io::exception>(call); }

static_assert(std::ranges::input_range<io::directory const> && std::ranges::input_range<nio::directory const>);

std::string shown(io::directory const & folder) {
    std::string names;
    for (io::item const & entry : folder)
        names += platform::to_host(entry.path().leaf()) + " ";
    return names;
}

/// Runs a test with wide and with narrow calls.
struct both_calls : testing::TestWithParam<bool> {
    both_calls() { io::wide_calls = GetParam(); }
    ~both_calls() override { io::wide_calls = true; }
};

INSTANTIATE_TEST_SUITE_P(wide, both_calls, testing::Bool());

TEST_P(both_calls, a_walk_hides_the_forks_of_what_is_there) {
    struct {
        std::vector<std::string> names;
        std::string shown;
    } const table[] = {
        {{}, ""},
        {{"x", "x.rsrc", "x.info"}, "x "},
        {{"x.rsrc", "x.info"}, "x.rsrc "},
        {{"x.info"}, "x.info "},
        {{".rsrc", ".info", ".x"}, ".x "},
        {{"a", "a.rsrc.info", "b.info.rsrc", "b.info"}, "a a.rsrc.info b.info "},
        {{"a", "a.rsrc", "a.rsrc.info", "a.rsrc.rsrc"}, "a "},
    };
    for (auto const & c : table) {
        scratch const folder;
        for (auto const & name : c.names)
            folder.write(name, "");
        io::directory directory(path_in(folder, ""));
        EXPECT_EQ(shown(directory), c.shown);
    }
    scratch const folder;
    if (support::tells_case()) {
        for (char const * name : {"x", "x.RSRC", "x.Info"})
            folder.write(name, "");
        io::directory directory(path_in(folder, ""));
        EXPECT_EQ(shown(directory), "x x.Info x.RSRC ");
    }
    io::directory none(path_in(folder, "none"));
    EXPECT_TRUE(none.begin() == none.end());
}

TEST_P(both_calls, a_copy_goes_on_from_the_start) {
    scratch const folder;
    for (char const * name : {"a", "b", "c"})
        folder.write(name, "");
    io::directory directory(path_in(folder, ""));
    auto entry = directory.begin();
    ++entry, ++entry;
    auto copy = entry;
    EXPECT_EQ(copy->path().leaf(), u"c");
    EXPECT_EQ((++copy)->path().leaf(), u"b");
    EXPECT_TRUE(++entry == io::directory::current.end());
    io::directory::iterator assigned;
    assigned = copy;
    EXPECT_EQ(assigned->path().leaf(), u"b");
    assigned = entry;
    EXPECT_FALSE(assigned == entry); // a search of its own, from the start

    // Moving goes on in the same search.
    auto moved = std::ranges::next(directory.begin(), 1);
    EXPECT_EQ(std::ranges::next(std::move(moved), 1)->path().leaf(), u"c");
    nio::directory wide(folder.path(""));
    EXPECT_TRUE(std::ranges::next(std::ranges::next(wide.begin(), 1), 1)->ends_with(u"c"));
}

TEST_P(both_calls, emptying_takes_all_but_what_lies_behind_links) {
    if (auto const limit = support::limit_of_links(); !limit.empty())
        GTEST_SKIP() << limit;
    scratch const folder;
    fs::create_directories(folder.host("outside/sub"));
    fs::create_directories(folder.host("tree/sub/sub"));
    // One sidecar comes before its file, others behind theirs.
    for (char const * name : {"outside/file", "outside/sub/file", "tree/x", "tree/x.info", "tree/x.rsrc", "tree/X.info",
                              "tree/x.info.rsrc", "tree/sub/y", "tree/sub/sub/z.rsrc"})
        folder.write(name, "x");
    support::make_link("../outside", folder.host("tree/link"));
    support::make_link("loop", folder.host("tree/loop"));
    support::make_link("nothing", folder.host("tree/sub/dangling"));
    support::make_link("outside", folder.host("root"));
    support::make_fifo(folder.host("tree/pipe"));
    io::directory tree(path_in(folder, "tree")), root(path_in(folder, "root"));
    EXPECT_EQ(raised([&] { tree.unlink(true); }).substr(0, 28), "io::directory: cannot delete");
    tree.unlink(false);
    EXPECT_TRUE(folder.exists("tree"));
    tree.unlink_with_children(true);
    EXPECT_FALSE(folder.exists("tree"));
    root.unlink_with_children(true);
    EXPECT_FALSE(folder.exists("root"));
    EXPECT_TRUE(folder.exists("outside/file") && folder.exists("outside/sub/file"));
}

TEST(io_directory, what_cannot_be_deleted_ends_the_emptying) {
    scratch const folder;
    fs::create_directories(folder.host("tree/sub"));
    folder.write("tree/sub/kept", "kept");
    folder.write("tree/other", "");
    ASSERT_TRUE(support::make_read_only(folder.host("tree/sub/kept")));
    io::directory tree(path_in(folder, "tree"));
    tree.unlink_with_children(false);
    EXPECT_EQ(folder.read("tree/sub/kept"), "kept");
    EXPECT_FALSE(folder.exists("tree/other"));
    EXPECT_NE(raised([&] { tree.unlink_with_children(true); }), "nothing");
}

TEST(io_directory, is_created_with_its_parents) {
    scratch const folder;
    fs::create_directory(folder.host("a"));
    folder.write("file", "");
    io::directory deep(path_in(folder, "a/b/c")), deeper(path_in(folder, "n/m/l")), odd(path_in(folder, "q?"));
    EXPECT_FALSE(deep.create_with_parents(false));
    EXPECT_TRUE(folder.exists("a/b/c"));
    EXPECT_FALSE(deep.create(false));
    EXPECT_EQ(raised([&] { deeper.create_with_parents(false); }), "io::directory: cannot create"); // one level only
    static_cast<io::item &>(deeper).create_with_parents(false);
    EXPECT_TRUE(folder.exists("n/m/l"));
    folder.write("q_", "");
    EXPECT_TRUE(odd.create(false));
    EXPECT_EQ(odd.path().leaf(), u"q__1");
    io::directory below(path_in(folder, "file/d"));
    auto const kept = below.path();
    EXPECT_EQ(raised([&] { below.create(false); }), "io::directory: cannot create");
    EXPECT_EQ(below.path().full_string(), kept.full_string());
    EXPECT_FALSE(io::directory().create(false));
    EXPECT_EQ(io::directory::current.path().size(), 0u);
}

TEST(io_item, a_temporary_one_goes_with_its_object) {
    scratch const folder;
    io::directory const parent(path_in(folder, ""));
    any::path path;
    {
        io::file file;
        file.create_temp(parent);
        path = file.path();
        EXPECT_TRUE(file.temporary());
        EXPECT_TRUE(file.exists());
        EXPECT_EQ(file.size(), 0u);
        io::item::summary const sum = file.scan(file);
        EXPECT_EQ(sum.files, 1u);
        EXPECT_TRUE(file.exists()); // no copy was made that deletes it
        file.data_fork().close(false);
        io::directory sub;
        sub.create_temp(parent);
        EXPECT_TRUE(sub.exists());
    }
    EXPECT_FALSE(io::item(path).exists());
    io::item plain;
    plain.create_temp(parent);
    EXPECT_FALSE(plain.temporary());
    io::file nowhere;
    nowhere.create_temp(io::directory(path_in(folder, "none")));
    EXPECT_FALSE(nowhere.temporary());
    support::set_variable("TEMP", "C:\\one/two");
    EXPECT_EQ(io::directory::temp().path().full_string(), u"C:\\one\\two");
    support::set_variable("TEMP", nullptr);
    support::set_variable("TMP", nullptr);
    EXPECT_TRUE(io::directory::temp().path().empty());
}

TEST(io_item, scans_and_moves) {
    scratch const folder;
    fs::create_directories(folder.host("d/empty"));
    folder.write("d/a", std::string(10, 'x'));
    folder.write("d/b", std::string(20, 'x'));
    folder.write("d/b.rsrc", std::string(400, 'x'));
    uint32 const pipes = support::make_fifo(folder.host("d/pipe"));
    uint32 const links = support::limit_of_links().empty();
    if (links > 0)
        support::make_link(".", folder.host("d/empty/up"));
    io::item tree(path_in(folder, "d")), none(path_in(folder, "none")), file(path_in(folder, "d/a"));
    auto const sum = io::item::scan({&tree, &none});
    EXPECT_EQ(sum.items, 4 + pipes + links);
    EXPECT_EQ(sum.directories, 2 + links);
    EXPECT_EQ(sum.files, 2 + pipes);
    EXPECT_EQ(sum.bytes, 30u);
    EXPECT_EQ(sum.missing, 1u);
    EXPECT_EQ(tree.size(), 0u);
    EXPECT_EQ(file.size(), 10u);
    EXPECT_EQ(none.size(), all_ones);
    EXPECT_EQ(file.parent().path().full_string(), tree.path().full_string());
    EXPECT_EQ(io::item(any::path(u"a/b/c", u"/", true)).parent().path().full_string(), u"a/b");
    file.move(io::directory(path_in(folder, "d/empty")));
    EXPECT_TRUE(folder.exists("d/empty/a"));
    EXPECT_EQ(raised([&] { file.move(io::directory(path_in(folder, "none"))); }), "io::item: cannot move to");
    EXPECT_EQ(file.path().full_string(), path_in(folder, "none/a").full_string());
    tree.unlink(false);
    EXPECT_TRUE(folder.exists("d"));
}

} // namespace
