#include "socle/platform/utf8_blocks.h"

#if defined(__x86_64__) || defined(__i386__)

#include "socle/basic/ascii_internal.h"
#include "socle/basic/byte_blocks_internal.h"

#include <array>
#include <immintrin.h>

namespace platform {

namespace {

using basic::block_of_16;
using basic::block_of_32;
using basic::byte_block;
using basic::half_block_of_16;
using basic::ascii::copy_ascii;
using basic::ascii::is_ascii;
using basic::ascii::step;
typedef signed char signed_block __attribute__((vector_size(16)));

/// For each mask of 8 bits, the indices of the bytes of a block that are kept, in front.
struct alignas(16) shuffle {
    unsigned char from[16] = {};
};

template <class Keeps>
constexpr std::array<shuffle, 256> shuffles(Keeps keeps) {
    std::array<shuffle, 256> all;
    for (unsigned mask = 0; mask < 256; ++mask)
        for (unsigned char byte = 0, kept = 0; byte < 16; ++byte)
            if (keeps(mask, byte))
                all[mask].from[kept++] = byte;
    return all;
}

/// Of eight units, those whose bits are set.
constexpr auto unit_shuffles = shuffles([](unsigned mask, unsigned byte) { return (mask >> byte / 2 & 1) != 0; });
/// Of eight pairs, the second byte, and the first where the bit is clear.
constexpr auto pair_shuffles =
    shuffles([](unsigned mask, unsigned byte) { return byte % 2 == 1 || (mask >> byte / 2 & 1) == 0; });
/// Of four numbers of 32 bits, the third byte, the second where the bit in the low half is clear, and the first where
/// that in the high half is.
constexpr auto triple_shuffles = shuffles([](unsigned mask, unsigned byte) {
    unsigned const part = byte % 4, bits = mask >> byte / 4;
    return part == 2 || (part == 1 && (bits & 0x01) == 0) || (part == 0 && (bits & 0x10) == 0);
});

// What is marked runs only on machines that have the instructions.

[[gnu::target("sse4.2,popcnt")]] void store_kept(void * to, __m128i bytes, shuffle const & kept) {
    auto const indices = _mm_load_si128(reinterpret_cast<__m128i const *>(kept.from));
    _mm_storeu_si128(static_cast<__m128i *>(to), _mm_shuffle_epi8(bytes, indices));
}

template <class Block>
[[gnu::target("sse4.2,popcnt")]] bool is_zero(Block const & block) {
    auto const bits = reinterpret_cast<__m128i>(block);
    return _mm_testz_si128(bits, bits) != 0;
}

/// The high bit of each byte.
template <class Block>
[[gnu::target("sse4.2,popcnt")]] unsigned high_bits(Block const & block) {
    return static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(block)));
}

/// Encodes eight units below 0x800.
[[gnu::target("sse4.2,popcnt")]] char * encode_pairs(block_of_16 const & units, char * to) {
    auto const is_ascii = units < 0x80;
    auto const last = is_ascii ? units : (units & 0x3F) | 0x80;
    auto const pairs = units >> 6 | 0xC0 | last << 8;
    auto const mask = high_bits(_mm_packs_epi16(reinterpret_cast<__m128i>(is_ascii), _mm_setzero_si128()));
    store_kept(to, reinterpret_cast<__m128i>(pairs), pair_shuffles[mask]);
    return to + 16 - __builtin_popcount(mask);
}

/// Encodes any four units.
[[gnu::target("sse4.2,popcnt")]] char * encode_triples(char16_t const * from, char * to) {
    half_block_of_16 half;
    std::memcpy(&half, from, sizeof half);
    auto const units = __builtin_convertvector(half, block_of_32);
    auto const is_ascii = units < 0x80, is_short = units < 0x800;
    auto const last = is_ascii ? units : (units & 0x3F) | 0x80;
    auto const marks = reinterpret_cast<block_of_32>(is_short) & 0x4000;
    auto const triples = units >> 12 | (units << 2 & 0x3F00) | last << 16 | marks | 0x80E0;
    auto const mask = static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(is_ascii))
                                            | _mm_movemask_ps(reinterpret_cast<__m128>(is_short)) << 4);
    store_kept(to, reinterpret_cast<__m128i>(triples), triple_shuffles[mask]);
    return to + 12 - __builtin_popcount(mask);
}

[[gnu::target("sse4.2,popcnt")]] utf8_place<char16_t, char> encode(char16_t const * from, char16_t const * end,
                                                                   char * to, char const * stop) {
    while (end - from >= 16 && to < stop) {
        if (is_ascii(from)) {
            copy_ascii(from, to);
            from += step;
            to += step;
            continue;
        }
        for (int half = 0; half < 2; ++half, from += 8) {
            block_of_16 units;
            std::memcpy(&units, from, sizeof units);
            if (is_zero(units & 0xF800))
                to = encode_pairs(units, to);
            else
                to = encode_triples(from + 4, encode_triples(from, to));
        }
    }
    return {from, to};
}

/// Takes each of 16 bytes as if it led a sequence, with the two bytes behind it; then keeps the units of those that do.
/// That the others continue one is seen by masks, of which a block hands two bits on to the next.
[[gnu::target("sse4.2,popcnt")]] utf8_place<char, char16_t> decode(char const * from, char const * end, char16_t * to,
                                                                   char16_t const * stop, bool validate) {
    unsigned begun = 0; // which bytes, from the lowest bit on, a sequence before `from` still wants
    for (; end - from >= 18 && to < stop; from += 16) {
        byte_block bytes, second, third;
        std::memcpy(&bytes, from, sizeof bytes);
        std::memcpy(&second, from + 1, sizeof second);
        std::memcpy(&third, from + 2, sizeof third);

        auto const high = high_bits(bytes);
        if ((high | begun) == 0) {
            copy_ascii(from, to);
            to += step;
            continue;
        }
        auto const is_three = (bytes & 0xF0) == 0xE0;
        auto const continuing = high_bits((bytes & 0xC0) == 0x80);
        auto const wanted = begun | (high & ~continuing) << 1 | high_bits(is_three) << 2;
        if ((wanted & 0xFFFF) != continuing)
            break;

        // The halves of the units. A shift of pairs of bytes takes bits over, which are masked out.
        auto const is_high = reinterpret_cast<signed_block>(bytes) < 0;
        auto const middle = is_three ? second & 0x3F : bytes & 0x1F;
        auto const last = (is_three ? third : second) & 0x3F;
        auto const middle_low = reinterpret_cast<byte_block>(reinterpret_cast<block_of_16>(middle & 0x03) << 6);
        auto const middle_high = reinterpret_cast<byte_block>(reinterpret_cast<block_of_16>(middle) >> 2) & 0x0F;
        auto const top = reinterpret_cast<byte_block>(reinterpret_cast<block_of_16>(bytes) << 4) & 0xF0;
        auto const low = is_high ? middle_low | last : bytes;
        auto const upper = reinterpret_cast<byte_block>(is_high) & (is_three ? top | middle_high : middle_high);

        auto odd = reinterpret_cast<byte_block>(bytes >= 0xF0);
        if (validate) {
            auto const five = upper & 0xF8;
            odd |= reinterpret_cast<byte_block>((bytes & 0xFE) == 0xC0) | reinterpret_cast<byte_block>(five == 0xD8);
            odd |= reinterpret_cast<byte_block>(five == 0) & reinterpret_cast<byte_block>(is_three);
            odd |= reinterpret_cast<byte_block>((upper & (low | 1)) == 0xFF);
        }
        if (!is_zero(odd))
            break;

        auto const leads = ~continuing & 0xFFFF;
        auto const low_bytes = reinterpret_cast<__m128i>(low), upper_bytes = reinterpret_cast<__m128i>(upper);
        store_kept(to, _mm_unpacklo_epi8(low_bytes, upper_bytes), unit_shuffles[leads & 0xFF]);
        to += __builtin_popcount(leads & 0xFF);
        store_kept(to, _mm_unpackhi_epi8(low_bytes, upper_bytes), unit_shuffles[leads >> 8]);
        to += __builtin_popcount(leads >> 8);
        begun = wanted >> 16;
    }
    if (begun != 0) { // back to the lead of a sequence that has only begun
        --to;
        while ((*--from & 0xC0) == 0x80) {
        }
    }
    return {from, to};
}

constexpr utf8_blocks shuffled = {encode, decode};

} // namespace

utf8_blocks const * find_utf8_blocks() {
    static utf8_blocks const * const found = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt") ? &shuffled : nullptr;
    }();
    return found;
}

} // namespace platform

#else

namespace platform {

utf8_blocks const * find_utf8_blocks() { return nullptr; }

} // namespace platform

#endif
