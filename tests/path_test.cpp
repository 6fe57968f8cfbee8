#include "socle/any/path.h"
#include "socle/nio/path.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace {

using elements = std::vector<any::string>;

elements of(any::path const & path) { return {path.begin(), path.end()}; }

TEST(path, cuts_at_the_separators_given) {
    any::path path(u"a/b:c", u":", true);
    EXPECT_EQ(of(path), (elements{u"a/b", u"c"}));
    EXPECT_EQ(path.full_string(), u"a/b:c");
    path = u"x:./y:.:";
    EXPECT_EQ(of(path), (elements{u"x", u"./y"}));
    any::path whole(u"a/b", u"", true);
    EXPECT_EQ(of(whole), elements{u"a/b"});
    whole += u"c";
    EXPECT_EQ(whole.full_string(), u"a/bc") << "nothing to join with";
    EXPECT_EQ(whole.full_size(), 4u);
    whole.reset_separator();
    EXPECT_EQ(whole.full_string(), u"a/b\\c");
    path.clear();
    path += any::path(u"p/q", true);
    EXPECT_EQ(path.full_string(), u"p:q");
    EXPECT_EQ(path.parent().full_string(), u"p");
    EXPECT_EQ(((path + u"r").parent() + u"s").full_string(), u"p\\q\\s") << "a parent has the default ones";
    EXPECT_EQ((path + any::path(u"r/s", true)).full_string(), u"p:q:r:s");
}

TEST(path, adds_and_drops) {
    any::path path;
    path.add_leaf(u"");
    EXPECT_EQ(path.full_string(), u"");
    path += u"a";
    EXPECT_EQ(path.full_string(), u"\\a");
    path.push_back(u"");
    EXPECT_EQ(path.full_string(), u"\\a\\");
    path.set_parent(any::path(u"p/q", true));
    any::path into(u"x", u":", true);
    path.get_parent(into);
    into += u"y";
    EXPECT_EQ(into.full_string(), u"p:y");
    path.to_parent();
    EXPECT_EQ(of(path), elements{u"p"});
    EXPECT_EQ(path.parent_string(), u"");
    EXPECT_EQ(path.parent_size(), 0u);
    path.to_parent();
    path.to_parent();
    EXPECT_TRUE(path.empty());
    EXPECT_TRUE(path.parent().empty());
    EXPECT_TRUE(any::path::null.empty());
}

TEST(path, goes_to_the_host_and_back) {
    scratch const folder;
    for (char const * name : {"a", "\xC3\xA9 \xF0\x9F\x98\x80"})
        for (auto const & host : {support::path_of(name), folder.host(name)})
            EXPECT_EQ(any::path::from_host(host).to_host(), host);
    EXPECT_EQ(any::path::from_host("").to_host(), "");
    any::path const custom(u"C:,a,b", u",", false);
    EXPECT_EQ(custom.to_host(), any::path(u"C:\\a\\b", true).to_host());
    EXPECT_EQ((custom / u"c" / any::path(u"d\\e", false)).full_string(), u"C:,a,b,c,d,e");
}

TEST(path, takes_its_own_elements) {
    any::path const start(u"a long name that is stored apart/another such long name.txt", true);
    elements const both = of(start);
    any::path path = start;
    path.add_leaf(path.leaf());
    path.push_back(*path.begin());
    EXPECT_EQ(of(path), (elements{both[0], both[1], both[1], both[0]}));
    path = start;
    path.set_parent(path);
    EXPECT_EQ(of(path), (elements{both[0], both[1], both[1]}));
    path = start;
    path += path;
    EXPECT_EQ(of(path), (elements{both[0], both[1], both[0], both[1]}));
    path.get_parent(path);
    EXPECT_EQ(path.size(), 3u);
    path = start;
    path.leaf().str(true);
    path.get_full_string(path.leaf());
    EXPECT_EQ(path.leaf(), start.full_string());
    path = path.leaf();
    EXPECT_EQ(of(path), both);
    path.leaf() += u"x";
    path.get_parent_string(*path.begin());
    EXPECT_EQ(*path.begin(), both[0]);
}

TEST(path, order) {
    elements const sorted = {u"", u"A", u"a", u"a/b", u"a b", u"b"};
    for (std::size_t i = 0; i < sorted.size(); ++i)
        for (std::size_t k = 0; k < sorted.size(); ++k)
            EXPECT_EQ(any::path(sorted[i], true) < any::path(sorted[k], u":/", true), i < k) << i << " " << k;
}

TEST(nio_path, normalizes_all_but_a_drive) {
    struct row {
        wide_string path, normalized;
    };
    for (row const & r : {
             row{u"C:\\a:b\\c?", u"C:\\a_b\\c_"},
             row{u"xy:\\a", u"xy_\\a"},
             row{u"x:y\\a", u"x_y\\a"},
             row{u"a\\c:", u"a\\c_"},
             row{u"", u""},
             row{u"\\\\host\\share", u"\\\\host\\share"},
             row{u"a/b\\", u"a_b\\"},
             row{u"\"*<>|", u"_____"},
             row{u"\x1f\x20\x7f\x80\x81\u4e00", u"_\x20\x7f\x80__"},
         })
        EXPECT_EQ(nio::normalize(r.path), r.normalized);
}

} // namespace
