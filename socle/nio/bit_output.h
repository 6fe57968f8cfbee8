#pragma once

#include "socle/nio/output.h"

namespace nio {

// There is one specialisation.
template <int, int>
class bit_output;

/// Writes single bits to a sink.
///
/// The first bit of the stream is bit 0 of its first byte. Up to 31 bits are held back, and nothing but `finish` writes
/// the last of them: the destructor does not. The target must outlive this object.
template <>
class SOCLE_API bit_output<1, 0> {
public:
    /// Writes to `target`, which has to outlive it.
    explicit bit_output(output & target) noexcept : target_(&target) {}

    /// Appends one bit, 0 or 1. Whole bytes are written first if it would be the 32nd that is held.
    void put_bit(int bit) { put_bits(static_cast<unsigned>(bit), 1); }
    /// Appends the low `n` bits of `bits`, the lowest first, as that many calls of `put_bit`. `n` is 0 to 64.
    void put_bits(uint64 bits, int n);

    /// Writes every whole byte held, one at a time.
    void drain();
    /// Writes the low 8 bits held and takes 8 from the count, even if fewer are held.
    void put_byte();
    /// Ends the stream: writes all that is held, the last byte filled up with bits of 0. The next bit starts a byte.
    void finish();

    /// The number of bits held. Below 0 after a `put_byte` with fewer than 8 of them: that many following bits are
    /// dropped, as that byte already stood for them.
    int count() const noexcept { return count_; }

private:
    output * target_;
    /// The oldest bit is bit 0; bits from `count_` up are 0.
    uint32 accumulator_ = 0;
    int count_ = 0;
};

} // namespace nio
