#pragma once

#include "socle/basic/types.h"

/// Characters as UTF-8, strictly, and as UTF-16. What is written goes to `put`, a byte or a unit at a time.
namespace platform::unicode {

constexpr bool is_high_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool is_low_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }
constexpr bool is_surrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }

/// The character of a surrogate pair.
constexpr char32_t join_surrogates(char16_t high, char16_t low) {
    return 0x10000 + (char32_t(high & 0x3FF) << 10) + (low & 0x3FF);
}

template <class Put>
void put_utf16(char32_t character, Put put) {
    if (character < 0x10000) {
        put(static_cast<char16_t>(character));
    } else {
        put(static_cast<char16_t>(0xD7C0 + (character >> 10)));
        put(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
    }
}

template <class Put>
void put_utf8(char32_t character, Put put) {
    auto const put_byte = [&](char32_t bits, unsigned mark) { put(static_cast<char>(bits | mark)); };
    if (character < 0x80) {
        put_byte(character, 0);
        return;
    }
    if (character < 0x800) {
        put_byte(character >> 6, 0xC0);
    } else {
        if (character < 0x10000) {
            put_byte(character >> 12, 0xE0);
        } else {
            put_byte(character >> 18, 0xF0);
            put_byte(character >> 12 & 0x3F, 0x80);
        }
        put_byte(character >> 6 & 0x3F, 0x80);
    }
    put_byte(character & 0x3F, 0x80);
}

/// Reads the character of UTF-8 at `at` and moves `at` behind it. False for a bad sequence, which ends before the first
/// byte that cannot belong to it: an overlong form, a surrogate, or one past U+10FFFF ends behind its first byte.
inline bool read_utf8(char const *& at, char const * end, char32_t & character) {
    auto const value = [](char byte) { return static_cast<unsigned char>(byte); };
    unsigned char const lead = value(*at++);
    character = lead;
    if (lead < 0x80)
        return true;
    if (lead < 0xC2 || lead > 0xF4)
        return false;
    int const length = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    unsigned char low = 0x80, high = 0xBF; // of the second byte: no overlong forms, surrogates, nor past U+10FFFF
    if (lead == 0xE0)
        low = 0xA0;
    else if (lead == 0xED)
        high = 0x9F;
    else if (lead == 0xF0)
        low = 0x90;
    else if (lead == 0xF4)
        high = 0x8F;
    character = lead & (0x3F >> length);
    for (int i = 0; i < length; ++i) {
        if (at == end || value(*at) < low || value(*at) > high)
            return false;
        character = character << 6 | (value(*at++) & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    return true;
}

/// Reads the character of UTF-16 at `at` and moves `at` behind it. False for a lone surrogate, which `character` is
/// then.
inline bool read_utf16(char16_t const *& at, char16_t const * end, char32_t & character) {
    char16_t const unit = *at++;
    character = unit;
    if (!is_surrogate(unit))
        return true;
    bool const pair = is_high_surrogate(unit) && at != end && is_low_surrogate(*at);
    if (pair)
        character = join_surrogates(unit, *at++);
    return pair;
}

} // namespace platform::unicode
