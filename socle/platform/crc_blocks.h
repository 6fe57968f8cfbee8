#pragma once

#include "socle/basic/types.h"

#include <cstddef>

namespace platform {

/// By what a block of 16 bytes is multiplied, modulo the polynomial of a cyclic redundancy check, to move it behind
/// another 16 or 64 bytes. The first factor is for the half of the block that is loaded into the low bits.
struct crc_factors {
    bool reflected; // the lowest bit of a byte comes first
    uint64 by_16_bytes[2], by_64_bytes[2];
};

/// The factors of a polynomial of `width` bits, which are at most 32, without its highest one.
constexpr crc_factors crc_factors_of(unsigned width, uint32 polynomial, bool reflected) {
    auto const power = [&](unsigned exponent) {
        uint64 rest = 1;
        for (; exponent > 0; --exponent) {
            rest <<= 1;
            rest ^= (rest >> width & 1) != 0 ? uint64(1) << width | polynomial : 0;
        }
        return rest;
    };
    // Bit n of a factor stands for x^n; reflected, bit 63 - n, and a product comes out by x too high.
    auto const factor = [&](unsigned exponent) {
        if (!reflected)
            return power(exponent);
        uint64 const rest = power(exponent - 1);
        uint64 result = 0;
        for (unsigned n = 0; n < width; ++n)
            result |= (rest >> n & 1) << (63 - n);
        return result;
    };
    // The half of a block that comes first is 64 bits further from the end.
    unsigned const low = reflected ? 64 : 0, high = 64 - low;
    return {reflected, {factor(128 + low), factor(128 + high)}, {factor(512 + low), factor(512 + high)}};
}

/// Turns `count` bytes, a multiple of 16 and at least 64, into 16 that leave the same remainder from a state of zero.
/// What `block` holds is added to the first bytes, and so holds the state to begin from; it receives the result.
using crc_folding = void (*)(unsigned char const * bytes, std::size_t count, crc_factors const & factors,
                             unsigned char (&block)[16]);

/// That for this machine, which is asked once; null if it lacks the instructions.
crc_folding find_crc_folding();

} // namespace platform
