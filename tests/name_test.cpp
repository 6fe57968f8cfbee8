#include "socle/any/name.h"

#include "socle/any/exception.h"
#include "support/locale.h"

#include <stdexcept>

namespace {

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
    EXPECT_EQ(empty.leaf(), u"d") << "the separator came along";
    EXPECT_EQ(named(u"a\\b/c", any::name::default_separator).leaf(), u"b/c");
}

TEST(name, encodings) {
    check_in_locale("en_US", [] {
        any::name name(u'/');
        name.set_ansi("x/\xE9\x80");
        EXPECT_EQ(name.get_ucs2(), u"x/\xE9\x20AC");
        EXPECT_EQ(name.leaf(), u"\xE9\x20AC");
        EXPECT_EQ(name.get_utf8(), "x/\xC3\xA9\xE2\x82\xAC");
        name.set_oem("\x82");
        EXPECT_EQ(name.get_ansi(), "\xE9");
        EXPECT_EQ(name.get_oem(), "\x82");
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
