#include "socle/any/exception.h"
#include "socle/any/name.h"
#include "socle/any/string.h"
#include "socle/un/tokenizer.h"
#include "tests/support/locale.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

namespace {

TEST(string, forms) {
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
    narrow_string const & form = text.str(true);
    EXPECT_EQ(form, narrow_string("a\0b", 3));

    any::string const other(u"other"), copy = text;
    EXPECT_NE(&copy.str(true), &form);
    other.str(true);
    text = other;
    EXPECT_EQ(form, copy.str(true)) << "is valid until it is asked for again";
    EXPECT_EQ(text.str(true), "other");
}

TEST(string, takes_every_form) {
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

TEST(string, folds_what_no_page_holds) {
    any::string const text(wide_string{0xD83D, 0x0100, u'A', 0x7F, 0x1F, u' ', 0x3F, 0x80, u'\0'});
    EXPECT_EQ(text.str(true), "9AA\x7F"
                              "f ?AA");
    EXPECT_EQ(text.str(false), text.str(true));
}

TEST(string, pages_differ) {
    check_in_locale("en_US", [] {
        EXPECT_EQ(any::string("\xE9", true), u"\xE9");
        EXPECT_EQ(any::string("\xE9", false), u"\x398");
        EXPECT_EQ(any::string(u"\xE9").str(false), "\x82");
        EXPECT_EQ(any::string(u"\x3042").str(true), "\x82\xA0") << "by another page";
    });
}

TEST(string, compares_without_case) {
    any::string const text(u"Ab");
    EXPECT_EQ(text.ci_wstr(), any::string(u"aB").ci_wstr());
    EXPECT_EQ(wide_string(text.ci_wstr().c_str()), u"Ab");
    EXPECT_LT(text.ci_wstr(), any::string(u"aBa").ci_wstr());
    EXPECT_LT(text.ci_wstr(), any::string(u"AC").ci_wstr());
    EXPECT_LT(any::string(u"_").ci_wstr(), any::string(u"A").ci_wstr()) << "lower case counts";
    EXPECT_NE(text, any::string(u"aB"));
}

/// What a match is told as: the rest is converted there and back for every piece.
bool match_by_steps(any::string const & text, any::string const & pattern) {
    bool first = true;
    any::string rest(text.c_str());
    for (auto const & piece : un::tokenizer(pattern.str(true), '*')) {
        auto const found = rest.str(true).find(piece);
        if (found == narrow_string::npos || (first && found != 0))
            return false;
        rest = any::string(rest.str(true).substr(found), true);
        first = false;
    }
    return true;
}

TEST(pattern_match, leaves_the_patterns_bytes) {
    any::string const pattern(u"a*b");
    narrow_string const & bytes = pattern.str(true);
    pattern.pstr(true);
    EXPECT_TRUE(any::string(u"a*b").pattern_match(pattern));
    EXPECT_EQ(bytes, "\3a*b") << "equal texts, so no need";
    EXPECT_FALSE(any::string(u"xab").pattern_match(pattern));
    EXPECT_EQ(bytes, "a*b");
}

TEST(pattern_match, short_cuts_change_nothing) {
    for (char const * const locale : {"en_US", "ja_JP", "he_IL", "vi_VN", "zh_CN"}) {
        check_in_locale(locale, [] {
            // U+30BD and U+8868 end in the byte of "\" in Japanese; several of these no single page holds.
            wide_string units = u"ab.\\*\xE9\x416\x5D0\x1EA1\x30BD\x8868\x20AC\xD83D*9";
            units += u'\0';
            std::mt19937 random(5);
            for (int i = 0; i < 4000; ++i) {
                std::size_t const kinds = random() % 2 == 0 ? 5 : units.size();
                any::string text, pattern;
                for (std::size_t count = random() % 8; count != 0; --count)
                    text += units[random() % kinds];
                for (std::size_t count = 2 + random() % 4; count != 0; --count)
                    pattern += random() % 3 == 0 ? u'*' : units[random() % kinds];
                bool const expected = text == pattern || pattern == u"*" || match_by_steps(text, pattern);
                ASSERT_EQ(text.pattern_match(pattern), expected) << testing::PrintToString(text + u" " + pattern);
            }
            EXPECT_EQ(any::string(u"\x30BD.t").pattern_match(u"*\\*.t"), any::string(u"\x30BD").str(true) == "\x83\\");
        });
    }
}

any::name named(wide_string const & text, char16_t separator = u'/') {
    any::name name(separator);
    name.set_ucs2(text);
    return name;
}

TEST(name, iterators_step) {
    any::name name = named(u"first/second");
    any::name const other = name;
    auto it = name.fragment_begin();
    EXPECT_FALSE(it == other.fragment_begin());
    EXPECT_EQ(it, name.fragment_begin());
    it->append(u"!");
    auto copy = it++;
    EXPECT_EQ(*copy, u"first!");
    EXPECT_EQ(*it, u"second");
    name.set_ucs2(u"x");
    EXPECT_EQ(*++copy, u"second") << "as it was";
    EXPECT_EQ(copy, it);
    EXPECT_EQ(*++copy, u"");
    EXPECT_EQ(*++copy, u"");
    EXPECT_EQ(copy, other.fragment_end());
    EXPECT_NE(copy, it);
    EXPECT_EQ(any::name::null.fragment_begin(), copy);
}

TEST(name, add_leaf) {
    any::name name = named(u"a");
    name.add_leaf(u"");
    EXPECT_EQ(name.get_ucs2(), u"a");
    name.add_leaf(u"b/");
    EXPECT_EQ(name.get_ucs2(), u"a/b/");
    name.add_leaf(u"c");
    EXPECT_EQ(name.get_ucs2(), u"a/b/c");
    any::name empty;
    empty.add_leaf(u"");
    EXPECT_THROW(empty.add_leaf(u"a"), std::out_of_range);
    EXPECT_EQ(empty.get_ucs2(), u"");
    EXPECT_EQ((empty = name).get_ucs2(), u"a/b/c");
    empty.add_leaf(u"d");
    EXPECT_EQ(empty.get_ucs2(), u"a/b/c/d") << "the separator came along";
    EXPECT_EQ(named(u"a\\b/c", any::name::default_separator).leaf(), u"b/c");
}

TEST(name, encodings) {
    check_in_locale("en_US", [] {
        any::name name(u'/');
        unsigned char const counted[] = {2, 0xE9, 'b', 'c'};
        name.set_pstr(counted);
        EXPECT_EQ(name.get_ucs2(), u"\xE9\x62");
        name.set_pstr(reinterpret_cast<unsigned char const *>("\0abc"));
        EXPECT_EQ(name.get_ucs2(), u"");
        wide_string const zeros{u'\0', u'a', u'\0'};
        name.set_ucs2(zeros);
        EXPECT_EQ(name.get_ucs2(), zeros);
        EXPECT_EQ(name.get_ansi(), narrow_string("\0a", 2));
        name.set_utf8(name.get_utf8());
        EXPECT_EQ(name.get_ucs2(), zeros);
        name.set_ucs2(u"\x3042");
        EXPECT_EQ(name.get_ansi(), "\x82\xA0") << "by another page";
        name.set_ucs2(u"\x3042\x104");
        for (auto const get : {&any::name::get_ansi, &any::name::get_oem}) {
            try {
                (name.*get)();
                ADD_FAILURE();
            } catch (any::exception const & error) {
                EXPECT_EQ(error.message(), "cannot convert from Unicode");
                EXPECT_EQ(error.origin(), "any::name");
            }
        }
        EXPECT_EQ(name.get_ucs2(), u"\x3042\x104");
    });
}

} // namespace
