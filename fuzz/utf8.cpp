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

} // namespace

void fuzz::run(std::string_view input) {
    // Any bytes: no more units than bytes, and strict decoding gives only what it may.
    narrow_string const bytes(input);
    wide_string strict = u"old", lax = u"old";
    nio::_utf8_decode(bytes, strict, true);
    nio::_utf8_decode(bytes, lax, false);
    check(strict.size() <= bytes.size() && lax.size() <= bytes.size());
    check(bytes.empty() == strict.empty() && bytes.empty() == lax.empty());
    for (char16_t const unit : strict)
        check(unit == valid(unit));
    check(nio::decode(bytes, -3) == strict);

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
