// What both families of files and folders do, each by names of its own.

#include "socle/io/directory.h"
#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/move.h"
#include "socle/platform/host.h"
#include "tests/support/raised.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <ranges>

namespace {

namespace fs = std::filesystem;

static_assert(std::ranges::input_range<io::directory const> && std::ranges::input_range<nio::directory const>);

/// Origin, words and code of what a call throws, without the path and the system's text.
std::string raised(auto && call) {
    try {
        call();
    } catch (io::exception const & e) {
        return support::words_of(e) + ": " + std::to_string(e.error());
    } catch (nio::filesystem_exception const & e) {
        return e.message().substr(0, e.message().find(" (")) + ": " + std::to_string(e.error());
    }
    return "nothing";
}

wide_string text_of(io::item const & item) { return item.path().full_string(); }
wide_string text_of(nio::item const & item) { return item.path(); }
wide_string text_of(wide_string const & path) { return path; }
wide_string leaf_of(wide_string const & path) { return path.substr(path.rfind(u'\\') + 1); }

template <bool wide>
struct io_family {
    using item = io::item;
    using directory = io::directory;
    using refusal = io::exception;

    io_family() { io::wide_calls = wide; }
    ~io_family() { io::wide_calls = true; }

    static any::path path(wide_string const & text) { return {text, true}; }
    static wide_string unique(wide_string const & from, int tries) {
        io::item item(path(from));
        bool const changed = item.make_unique(tries);
        EXPECT_EQ(changed, text_of(item) != from);
        return text_of(item);
    }
};

struct nio_family {
    using item = nio::item;
    using directory = nio::directory;
    using refusal = nio::filesystem_exception;

    static wide_string path(wide_string const & text) { return text; }
    static wide_string unique(wide_string const & from, int tries) {
        return nio::make_unique(from, static_cast<uint32>(tries));
    }
};

template <class Family>
struct families : testing::Test {
    using folder_type = typename Family::directory;
    static constexpr bool io = std::is_same_v<folder_type, ::io::directory>;

    folder_type folder(std::string const & name) const { return folder_type(Family::path(here_.path(name))); }
    /// The leaf names that a walk shows.
    std::string shown(std::string const & name) const {
        std::string names;
        folder_type const walked = folder(name);
        for (auto const & entry : walked)
            names += platform::to_host(leaf_of(text_of(entry))) + ' ';
        return names;
    }
    scratch here_;
    Family family_;
};

struct names_of_families {
    template <class Family>
    static std::string GetName(int) {
        return std::is_same_v<Family, nio_family>        ? "nio"
               : std::is_same_v<Family, io_family<true>> ? "io"
                                                         : "io_narrow";
    }
};

using all_families = testing::Types<io_family<true>, io_family<false>, nio_family>;
TYPED_TEST_SUITE(families, all_families, names_of_families);

TYPED_TEST(families, walks_hide_sidecars) {
    struct {
        std::vector<std::string> names;
        std::string io, nio;
    } const table[] = {
        {{}, "", ""},
        {{"x", "x.rsrc", "x.info"}, "x ", "x x.info x.rsrc "},
        {{"x.rsrc", "x.info"}, "x.rsrc ", "x.info x.rsrc "},
        {{"x.info"}, "x.info ", "x.info "},
        {{".rsrc", ".info", ".x"}, ".x ", ".info .rsrc .x "},
        {{"a", "a.rsrc.info", "b.info.rsrc", "b.info"}, "a a.rsrc.info b.info ", "a a.rsrc.info b.info b.info.rsrc "},
        {{"a", "a.rsrc", "a.rsrc.info", "a.rsrc.rsrc"}, "a ", "a a.rsrc a.rsrc.info a.rsrc.rsrc "},
        {{"a", "._a", "._c", "..x"}, "..x ._a ._c a ", "..x a "},
    };
    int row = 0;
    for (auto const & [names, by_io, by_nio] : table) {
        std::string const folder = std::to_string(++row);
        fs::create_directory(this->here_.host(folder));
        for (auto const & name : names)
            this->here_.write(folder + '/' + name, "");
        EXPECT_EQ(this->shown(folder), this->io ? by_io : by_nio) << row;
    }
    if (support::tells_case() && this->io) {
        for (char const * name : {"3/x", "3/x.RSRC", "3/x.Info"})
            this->here_.write(name, "");
        EXPECT_EQ(this->shown("3"), "x x.Info x.RSRC ");
    }
    auto const none = this->folder("none");
    EXPECT_TRUE(none.begin() == none.end());
}

TYPED_TEST(families, copies_of_iterators_go_on_from_the_start) {
    for (char const * name : {"a", "b"})
        this->here_.write(name, "");
    fs::create_directory(this->here_.host("c"));
    auto const folder = this->folder("");
    auto entry = std::ranges::next(folder.begin(), 2);
    auto copy = entry;
    EXPECT_EQ(leaf_of(text_of(*copy)), u"c");
    EXPECT_TRUE(copy.is_directory());
    EXPECT_EQ(leaf_of(text_of(*++copy)), u"b");
    EXPECT_TRUE(++entry == typename TypeParam::directory().end());
    decltype(entry) assigned;
    assigned = copy;
    EXPECT_EQ(leaf_of(text_of(*assigned)), u"b");
    EXPECT_EQ(leaf_of(text_of(*assigned++)), u"b");
    assigned = *&assigned;
    EXPECT_EQ(leaf_of(text_of(*assigned)), u"b");
    assigned = entry;
    EXPECT_FALSE(assigned == entry); // a search of its own, from the start
    // Moving goes on in the same search.
    auto moved = std::ranges::next(folder.begin(), 1);
    EXPECT_EQ(leaf_of(text_of(*std::ranges::next(std::move(moved), 1))), u"c");
}

TYPED_TEST(families, unique_names_count_before_the_ending) {
    for (char const * name : {"a.b.c", "a_1.b.c", "a.b_1.c", "plain", ".profile"})
        this->here_.write(name, "");
    struct {
        char const * name;
        int tries;
        char const *io, *nio;
    } const table[] = {
        {"missing", 0, "missing", "missing"},
        {"a.b.c", 2, "a_2.b.c", "a.b_2.c"},
        {"plain", 9, "plain_1", "plain_1"},
        {".profile", 1, "_1.profile", "_1.profile"},
    };
    for (auto const & [name, tries, by_io, by_nio] : table)
        EXPECT_EQ(TypeParam::unique(this->here_.path(name), tries), this->here_.path(this->io ? by_io : by_nio));
    std::string const words =
        this->io ? "io::item: cannot resolve name conflict for " : "cannot resolve a name conflict: ";
    for (std::pair<char const *, int> const & each : {std::pair("plain", 0), std::pair("a.b.c", 1)}) {
        wide_string const path = this->here_.path(each.first);
        EXPECT_TRUE(raised([&] { TypeParam::unique(path, each.second); }).starts_with(words));
    }
}

TYPED_TEST(families, what_cannot_be_deleted_ends_the_emptying) {
    fs::create_directories(this->here_.host("tree/sub"));
    this->here_.write("tree/sub/kept", "kept");
    this->here_.write("tree/other", "");
    ASSERT_TRUE(support::make_read_only(this->here_.host("tree/sub/kept")));
    auto tree = this->folder("tree");
    tree.unlink_with_children(false);
    EXPECT_EQ(this->here_.read("tree/sub/kept"), "kept");
    EXPECT_FALSE(this->here_.exists("tree/other"));
    EXPECT_THROW(tree.unlink_with_children(true), typename TypeParam::refusal);
}

TYPED_TEST(families, items_are_asked_what_they_are) {
    this->here_.write("file", "");
    fs::create_directory(this->here_.host("dir"));
    bool const links = support::limit_of_links().empty();
    if (links) {
        support::make_link("dir", this->here_.host("to_dir"));
        support::make_link("nowhere", this->here_.host("dangling"));
    }
    struct {
        char16_t const * name;
        bool exists, directory;
    } const table[] = {
        {u"file", true, false},      {u"dir", true, true},       {u"dir\\", true, true},     {u"to_dir", links, links},
        {u"dangling", links, false}, {u"missing", false, false}, {u"file\\x", false, false}, {u"a?", false, false},
    };
    for (auto const & [name, exists, directory] : table) {
        typename TypeParam::item const item(TypeParam::path(this->here_.path("") + name));
        EXPECT_EQ(item.exists(), exists);
        if constexpr (TestFixture::io)
            EXPECT_EQ(item.directory(), directory);
        else
            EXPECT_EQ(item.is_directory(), directory);
        EXPECT_EQ(text_of(typename TestFixture::folder_type(item)), text_of(item));
    }
    EXPECT_EQ(platform::is_link(this->here_.path("to_dir")), links);
    EXPECT_FALSE(platform::is_link(this->here_.path("dir")) || platform::is_link(this->here_.path("missing")));
    std::string kinds;
    auto const folder = this->folder("");
    for (auto entry = folder.begin(), end = folder.end(); entry != end; ++entry)
        kinds += std::string(entry.is_directory() ? "d" : "") + (entry.is_link() ? "l " : " ");
    EXPECT_EQ(kinds, links ? "l d  dl " : "d  ");
}

TYPED_TEST(families, are_named_absolutely_and_by_links) {
    wide_string const target = u"C:\\socle\\Gr\xf6\xdf\x65 \xe9t\xe9.txt", in = this->here_.path("");
    for (char const * name : {"x.Lnk", "x"})
        fs::copy(fs::path(TEST_DATA) / "links/nonascii.lnk", this->here_.host(name));
    this->here_.write("broken.lnk", "no link");
    struct {
        char16_t const * name;
        bool link, resolved;
        wide_string path;
    } const table[] = {
        {u"x.Lnk", true, true, target},
        {u"x", false, true, in + u"x"},
        {u"broken.lnk", true, false, in + u"broken.lnk"},
        {u"missing.lnk", true, false, in + u"missing.lnk"},
        {u"d.lnk\\a", false, true, in + u"d.lnk\\a"},
    };
    for (auto const & [name, link, resolved, path] : table) {
        if constexpr (TestFixture::io) {
            io::item item(any::path(in + name, true));
            EXPECT_EQ(item.link(), link);
            EXPECT_EQ(item.resolve_link(), resolved);
            EXPECT_EQ(item.path().full_string(), path);
        } else {
            EXPECT_EQ(nio::is_link(in + name), link);
            EXPECT_EQ(nio::resolve_link(in + name), path);
        }
    }
    if constexpr (TestFixture::io) {
        io::item item(any::path(u"N:a\\..\\b", true));
        item.make_absolute();
        EXPECT_EQ(item.path().full_string(), u"N:\\b");
    } else {
        EXPECT_TRUE(nio::make_absolute(u"\\a/b\\.\\c\\..\\d").ends_with(u":\\a\\b\\d"));
        EXPECT_EQ(nio::make_absolute(u"N:a"), u"N:\\a");
        EXPECT_EQ(nio::make_absolute(u""), u"");
    }
}

TEST(both_families, say_what_could_not_be_done) {
    scratch const here;
    for (char const * file : {"a", "b", "s_t.rsrc", "._c", "._a", "._m_", "n_"})
        here.write(file, file);
    auto const item = [&](char const * name) { return io::item(any::path(here.path(name), true)); };
    auto const io_file = [&](char16_t const * name) { return io::file(any::path(here.path("") + name, true)); };
    auto const io_folder = [&](char const * name) { return io::directory(any::path(here.path(name), true)); };
    auto const move = [&](char16_t const * to) {
        wide_string target = here.path("") + to;
        nio::move(here.path("a"), target, true);
    };
    auto const write_info = [&](char16_t const * name) {
        nio::item of(here.path("") + name);
        nio::attributes().apply(of, true, false);
    };
    struct {
        std::string words;
        std::function<void()> act;
    } const table[] = {
        {"io::item: cannot move/rename to: 183", [&] { item("a").move(any::path(here.path("b"), true)); }},
        {"io::item: cannot rename to: 183", [&] { item("a").rename(any::string(u"b")); }},
        {"io::item: cannot move to: 3", [&] { item("a").move(io_folder("none")); }},
        {"io::item: cannot be created generically: 0", [&] { item("new").create(false); }},
        {"io::fork: cannot create: 80", [&] { io_file(u"a").create(false); }},
        {"io::fork: cannot create: 80", [&] { io_file(u"s?t").rsrc_fork().create(true); }},
        {"io::fork: cannot create: 3", [&] { io_file(u"no\\f?").create(false); }},
        {"io::fork: cannot delete: 2", [&] { io_file(u"none").data_fork().unlink(true); }},
        {"nothing", [&] { io_file(u"none").unlink(true); }},
        {"io::directory: cannot create: 3", [&] { io_folder("no/folder").create(false); }},
        {"io::directory: cannot create: 3", [&] { io_folder("no/deeper/folder").create_with_parents(false); }},
        {"io::directory: cannot create: 3", [&] { io_folder("a/folder").create(false); }},
        {"nothing", [&] { io::directory().create(false); }},
        {"io::directory: cannot delete ", [&] { io_folder("none").unlink(true); }},
        {"cannot move: 183", [&] { move(u"b"); }},
        {"cannot move: 183", [&] { move(u"c"); }}, // the sidecar's place is taken
        {"cannot move: 123", [&] { move(u"c?"); }},
        {"cannot create: 80", [&] { nio::file(here.path("") + u"n?", nio::file::mode_closed).create(false); }},
        {"cannot delete: 2", [&] { nio::unlink(here.path("none"), true); }},
        {"cannot delete: 2", [&] { nio::directory(here.path("none")).unlink(true); }},
        {"cannot create: 183", [&] { nio::directory(here.path("") + u"n?").create(); }},
        {"nothing", [&] { nio::directory(here.path("a/b/c")).create(); }},
        {"nothing", [&] { EXPECT_FALSE(nio::directory().create()); }},
        {"nothing", [&] { write_info(u"i?"); }},
        {"cannot create: 80", [&] { write_info(u"m?"); }},
        {"nothing", [&] { EXPECT_TRUE(nio::directory().begin() == nio::directory().end()); }},
    };
    for (auto const & [words, act] : table)
        EXPECT_TRUE(raised(act).starts_with(words)) << words << ", but " << raised(act);
    EXPECT_EQ(here.read("a") + here.read("b") + here.read("._c") + here.read("._m_") + here.read("n_"), "ab._c._m_n_");
    EXPECT_TRUE(here.exists("._i_"));
}

TEST(both_families, have_temporary_files) {
    scratch const here;
    any::path const parent(here.path(""), true);
    any::path path;
    {
        io::file file;
        file.create_temp(io::directory(parent));
        path = file.path();
        EXPECT_TRUE(file.temporary() && file.exists());
        EXPECT_EQ(file.size(), 0u);
        EXPECT_EQ(file.scan(file).files, 1u);
        EXPECT_TRUE(file.exists()); // no copy was made that deletes it
        file.data_fork().close(false);
        io::directory folder;
        folder.create_temp(io::directory(parent));
        EXPECT_TRUE(folder.exists());
    }
    EXPECT_TRUE(fs::is_empty(here.host("")));
    io::item plain;
    plain.create_temp(io::directory(parent));
    EXPECT_FALSE(plain.temporary());
    io::file nowhere;
    nowhere.create_temp(io::directory(any::path(here.path("none"), true)));
    EXPECT_FALSE(nowhere.temporary());

    nio::directory made;
    made.create_temp(here.path("new"));
    nio::file file(u"", nio::file::mode_closed);
    file.create_temp(made.path());
    EXPECT_TRUE(file.is_open());
    EXPECT_TRUE(file.path().starts_with(made.path() + u'\\'));
    EXPECT_TRUE(made.path().starts_with(here.path("new") + u'\\'));

    struct {
        char const *temp, *tmp;
        char16_t const *nio, *io;
    } const table[] = {{"C:\\one/\xc3\xa9", "/other", u"C:\\one/\xe9", u"C:\\one\\\xe9"},
                       {nullptr, "/other", u"/other", u"\\other"},
                       {nullptr, nullptr, u".", u""}};
    for (auto const & [temp, tmp, by_nio, by_io] : table) {
        support::set_variable("TEMP", temp);
        support::set_variable("TMP", tmp);
        EXPECT_EQ(nio::temp_directory(), by_nio);
        EXPECT_EQ(io::directory::temp().path().full_string(), by_io);
    }
}

TEST(both_families, tell_sizes_and_parents) {
    scratch const here;
    here.write("a", "0123456789");
    io::item folder(any::path(here.path(""), true)), none(any::path(here.path("none"), true)),
        file(any::path(here.path("a"), true));
    EXPECT_EQ(io::item::scan({&folder, &none, &file}).items, 3u);
    EXPECT_EQ(folder.size(), 0u);
    EXPECT_EQ(file.size(), 10u);
    EXPECT_EQ(none.size(), all_ones);
    EXPECT_EQ(file.parent().path().full_string(), folder.path().full_string());
    EXPECT_EQ(io::item(any::path(u"a/b/c", u"/", true)).parent().path().full_string(), u"a/b");
}

} // namespace
