#pragma once

#include "socle/algorithm/digest.h"

#include <array>
#include <cstddef>

namespace algorithm::crc {

/// Entry i is what the eight bits of i, followed by sixteen zero bits, leave modulo the polynomial 0x1021.
SOCLE_API extern std::array<uint32, 256> const crc_table;

// A cyclic redundancy check of `width` bits over a polynomial, from an initial value. There is one specialisation.
template <unsigned width, uint32 polynomial, uint32 initial, int, int, int>
class crc;

/// CRC-16/XMODEM: nothing reflected, no final exclusive-or. `result` is its two bytes, the high one first.
template <>
class SOCLE_API crc<16, 0x1021, 0, 1, 0, 0> : public digest {
public:
    crc() = default;
    crc(crc const &) = default;
    crc & operator=(crc const &) = default;
    ~crc() override;

    /// Back to state 0; `result` keeps the last digest.
    void reset() override;
    /// Only the low 16 bits of `state` count until `finish` clears those above.
    void update(unsigned char const * bytes, uint32 count) override;
    void update(unsigned char byte) override;
    /// A second call before a `reset` does nothing, even with bytes in between.
    void finish() override;

    /// Whether `finish` was called since the last `reset`.
    bool finished() const noexcept { return finished_; }

private:
    bool finished_ = false;
};

/// The CRC of MacBinary headers and of BinHex files.
using xmodem = crc<16, 0x1021, 0, 1, 0, 0>;

/// The CRC-32 of ZIP, gzip and PNG files: the polynomial 0x04C11DB7, reflected, from all ones, and inverted at the end.
/// `before` is that of the bytes in front, so that bytes may come in pieces.
SOCLE_API uint32 crc_32(unsigned char const * bytes, std::size_t count, uint32 before = 0);

} // namespace algorithm::crc
