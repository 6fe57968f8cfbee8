#include "socle/platform/win32/paths/host_text.h"

#include "socle/platform/unicode.h"

namespace platform::win32 {

namespace {

constexpr char32_t replacement = 0xFFFD;

/// Takes one character, a lone surrogate, or a byte that begins neither.
char32_t take(char const *& at, char const * end) {
    char const * behind = at;
    char32_t character;
    if (unicode::read_utf8(behind, end, character)) {
        at = behind;
        return character;
    }
    auto const byte = [&](int i) { return static_cast<unsigned char>(at[i]); };
    bool const surrogate =
        end - at >= 3 && byte(0) == 0xED && byte(1) >= 0xA0 && byte(1) < 0xC0 && byte(2) >= 0x80 && byte(2) < 0xC0;
    character = surrogate ? 0xD000u | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu) : replacement;
    at += surrogate ? 3 : 1;
    return character;
}

} // namespace

wide_string from_utf8(std::string_view bytes) {
    wide_string text;
    char const * const end = bytes.data() + bytes.size();
    for (char const * at = bytes.data(); at != end;)
        unicode::put_utf16(take(at, end), [&](char16_t unit) { text += unit; });
    return text;
}

narrow_string to_utf8(std::u16string_view text) {
    narrow_string bytes;
    char16_t const * const end = text.data() + text.size();
    for (char16_t const * at = text.data(); at != end;) {
        char32_t character;
        unicode::read_utf16(at, end, character);
        unicode::put_utf8(character, [&](char byte) { bytes += byte; });
    }
    return bytes;
}

} // namespace platform::win32
