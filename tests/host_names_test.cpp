#include "socle/platform/host_names.h"

#include <gtest/gtest.h>

namespace {

using namespace platform;

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

} // namespace
