/// UTF-8 of single units: the codec, and the coder of names.

#include "socle/nio/utf8.h"
#include "fuzz/support/feed.h"
#include "socle/any/name.h"
#include "socle/any/utf8_coder.h"
#include "socle/nio/encoding.h"

#include <bit>

namespace {

using fuzz::check;

/// As strict decoding gives a text that was encoded from `unit`.
char16_t valid(char16_t unit) {
    bool const lacking = (unit >= 0xD800 && unit <= 0xDFFF) || unit >= 0xFFFE;
    return lacking ? u'\uFFFD' : unit;
}

/// The rules of decoding, unit by unit.
wide_string plain_decode(narrow_string const & bytes, bool validate) {
    wide_string out;
    for (std::size_t i = 0; i < bytes.size();) {
        auto const ones = static_cast<uint32>(std::countl_one(static_cast<unsigned char>(bytes[i])));
        uint32 const n = ones == 0 ? 1 : ones == 1 || ones > 6 ? 0 : ones;
        check(nio::_utf8_size(bytes[i]) == n);
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

/// Single units, in and out, and by their selector.
void codec(std::string_view input) {
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
    wide_string const text = fuzz::feed::units(input);
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

    // Runs of three bytes each, some of them overlong.
    narrow_string threes;
    for (unsigned const unit : text)
        for (unsigned const byte : {0xE0 | unit >> 12, 0x80 | (unit >> 6 & 0x3F), 0x80 | (unit & 0x3F)})
            threes += static_cast<char>(byte);
    check(nio::decode(threes, -3) == plain_decode(threes, true));
}

/// The coder of names as 8-bit text without a code page.
void coder(std::string_view input) {
    // Any units come back, and their bytes hold no zero.
    wide_string const text = fuzz::feed::units(input);
    narrow_string const encoded = any::utf8_coder::encode(text);
    check(encoded.size() == any::utf8_coder::encoded_size(text) && encoded.find('\0') == encoded.npos);
    check(any::utf8_coder::decode(encoded) == text);
    any::name name;
    name.set_utf8(encoded);
    check(name.get_ucs2() == text && name.get_utf8() == encoded);

    // Any bytes give a text, which then comes back.
    narrow_string const bytes(input);
    wide_string decoded = u"old";
    any::utf8_coder::decode(bytes, decoded);
    check(decoded.size() <= bytes.size() && decoded.empty() == bytes.empty());
    check(any::utf8_coder::decode(any::utf8_coder::encode(decoded)) == decoded);

    // Behind a sequence that is malformed, each byte is a unit. One that the bytes begin is at its end by then.
    narrow_string const broken = bytes + "\xFF\xFF\xFF";
    wide_string const behind = any::utf8_coder::decode(broken + bytes);
    check(behind.size() >= bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
        check(behind[behind.size() - bytes.size() + i] == static_cast<unsigned char>(bytes[i]));
}

} // namespace

void fuzz::run(std::string_view input) {
    codec(input);
    coder(input);
}
