#include "nio/path.h"

#include <gtest/gtest.h>

namespace {

TEST(nio_path, joins) {
    struct row {
        wide_string head, tail, joined;
    };
    for (row const & r : {row{u"a\\", u"b", u"a\\b"}, row{u"a", u"b", u"a\\b"}, row{u"", u"b", u"b"},
                          row{u"a", u"", u"a"}, row{u"a", u"\\b", u"a\\\\b"}}) {
        EXPECT_EQ(nio::concatenate(r.head, r.tail, u'\\'), r.joined);
    }
    wide_string doubled = u"a";
    nio::append(doubled, doubled, u'/');
    EXPECT_EQ(doubled, u"a/a");
}

TEST(nio_path, trims_trailing_separators_only) {
    struct row {
        wide_string path, trimmed;
    };
    for (row const & r :
         {row{u"a\\\\\\", u"a"}, row{u"\\\\\\", u""}, row{u"", u""}, row{u"\\a", u"\\a"}, row{u"a\\b", u"a\\b"}}) {
        wide_string path = r.path;
        nio::trim(path, u'\\');
        EXPECT_EQ(path, r.trimmed);
    }
}

TEST(nio_path, splits) {
    struct row {
        wide_string path, stem, leaf, name, ext;
    };
    for (row const & r : {
             row{u"\\x", u"", u"x", u"x", u""},
             row{u"x", u"", u"x", u"x", u""},
             row{u"a\\", u"a", u"", u"", u""},
             row{u"", u"", u"", u"", u""},
             row{u"d\\a.tar.gz", u"d", u"a.tar.gz", u"a.tar", u".gz"},
             row{u".profile", u"", u".profile", u"", u".profile"},
             row{u"a.", u"", u"a.", u"a", u"."},
             row{u"dir.x\\a", u"dir.x", u"a", u"a", u""},
         }) {
        EXPECT_EQ(nio::stem(r.path, u'\\'), r.stem);
        EXPECT_EQ(nio::leaf(r.path, u'\\'), r.leaf);
        EXPECT_EQ(nio::leaf_name(r.path, u'\\'), r.name);
        EXPECT_EQ(nio::leaf_ext(r.path, u'\\'), r.ext);
    }
}

TEST(nio_path, normalizes_all_but_a_drive) {
    struct row {
        wide_string path, normalized;
    };
    for (row const & r : {
             row{u"C:\\a:b\\c?", u"C:\\a_b\\c_"},
             row{u"xy:\\a", u"xy_\\a"},
             row{u"a\\c:", u"a\\c_"},
             row{u"", u""},
             row{u"\\\\host\\share", u"\\\\host\\share"},
             row{u"a/b\\", u"a_b\\"},
             row{u"\"*<>|", u"_____"},
             row{u"\x1f\x20\x7f\x80\x81\u4e00", u"_\x20\x7f\x80__"},
         }) {
        EXPECT_EQ(nio::normalize(r.path), r.normalized);
    }
}

TEST(nio_path, fragments) {
    struct row {
        wide_string path;
        std::vector<wide_string> fragments;
    };
    for (row const & r : {
             row{u"\\\\host\\share", {u"", u"", u"host", u"share"}},
             row{u"a\\", {u"a", u""}},
             row{u"a", {u"a"}},
             row{u"", {}},
         }) {
        nio::path_fragments fragments(r.path, u'\\');
        EXPECT_EQ(std::vector<wide_string>(fragments.begin(), fragments.end()), r.fragments);
    }
}

} // namespace
