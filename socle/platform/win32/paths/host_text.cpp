#include "socle/platform/win32/paths/host_text.h"

#include <cstddef>

namespace platform::win32 {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool is_high(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_low(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// Takes one character, or a byte that begins none.
char32_t take(std::string_view & bytes) {
    auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    unsigned const lead = byte(0);
    std::size_t const size = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF8 ? 4
                                           : 0;
    bool whole = size > 0 && size <= bytes.size();
    char32_t character = size > 1 ? lead & (0x7F >> size) : lead;
    for (std::size_t i = 1; i < size && whole; ++i) {
        whole = (byte(i) & 0xC0) == 0x80;
        character = character << 6 | (byte(i) & 0x3F);
    }
    static constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    whole = whole && character >= least[size] && character <= 0x10FFFF;
    bytes.remove_prefix(whole ? size : 1);
    return whole ? character : replacement;
}

} // namespace

wide_string from_utf8(std::string_view bytes) {
    wide_string text;
    while (!bytes.empty()) {
        char32_t const character = take(bytes);
        if (character >= 0x10000) {
            text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
        } else {
            text += static_cast<char16_t>(character);
        }
    }
    return text;
}

narrow_string to_utf8(std::u16string_view text) {
    narrow_string bytes;
    auto const put = [&](char32_t bits) { bytes += static_cast<char>(bits); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        if (is_high(character) && i + 1 < text.size() && is_low(text[i + 1]))
            character = 0x10000 + ((character & 0x3FF) << 10) + (text[++i] & 0x3FF);
        if (character < 0x80) {
            put(character);
            continue;
        }
        int const rest = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
        put((0xFF00 >> (rest + 1) & 0xFF) | character >> 6 * rest);
        for (int shift = 6 * (rest - 1); shift >= 0; shift -= 6)
            put(0x80 | (character >> shift & 0x3F));
    }
    return bytes;
}

} // namespace platform::win32
