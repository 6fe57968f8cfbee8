#pragma once

#include "socle/nio/bit_input.h"
#include "socle/nio/bit_output.h"

/// Two codes of variable length for 64-bit integers.
///
/// wz, in whole bytes: groups of 7 bits, the highest group first and none of them a leading zero, in the low bits of
/// each byte; bit 7 is set on every byte but the last. 0 to 127 take one byte, 2^63 - 1 takes nine.
///
/// p2, in bits: with x = value + 1 and w the number of its 1 bits, w - 1 bits of 1, one bit of 0, then the bits of x
/// from the lowest up to its highest 1. Every value but -1 has a code, small ones with few 1 bits the shortest.
///
/// No function reports a code that is cut short or too long; exceptions of the streams pass through.
namespace nio {

/// The number of 1 bits in the 64-bit pattern of `value`.
SOCLE_API int hamming_weight(int64 value);

/// Reads one wz code. Leading zero groups are taken, and of more than 64 bits the last ones count. The end of the input
/// ends the value where it stands, so an empty input is 0.
SOCLE_API int64 read_wz(input & in);
/// Writes one wz code. A negative value goes as its 64-bit pattern, in ten bytes.
SOCLE_API void write_wz(int64 value, output & out);
/// The number of bytes that `write_wz` would write.
SOCLE_API uint32 size_wz(int64 value);

/// Reads one p2 code; the next one starts at the bit after it. The end of the input ends the leading 1 bits, and bits
/// of x that are missing count as 1, so an empty input is 0. Bits of x beyond the 64th are consumed without effect.
/// There is no limit to the leading 1 bits, nor to the 0 bits of x: an endless source of either is read for ever.
SOCLE_API int64 read_p2(bit_input<1, 0, 1> & in);
/// Writes one p2 code; its last bits stay in `out` until more follow or it is finished. For -1 a single 0 bit is
/// written, which does not read back as -1.
SOCLE_API void write_p2(int64 value, bit_output<1, 0> & out);

} // namespace nio
