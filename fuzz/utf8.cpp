/// UTF-8 of single units, in and out, and by its selector.

#include "socle/nio/utf8.h"
#include "fuzz/support/feed.h"
#include "socle/nio/encoding.h"

namespace {

/// As strict decoding gives a text that was encoded from `unit`.
char16_t valid(char16_t unit) {
    bool const lacking = (unit >= 0xD800 && unit <= 0xDFFF) || unit >= 0xFFFE;
    return lacking ? u'\uFFFD' : unit;
}

/// The rules of decoding, unit by unit.
wide_string plain_decode(narrow_string const & bytes, bool validate) {
    wide_string out;
    for (std::size_t i = 0; i < bytes.size();) {
        uint32 const n = nio::_utf8_size(bytes[i]);
        uint32 u = static_cast<unsigned char>(bytes[i]) & (n <= 1 ? 0x7F : 0x7F >> n), k = 1;
        for (; k < n && i + k < bytes.size() && (bytes[i + k] & 0xC0) == 0x80; ++k)
            u = u << 6 | (bytes[i + k] & 0x3F);
        bool const overlong = (k == 2 && u < 0x80) || (k == 3 && u < 0x800) || k >= 4;
        bool const bad = validate && (overlong || valid(static_cast<char16_t>(u)) != u);
        out += k != n || bad ? u'\xFFFD' : static_cast<char16_t>(u);
        i += k;
    }
    return out;
}

} // namespace

void fuzz::run(std::string_view input) {
    narrow_string const bytes(input);
    wide_string strict = u"old", lax = u"old";
    nio::_utf8_decode(bytes, strict, true);
    nio::_utf8_decode(bytes, lax, false);
    check(strict == plain_decode(bytes, true) && lax == plain_decode(bytes, false));
    check(nio::decode(bytes, -3) == strict);
    // The same in the midst of text that can be taken in words.
    narrow_string const words(40, 'x');
    check(nio::decode(words + bytes + words, -3) == plain_decode(words + bytes + words, true));

    // Text that is strictly decoded comes back.
    narrow_string out = "old";
    nio::_utf8_encode(strict, out);
    wide_string again;
    nio::_utf8_decode(out, again, true);
    check(again == strict);

    // Any units: the sizes told are those written, and lax decoding gives them back.
    wide_string const text = feed::units(input);
    nio::_utf8_encode(text, out);
    std::size_t at = 0;
    for (char16_t const unit : text) {
        uint32 const size = nio::_utf8_size(unit);
        check(at < out.size() && nio::_utf8_size(out[at]) == size);
        at += size;
    }
    check(at == out.size());
    nio::_utf8_decode(out, again, false);
    check(again == text);
    wide_string expected;
    for (char16_t const unit : text)
        expected += valid(unit);
    nio::_utf8_decode(out, again, true);
    check(again == expected);
    check(nio::encode(text, -3) == out);
}
