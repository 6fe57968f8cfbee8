#pragma once

#include "socle/algorithm/digest.h"

#include <array>

namespace algorithm::crc {

/// Entry i is what the eight bits of i, followed by sixteen zero bits, leave modulo the polynomial 0x1021.
inline constexpr std::array<uint32, 256> crc_table = [] {
    std::array<uint32, 256> table{};
    for (uint32 i = 0; i < 256; ++i) {
        uint32 r = i << 8;
        for (int bit = 0; bit < 8; ++bit)
            r = (r & 0x8000) != 0 ? (r << 1) ^ 0x1021 : r << 1;
        table[i] = r & 0xFFFF;
    }
    return table;
}();

/// A cyclic redundancy check of `width` bits over a polynomial, from an initial value. There is one instance.
template <unsigned width, uint32 polynomial, uint32 initial, int, int, int>
class crc;

/// CRC-16/XMODEM: nothing reflected, no final exclusive-or. `result` is its two bytes, the high one first.
template <>
class crc<16, 0x1021, 0, 1, 0, 0> : public digest {
public:
    /// Back to state 0; `result` keeps the last digest.
    void reset() override;
    /// Only the low 16 bits of `state` count until `finish` clears those above.
    void update(unsigned char const * bytes, uint32 count) override;
    void update(unsigned char byte) override;
    /// A second call before a `reset` does nothing, even with bytes in between.
    void finish() override;

    bool finished() const noexcept { return finished_; }

private:
    bool finished_ = false;
};

} // namespace algorithm::crc
