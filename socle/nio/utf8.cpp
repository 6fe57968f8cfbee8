#include "socle/nio/utf8_internal.h"

#include "socle/basic/ascii_internal.h"
#include "socle/basic/byte_blocks_internal.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace nio {

namespace {

using basic::all_of;
using basic::block_of_16;
using basic::block_of_32;
using basic::half_block_of_16;
using basic::half_byte_block;
using basic::ascii::copy_ascii;
using basic::ascii::is_ascii;
using basic::ascii::step;

constexpr char16_t replacement = 0xFFFD;
constexpr std::size_t word_size = sizeof(uint64);

unsigned char value(char byte) { return static_cast<unsigned char>(byte); }

bool continues(char byte) { return (value(byte) & 0xC0) == 0x80; }

/// Eight bytes as units.
void spread(char const * from, char16_t * to) {
    half_byte_block bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    auto const units = __builtin_convertvector(bytes, block_of_16);
    std::memcpy(to, &units, sizeof units);
}

/// Collects output in a block and appends it, so that the string is not zero-filled first.
template <class Text>
class tail {
public:
    explicit tail(Text & text) : text_(text) {}

    /// Room for what one step of the loops below puts there.
    void make_room() {
        if (to > stop())
            finish();
    }
    /// The last place with that room.
    typename Text::value_type const * stop() const { return block_ + sizeof block_ / sizeof block_[0] - most; }
    void finish() {
        text_.append(block_, to);
        to = block_;
    }

private:
    static constexpr std::size_t most = 10 * step;

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

// A sequence of three bytes at the low end of a word.
constexpr uint32 three_mask = 0xC0C0F0, three_bytes = 0x8080E0;

/// The unit of such a sequence, and the sequence of a unit; of one word, or of each word of a block.
template <class Word>
void join_three(Word const & bytes, Word & unit) {
    unit = (bytes & 0xF) << 12 | (bytes >> 2 & 0xFC0) | (bytes >> 16 & 0x3F);
}
template <class Word>
void split_three(Word const & unit, Word & bytes) {
    bytes = three_bytes | unit >> 12 | (unit << 2 & 0x3F00) | (unit << 16 & 0x3F0000);
}

/// All from 0x800 on but surrogates and the two that are no characters.
bool is_plain_three(uint32 u) { return u - 0x800 < 0xD000 || u - 0xE000 < 0x1FFE; }

/// Decodes four sequences of three bytes at once. False, with nothing done, where one is not plain; looks at 13 bytes.
bool decode_threes(char const * from, char16_t * to) {
    auto const at = [from](int i) { return basic::load<uint32>(from + 3 * i, false); };
    block_of_32 const triples = {at(0), at(1), at(2), at(3)};
    block_of_32 units;
    join_three(triples, units);
    auto const high = units & 0xF800;
    if (!all_of(((triples & three_mask) == three_bytes) & (high != 0) & (high != 0xD800)
                & ((units & 0xFFFE) != 0xFFFE)))
        return false;
    auto const narrow = __builtin_convertvector(units, half_block_of_16);
    std::memcpy(to, &narrow, sizeof narrow);
    return true;
}

/// Decodes a word at a time, until a whole word is ASCII, `8 * step` units are there, or less than a word is left.
/// Returns the end of the units.
char16_t * decode_words(char const *& from, char const * end, char16_t * to, bool validate) {
    for (auto const * const stop = to + 8 * step; to < stop && std::size_t(end - from) >= word_size;) {
        auto word = basic::load<uint64>(from, false);
        auto const plain = std::size_t(std::countr_zero(word & 0x8080808080808080)) / 8;
        if (plain != 0) {
            // All of the word, and what is not ASCII is written over.
            spread(from, to);
            from += plain;
            to += plain;
            if (plain == word_size)
                break;
            word >>= 8 * plain; // zeros behind it, which continue nothing
        }
        if ((word & 0xC0E0) == 0x80C0 && (word & 0x1E) != 0) {
            *to++ = static_cast<char16_t>((word & 0x1F) << 6 | (word >> 8 & 0x3F));
            from += 2;
            continue;
        }
        if ((word & three_mask) == three_bytes) {
            auto const * const start = from;
            for (; to < stop && end - from >= 16 && decode_threes(from, to); from += 12)
                to += 4;
            uint32 u;
            join_three(static_cast<uint32>(word), u);
            if (from == start && is_plain_three(u)) {
                *to++ = static_cast<char16_t>(u);
                from += 3;
            }
            if (from != start)
                continue;
        }
        if (plain != 0)
            continue; // the rest of the sequence may lie behind the word
        *to++ = decode_any(from, end, validate);
    }
    return to;
}

/// Encodes four units of three bytes at once. False, with nothing done, where one is of another size; writes 14 bytes,
/// of which 12 count.
bool encode_threes(char16_t const * from, char * to) {
    half_block_of_16 narrow;
    std::memcpy(&narrow, from, sizeof narrow);
    auto const units = __builtin_convertvector(narrow, block_of_32);
    if (!all_of((units & 0xF800) != 0))
        return false;
    block_of_32 triples;
    split_three(units, triples);
    for (int const i : {0, 2})
        basic::store<uint64>(to + 3 * i, triples[i] | uint64(triples[i + 1]) << 24, false);
    return true;
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
    utf8::encode(text, out, platform::find_utf8_blocks());
}

void _utf8_decode(narrow_string const & bytes, wide_string & out, bool validate) {
    utf8::decode(bytes, out, validate, platform::find_utf8_blocks());
}

void utf8::encode(wide_string const & text, narrow_string & out, platform::utf8_blocks const * blocks) {
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
        if (blocks) {
            auto const reached = blocks->encode(from, end, to, result.stop());
            result.to = reached.to;
            if (std::exchange(from, reached.from) != reached.from)
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
            } else if (stop - from >= 3 && encode_threes(from - 1, to)) {
                from += 3;
                to += 12;
            } else {
                // Four bytes at once cost less than three; the last is written over.
                uint32 bytes;
                split_three<uint32>(unit, bytes);
                basic::store<uint32>(to, bytes, false);
                to += 3;
            }
        }
        result.to = to;
    }
    result.finish();
}

void utf8::decode(narrow_string const & bytes, wide_string & out, bool validate, platform::utf8_blocks const * blocks) {
    out.clear();
    out.reserve(bytes.size());
    tail<wide_string> result(out);
    char const * from = bytes.data();
    char const * const end = from + bytes.size();
    while (from != end) {
        result.make_room();
        char16_t * to = result.to;
        if (std::size_t(end - from) >= step && is_ascii(from)) {
            copy_ascii(from, to);
            from += step;
            result.to += step;
            continue;
        }
        if (blocks) {
            auto const reached = blocks->decode(from, end, to, result.stop(), validate);
            result.to = reached.to;
            if (std::exchange(from, reached.from) != reached.from)
                continue;
        }
        to = decode_words(from, end, to, validate);
        // Short texts, and the ends of others, one by one.
        for (auto const * const stop = to + step; to != stop && std::size_t(end - from) < step && from != end;)
            *to++ = decode_any(from, end, validate);
        result.to = to;
    }
    result.finish();
}

} // namespace nio
