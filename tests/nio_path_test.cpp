#include "socle/nio/path.h"

#include <gtest/gtest.h>

namespace {

TEST(nio_path, splits) {
    struct row {
        wide_string path, name, ext;
    };
    for (row const & r : {
             row{u"d\\a.tar.gz", u"a.tar", u".gz"},
             row{u".profile", u"", u".profile"},
             row{u"a.", u"a", u"."},
             row{u"dir.x\\a", u"a", u""},
         }) {
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
         })
        EXPECT_EQ(nio::normalize(r.path), r.normalized);
}

} // namespace
