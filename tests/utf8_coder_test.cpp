#include "socle/any/utf8_coder.h"

#include <gtest/gtest.h>

namespace {

TEST(utf8_coder, encodes) {
    struct row {
        wide_string text;
        narrow_string bytes;
    };
    for (auto const & [text, bytes] : {
             row{u"", ""},
             row{u"A\x7F", "A\x7F"},
             row{{u'a', u'\0', u'b'},
                 "a\xC0\x80"
                 "b"},
             row{u"\x80\xE9\x7FF", "\xC2\x80\xC3\xA9\xDF\xBF"},
             row{u"\x800\x20AC\xFFFF", "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF"},
             row{{0xD83D, 0xDE00}, "\xED\xA0\xBD\xED\xB8\x80"},
         }) {
        EXPECT_EQ(any::utf8_coder::encode(text), bytes);
        EXPECT_EQ(any::utf8_coder::encoded_size(text), bytes.size());
        EXPECT_EQ(any::utf8_coder::decode(bytes), text);
    }
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

} // namespace
