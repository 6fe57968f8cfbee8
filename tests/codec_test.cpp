#include "socle/any/converter.h"
#include "socle/any/utf8_coder.h"
#include "socle/basic/exception.h"
#include "socle/nio/encoding.h"
#include "socle/nio/strings.h"
#include "socle/stream/vector_input.h"
#include "tests/support/locale.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;
using support::fragment_source;
using support::recording_target;

TEST(codec, follows_its_selector) {
    EXPECT_EQ(nio::encode(u"\x20AC\x0416", 1252), "\x80_");
    EXPECT_EQ(nio::encode(u"\x20AC\x0416", 1251), "\x88\xC6");
    EXPECT_EQ(nio::encode(u"\x20AC", -3), "\xE2\x82\xAC");
    EXPECT_EQ(nio::decode("\x80", 1252), u"\x20AC");
    EXPECT_EQ(nio::decode("\xF0\x9F\x98\x80", -3), u"\xFFFD");
    EXPECT_EQ(nio::decode("\xF0\x9F\x98\x80", 65001), u"\xD83D\xDE00");
    EXPECT_EQ(nio::_codepage(932), 932);
    for (int const oem : {0, -2, -3, -99}) {
        EXPECT_EQ(nio::_codepage(oem), nio::_codepage(0));
        EXPECT_NE(nio::_codepage(oem), nio::_codepage(-1));
    }
    for (int const encoding : {-3, -1, 0, 932, 12345}) {
        EXPECT_EQ(nio::encode(u"", encoding), "");
        EXPECT_EQ(nio::decode("", encoding), u"");
    }
    EXPECT_EQ(nio::encode(u"text", 12345), "");
    EXPECT_EQ(nio::decode("text", 12345), u"");
    EXPECT_EQ(nio::encode(u"\0a\0\0"s, 1252), "\0a"s);
    EXPECT_EQ(nio::encode(u"\0\0"s, 1252), "");
    EXPECT_EQ(nio::decode("a\0"s, 1252), u"a\0"s);
}

TEST(codec, translate_leaves_no_other) {
    wide_string text = u"a_b";
    nio::translate(text, u'a', u'b');
    EXPECT_EQ(text, u"b__");
    nio::translate(text, u'_', u'_');
    EXPECT_EQ(text, u"b__");
}

TEST(fields, are_written_in_one_block_each) {
    recording_target empty;
    nio::write_string(empty, "", 0, 0);
    nio::write_c(empty, u"\x20AC", -3);
    EXPECT_EQ(empty.writes, (std::vector<uint32>{0, 3, 1}));
    EXPECT_EQ(empty.data, "\xE2\x82\xAC\0"s);
}

TEST(fields, need_room_for_their_bytes) {
    fragment_source in({"ab\ncd"});
    char storage[8];
    basic::buffer<char> fixed(storage, 8);
    EXPECT_THROW(nio::read_line(in, fixed), std::logic_error);
    EXPECT_EQ(in.tell(), 3u);
    // A length that no source has takes no memory before its bytes come.
    byte_vector const data(3);
    stream::vector_input long_field(data);
    EXPECT_THROW(nio::read_string(long_field, 0xFFFFFFFF, 0, false), basic::exception);
    EXPECT_EQ(long_field.tell(), 3u);
}

TEST(utf8_coder, decodes_what_is_malformed_byte_by_byte) {
    struct row {
        narrow_string bytes;
        wide_string text;
    };
    for (auto const & [bytes, text] : {
             row{"\xC3\x41\xC3\xA9", u"\xC3\xC3\xA9"},
             row{"\xC3\xA9\x80\xC3\xA9", u"\xE9\x80\xC3\xA9"},
             row{"\xF0\x9F\x98\x80", u"\xF0\x9F\x98\x80"},
             row{"A\xC3", u"A\xC3"},
             row{"\xE2", u"\xE2"},
             row{"\xE2\x82", u"\xE2"},
             row{"\xE2\x41", u"\xE2"},
             row{"\xE2\x41\x82z", u"\xE2z"},
             row{"\xE2\x82\x41\xC3\xA9", u"\xE2\xC3\xA9"},
             row{"\xE0\x81\x81\xC1\x81", u"AA"},
             row{{'\0', '\xE0', '\x80', '\x80'}, {u'\0', u'\0'}},
         }) {
        wide_string decoded = u"what stood there";
        any::utf8_coder::decode(bytes, decoded);
        EXPECT_EQ(decoded, text) << testing::PrintToString(bytes);
    }
}

TEST(converter, walks_the_pages_until_one_holds_the_text) {
    struct row {
        wide_string text;
        bool done;
        narrow_string bytes;
    };
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
