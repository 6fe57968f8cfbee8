#include "any/string.h"

#include "any/exception.h"
#include "support/locale.h"

namespace {

/// Which no code page holds.
constexpr char16_t unmappable[] = u"\xD83D\xDE00";

TEST(String, Forms) {
    any::string text(u"abc");
    EXPECT_EQ(text.str(true), "abc");
    EXPECT_STREQ(text.cstr(false), "abc");
    EXPECT_EQ(narrow_string(reinterpret_cast<char const *>(text.pstr(true))), "\3abc");
    EXPECT_EQ(text.str(true), "abc");
    text = wide_string(u"other");
    EXPECT_EQ(text.str(true), "other");
    text = {};
    EXPECT_EQ(*text.pstr(true), 0);
    text.assign(300, u'x');
    unsigned char const * const counted = text.pstr(true);
    EXPECT_EQ(*counted, 300 % 256);
    EXPECT_EQ(narrow_string(reinterpret_cast<char const *>(counted + 1)), narrow_string(300, 'x'));
    text.assign({u'a', u'\0', u'b', u'\0'});
    EXPECT_EQ(text.str(true), narrow_string("a\0b", 3));
}

TEST(String, TakesEveryForm) {
    unsigned char const counted[] = {3, 'a', '\0', 'b', 'c'};
    EXPECT_EQ(any::string(counted, true), (wide_string{u'a', u'\0', u'b'}));
    EXPECT_EQ(any::string(narrow_string("a\0b", 3), true), (wide_string{u'a', u'\0', u'b'}));
    EXPECT_EQ(any::string("abc", false), u"abc");
    EXPECT_EQ(any::string("", true), u"");
    any::string text(u"abc");
    text.set(text.pstr(true), true);
    EXPECT_EQ(text, u"abc");
    text.set(text.str(true), true);
    EXPECT_EQ(text, u"abc");
}

TEST(String, FoldsWhatNoPageHolds) {
    any::string const text(wide_string{0xD83D, 0x0100, u'A', 0x7F, 0x1F, u' ', 0x3F, 0x80, u'\0'});
    EXPECT_EQ(text.str(true), "9AA\x7F"
                              "f ?AA");
    EXPECT_EQ(text.str(false), text.str(true));
}

TEST(String, PagesDiffer) {
    check_in_locale("en_US", [] {
        EXPECT_EQ(any::string("\xE9", true), u"\xE9");
        EXPECT_EQ(any::string("\xE9", false), u"\x398");
        EXPECT_EQ(any::string(u"\xE9").str(false), "\x82");
        EXPECT_EQ(any::string(u"\x3042").str(true), "\x82\xA0") << "by another page";
    });
}

TEST(String, ComparesWithoutCase) {
    any::string const text(u"Ab");
    EXPECT_EQ(text.ci_wstr(), any::string(u"aB").ci_wstr());
    EXPECT_EQ(wide_string(text.ci_wstr().c_str()), u"Ab");
    EXPECT_LT(text.ci_wstr(), any::string(u"aBa").ci_wstr());
    EXPECT_LT(text.ci_wstr(), any::string(u"AC").ci_wstr());
    EXPECT_GT(any::string(u"a_").ci_wstr(), any::string(u"AB").ci_wstr().substr(0, 1));
    EXPECT_LT(any::string(u"_").ci_wstr(), any::string(u"A").ci_wstr()) << "lower case counts";
    EXPECT_NE(text, any::string(u"aB"));
}

TEST(String, Ext) {
    for (auto const & [text, ext] : std::initializer_list<std::pair<char16_t const *, char16_t const *>>{
             {u"a.b.c", u".c"}, {u"abc", u""}, {u".profile", u".profile"}, {u"a.", u"."}, {u"", u""}}) {
        EXPECT_EQ(any::string(text).ext(), ext);
    }
}

struct row {
    wide_string text;
    wide_string pattern;
    bool fits;
};

void check(row const & expected) {
    any::string const text(expected.text);
    any::string const pattern(expected.pattern);
    EXPECT_EQ(text.pattern_match(pattern), expected.fits)
        << testing::PrintToString(expected.text) << " " << testing::PrintToString(expected.pattern);
}

TEST(PatternMatch, Ascii) {
    for (row const & each : {
             row{u"report.txt", u"report.txt", true},
             row{u"report.txt", u"*", true},
             row{u"report.txt", u"", true},
             row{u"", u"", true},
             row{u"", u"*", true},
             row{u"", u"**", true},
             row{u"", u"abc", false},
             row{u"abcdef", u"abc", true},
             row{u"xabc", u"abc", false},
             row{u"Abc", u"abc", false},
             row{u"abc", u"a?c", false},
             row{u"a?c", u"a?", true},
             row{u"abc", u"a*b*c", true},
             row{u"acb", u"a*b*c", false},
             row{u"abcdefg", u"a*f", true},
             row{u"abc", u"*c", true},
             row{u"abcd", u"*c", true},
             row{u"a.txt.old", u"*.txt", true},
             row{u"ab", u"ab*b", true},
             row{u"ab", u"b*", false},
             row{u"xay", u"*a*b", false},
             row{u"aXbXa", u"a*X*b*a", true},
         }) {
        check(each);
        // The same beside what takes the long way.
        check({each.text + u"\xE9", each.pattern, each.fits});
        check({each.text + unmappable, each.pattern, each.fits});
    }
}

TEST(PatternMatch, CountsTheTextUpToItsFirstZero) {
    wide_string const zero(1, u'\0');
    for (row const & each : {
             row{u"ab" + zero + u"c", u"*c", false},
             row{u"ab" + zero + u"c", u"ab", true},
             row{u"\xE9" + zero + u"c", u"*c", false},
             row{u"ab" + zero, u"ab" + zero, true},
             row{u"abc", u"ab" + zero, true},
             row{u"abc", u"a*" + zero + u"c", false},
             row{zero, u"", true},
         }) {
        check(each);
    }
}

TEST(PatternMatch, LeavesThePatternsBytes) {
    any::string const pattern(u"a*b");
    narrow_string const & bytes = pattern.str(true);
    pattern.pstr(true);
    EXPECT_TRUE(any::string(u"a*b").pattern_match(pattern));
    EXPECT_EQ(bytes, "\3a*b") << "equal texts, so no need";
    EXPECT_FALSE(any::string(u"xab").pattern_match(pattern));
    EXPECT_EQ(bytes, "a*b");
}

TEST(PatternMatch, RunsOnTheBytesOfTheAnsiPage) {
    check_in_locale("ja_JP", [] {
        for (row const & each : {
                 row{u"\x30BD.txt", u"\x30BD", true},
                 row{u"\x30BD.txt", u"*\\*.txt", true}, // the second byte of U+30BD
                 row{u"\x30BD.txt", u"\\", false}, row{u"\x30BD\x30BD", u"\x30BD*\x30BD\x30BD", true},
                 row{wide_string(unmappable) + u"x", u"9*x", true}, // folded
                 row{wide_string(unmappable) + u"x", u"*\xDE01", false},
                 row{u"\xD83D", u"\xD87D", true}, // both folded to 9
             }) {
            check(each);
        }
    });
}

} // namespace
