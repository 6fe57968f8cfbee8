#include "nio/utf8.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nio {

namespace {

constexpr char16_t replacement = 0xFFFD;
constexpr std::size_t step = 16; // units, or bytes, that are looked at together
constexpr std::size_t word_size = sizeof(uint64);

unsigned char value(char byte) { return static_cast<unsigned char>(byte); }

bool continues(char byte) { return (value(byte) & 0xC0) == 0x80; }

/// Whether the first three of four bytes are a sequence of three.
bool is_long(char const * bytes) {
    uint32 const word = value(bytes[0]) | value(bytes[1]) << 8 | value(bytes[2]) << 16 | uint32(value(bytes[3])) << 24;
    return (word & 0x00C0C0F0) == 0x008080E0;
}

/// Whether none of the next `step` elements is above ASCII.
template <class Unit>
bool is_ascii(Unit const * from) {
    uint64 bits = 0;
    for (std::size_t i = 0; i < step * sizeof(Unit) / sizeof bits; ++i) {
        uint64 word;
        std::memcpy(&word, reinterpret_cast<char const *>(from) + i * sizeof word, sizeof word);
        bits |= word;
    }
    return (bits & (sizeof(Unit) == 1 ? 0x8080808080808080 : 0xFF80FF80FF80FF80)) == 0;
}

template <std::size_t count = step, class From, class To>
void copy_ascii(From const * from, To * to) {
    To block[count]; // of its own, so that it can be made in one go
    for (std::size_t i = 0; i < count; ++i)
        block[i] = static_cast<To>(from[i]);
    std::memcpy(to, block, sizeof block);
}

/// How many of the next `word_size` bytes come before the first that is above ASCII.
std::size_t ascii_before(char const * from) {
    uint64 word;
    std::memcpy(&word, from, sizeof word);
    word &= 0x8080808080808080;
    int const bits = std::endian::native == std::endian::little ? std::countr_zero(word) : std::countl_zero(word);
    return static_cast<std::size_t>(bits) / 8;
}

/// Text on its way to the end of a string, which so is never filled before it is written.
template <class Text>
class tail {
public:
    /// Room for what one step of the loops below puts there.
    explicit tail(Text & text) : text_(text) {}
    ~tail() { text_.append(block_, to); }

    void make_room() {
        if (to > block_ + sizeof block_ / sizeof block_[0] - most) {
            text_.append(block_, to);
            to = block_;
        }
    }

private:
    static constexpr std::size_t most = 3 * step + 1;

    Text & text_;
    typename Text::value_type block_[4096];

public:
    typename Text::value_type * to = block_;
};

/// The sequence at `at`, of any length and worth, as one unit; moves `at` behind it.
char16_t decode_any(char const *& at, char const * end, bool validate) {
    uint32 const length = _utf8_size(*at);
    uint32 u = value(*at) & (length <= 1 ? 0x7Fu : 0x7Fu >> length);
    uint32 count = 1;
    for (++at; count < length && at != end && continues(*at); ++at, ++count)
        u = u << 6 | (value(*at) & 0x3F);
    if (count != length)
        return replacement;
    if (validate) {
        bool const overlong = (count == 2 && (u & 0xFF80) == 0) || (count == 3 && u >> 11 == 0);
        if (overlong || count >= 4 || (u >= 0xD800 && u <= 0xDFFF) || u == 0xFFFE || u == 0xFFFF)
            return replacement;
    }
    return static_cast<char16_t>(u);
}

} // namespace

uint32 _utf8_size(char16_t unit) { return unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3; }

uint32 _utf8_size(uint16 unit) { return _utf8_size(static_cast<char16_t>(unit)); }

uint32 _utf8_size(char lead) {
    unsigned char const byte = value(lead);
    if (byte < 0x80)
        return 1;
    if (byte < 0xC0 || byte > 0xFD)
        return 0;
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : byte < 0xF8 ? 4 : byte < 0xFC ? 5 : 6;
}

void _utf8_encode(wide_string const & text, narrow_string & out) {
    out.clear();
    out.reserve(text.size());
    tail<narrow_string> result(out);
    char16_t const * from = text.data();
    char16_t const * const end = from + text.size();
    while (from != end) {
        result.make_room();
        char * to = result.to;
        if (std::size_t(end - from) >= step && is_ascii(from)) {
            copy_ascii(from, to);
            from += step;
            result.to += step;
            continue;
        }
        for (auto const * const stop = from + std::min<std::size_t>(step, std::size_t(end - from)); from != stop;) {
            unsigned const unit = *from++;
            if (unit < 0x80) {
                *to++ = static_cast<char>(unit);
            } else if (unit < 0x800) {
                to[0] = static_cast<char>(0xC0 | unit >> 6);
                to[1] = static_cast<char>(0x80 | (unit & 0x3F));
                to += 2;
            } else {
                // Four at once cost less than three; the last is written over.
                char const bytes[] = {static_cast<char>(0xE0 | unit >> 12),
                                      static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
                                      static_cast<char>(0x80 | (unit & 0x3F)), '\0'};
                std::memcpy(to, bytes, sizeof bytes);
                to += 3;
            }
        }
        result.to = to;
    }
}

void _utf8_decode(narrow_string const & bytes, wide_string & out, bool validate) {
    out.clear();
    out.reserve(bytes.size());
    tail<wide_string> result(out);
    char const * from = bytes.data();
    char const * const end = from + bytes.size();
    while (from != end) {
        result.make_room();
        char16_t * to = result.to;
        if (std::size_t(end - from) >= step) {
            if (is_ascii(from)) {
                copy_ascii(from, to);
                from += step;
                result.to += step;
                continue;
            }
            // All of a word is copied, and the first byte above ASCII is where to go on.
            copy_ascii<word_size>(from, to);
            std::size_t const plain = ascii_before(from);
            from += plain;
            to += plain;
        }
        for (std::size_t i = 0; i < step && from != end; ++i) {
            unsigned const lead = value(*from);
            if (lead < 0x80) {
                // Short texts and ends come byte by byte.
                if (std::size_t(end - from) >= step)
                    break;
                *to++ = static_cast<char16_t>(lead);
                ++from;
                continue;
            }
            if (lead >= 0xE0 && end - from >= 4 && is_long(from)) {
                unsigned const u = (lead & 0xF) << 12 | (value(from[1]) & 0x3Fu) << 6 | (value(from[2]) & 0x3Fu);
                // All from 0x800 on but surrogates and the two that are no characters.
                if (u - 0x800 < 0xD000 || u - 0xE000 < 0x1FFE) {
                    *to++ = static_cast<char16_t>(u);
                    from += 3;
                    continue;
                }
            } else if (lead >= 0xC2 && lead < 0xE0 && end - from >= 2 && continues(from[1])) {
                *to++ = static_cast<char16_t>((lead & 0x1F) << 6 | (value(from[1]) & 0x3Fu));
                from += 2;
                continue;
            }
            *to++ = decode_any(from, end, validate);
        }
        result.to = to;
    }
}

} // namespace nio
