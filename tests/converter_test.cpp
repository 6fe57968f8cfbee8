#include "socle/any/converter.h"

#include "support/locale.h"

namespace {

struct row {
    wide_string text;
    bool done;
    narrow_string bytes;
};

TEST(converter, walks_the_pages_until_one_holds_the_text) {
    check_in_locale("ru_RU.UTF-8", [] {
        any::converter const converter(437, 1253);
        for (auto const & [text, done, bytes] : {
                 row{u"abc \xE9", true, "abc \x82"},    // by the page picked, 437
                 row{u"\x20AC", true, "\x88"},          // by the ANSI page, 1251, although 1250 holds it as 0x80
                 row{u"\x41F\x20AC", true, "\xCF\x88"}, // the same
                 row{u"\x104", true, "\xA5"},           // by 1250, the first of those listed
                 row{u"\x3042", true, "\x82\xA0"},      // by 932
                 row{u"\x3042\x104", false, ""},        // each by a page, but both by none
                 row{u"\xD83D\xDE00", false, ""},
                 row{u"\x431\x2321", true, "\xC2\x9B"}, // by 20866
                 row{u"\xCA\x5D0", false, ""},          // no page has both
                 row{u"\x3042\xFF", false, ""},
             }) {
            narrow_string result = "what stood there";
            EXPECT_EQ(converter.from_unicode(text, result, true), done) << bytes;
            EXPECT_EQ(result, bytes);
            EXPECT_EQ(converter.from_unicode(text, true), bytes);
        }
        EXPECT_EQ(converter.from_unicode(u"\x20AC", false), "\x80") << "1253 holds it";
    });
}

TEST(converter, takes_the_systems_pages) {
    check_in_locale("ru_RU", [] {
        any::converter const converter;
        EXPECT_EQ(converter.ansi_page(), 1251);
        EXPECT_EQ(converter.oem_page(), 866);
        EXPECT_EQ(converter.from_unicode(u"\x41F", true), "\xCF");
        EXPECT_EQ(converter.from_unicode(u"\x41F", false), "\x8F");
        EXPECT_EQ(converter.to_unicode("\xCF", true), u"\x41F");
        EXPECT_EQ(converter.to_unicode("\xCF", false), u"\x2567");
    });
}

TEST(converter, unknown_pages) {
    check_in_locale("C", [] {
        any::converter const unknown(-1, 65001);
        wide_string wide = u"what stood there";
        EXPECT_FALSE(unknown.to_unicode("a", wide, true));
        EXPECT_EQ(wide, u"");
        EXPECT_EQ(unknown.to_unicode("a", true), u"");
        EXPECT_EQ(unknown.from_unicode(u"abc\x20AC", true), "abc\x80") << "by the pages listed";
        EXPECT_EQ(unknown.to_unicode("\xE3\x81\x82", false), u"\x3042");
        EXPECT_EQ(unknown.from_unicode(u"\x3042.", false), "\x82\xA0.") << "UTF-8 does not tell what it lacks";
    });
}

} // namespace
