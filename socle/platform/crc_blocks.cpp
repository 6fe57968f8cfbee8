#include "socle/platform/crc_blocks.h"

#if defined(__x86_64__) || defined(__i386__)

#include <immintrin.h>

namespace platform {

namespace {

// What is marked runs only on machines that have the instructions.

[[gnu::target("pclmul,ssse3")]] __m128i load(void const * from) {
    return _mm_loadu_si128(static_cast<__m128i const *>(from));
}

/// The bytes from the lowest of a polynomial to the highest, or back to how they were loaded.
[[gnu::target("pclmul,ssse3")]] __m128i ordered(__m128i bytes, crc_factors const & factors) {
    return factors.reflected
               ? bytes
               : _mm_shuffle_epi8(bytes, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
}

/// A block moved to where `next` is, and added to that.
[[gnu::target("pclmul,ssse3")]] __m128i moved_onto(__m128i next, __m128i block, __m128i by) {
    __m128i const low = _mm_clmulepi64_si128(block, by, 0x00), high = _mm_clmulepi64_si128(block, by, 0x11);
    return _mm_xor_si128(next, _mm_xor_si128(low, high));
}

[[gnu::target("pclmul,ssse3")]] void fold(unsigned char const * bytes, std::size_t count, crc_factors const & factors,
                                          unsigned char (&block)[16]) {
    __m128i const by_16 = load(factors.by_16_bytes), by_64 = load(factors.by_64_bytes);
    // Four at a time, so that none waits for a product.
    __m128i folded[4];
    for (std::size_t i = 0; i < 4; ++i)
        folded[i] = ordered(load(bytes + 16 * i), factors);
    folded[0] = _mm_xor_si128(folded[0], ordered(load(block), factors));
    for (bytes += 64, count -= 64; count >= 64; bytes += 64, count -= 64)
        for (std::size_t i = 0; i < 4; ++i)
            folded[i] = moved_onto(ordered(load(bytes + 16 * i), factors), folded[i], by_64);
    __m128i all = folded[0];
    for (std::size_t i = 1; i < 4; ++i)
        all = moved_onto(folded[i], all, by_16);
    for (; count > 0; bytes += 16, count -= 16)
        all = moved_onto(ordered(load(bytes), factors), all, by_16);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(block), ordered(all, factors));
}

} // namespace

crc_folding find_crc_folding() {
    static crc_folding const found = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3") ? fold : nullptr;
    }();
    return found;
}

} // namespace platform

#else

namespace platform {

crc_folding find_crc_folding() { return nullptr; }

} // namespace platform

#endif
