/// The coder of names as 8-bit text without a code page.

#include "socle/any/utf8_coder.h"
#include "fuzz/support/feed.h"
#include "socle/any/name.h"

void fuzz::run(std::string_view input) {
    // Any units come back, and their bytes hold no zero.
    wide_string const text = feed::units(input);
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
