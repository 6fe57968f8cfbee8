/// UTF-8 of single units: the codec, and the coder of names.

#include "fuzz/support/feed.h"
#include "socle/any/name.h"
#include "socle/any/utf8_coder.h"
#include "socle/nio/encoding.h"
#include "socle/nio/utf8_internal.h"

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

/// Single units, in and out, with these blocks.
void codec(std::string_view input, platform::utf8_blocks const * blocks) {
    auto const decode = [blocks](narrow_string const & bytes, bool validate) {
        wide_string out = u"old";
        nio::utf8::decode(bytes, out, validate, blocks);
        check(out == plain_decode(bytes, validate));
        return out;
    };
    narrow_string const bytes(input), words(40, 'x');
    wide_string const strict = decode(bytes, true);
    decode(bytes, false);
    // The same in the midst of text that can be taken in words.
    decode(words + bytes + words, true);
    decode(words + bytes + words, false);

    // Text that is strictly decoded comes back.
    narrow_string out = "old";
    nio::utf8::encode(strict, out, blocks);
    check(decode(out, true) == strict);

    // Any units: the sizes told are those written, and lax decoding gives them back.
    wide_string const text = fuzz::feed::units(input);
    nio::utf8::encode(text, out, blocks);
    std::size_t at = 0;
    for (char16_t const unit : text) {
        uint32 const size = nio::_utf8_size(unit);
        check(at < out.size() && nio::_utf8_size(out[at]) == size);
        at += size;
    }
    check(at == out.size());
    check(decode(out, false) == text);
    wide_string expected;
    for (char16_t const unit : text)
        expected += valid(unit);
    check(decode(out, true) == expected);

    // Runs of three bytes each, some of them overlong.
    narrow_string threes;
    for (unsigned const unit : text)
        for (unsigned const byte : {0xE0 | unit >> 12, 0x80 | (unit >> 6 & 0x3F), 0x80 | (unit & 0x3F)})
            threes += static_cast<char>(byte);
    decode(threes, true);
}

/// By its selector.
void selected(std::string_view input) {
    narrow_string const bytes(input);
    check(nio::decode(bytes, -3) == plain_decode(bytes, true));
    narrow_string out;
    nio::_utf8_encode(fuzz::feed::units(input), out);
    check(nio::encode(fuzz::feed::units(input), -3) == out);
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
    codec(input, platform::find_utf8_blocks());
    codec(input, nullptr);
    selected(input);
    coder(input);
}
