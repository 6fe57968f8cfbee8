#pragma once

#include "socle/nio/input.h"

#include <algorithm>
#include <limits>

namespace nio {

// There is one specialisation.
template <int, int, int>
class bit_input;

SOCLE_API int64 read_p2(bit_input<1, 0, 1> & in);
/// Its way to the bits that are held.
class p2_code;

/// Reads single bits from a source.
///
/// The first bit of the stream is bit 0 of its first byte. Bytes are taken from the source one at a time, and only when
/// a bit of theirs is wanted; the source must outlive this object. At the end of the source, bits are -1.
template <>
class SOCLE_API bit_input<1, 0, 1> {
public:
    /// Reads from `source`, which has to outlive it; nothing is read yet.
    explicit bit_input(input & source) noexcept : source_(&source) {}

    /// Reads until at least `n` bits are held, `n` up to 24; false if the source ran dry first.
    bool require(int n) { return count_ >= n || read_until(n); }

    /// The next `n` bits, the first of them lowest, without consuming them; -1 if there are not so many. `n` is 0 to
    /// 24; beyond that the result is -1.
    int peek(int n) {
        if (n > max_peek || !require(n))
            return -1;
        return static_cast<int>(accumulator_ & ((1u << std::max(n, 0)) - 1));
    }

    /// Skips `n` bits, held or not. Bits that are not held yet will be missing from what the source delivers later.
    void drop(int n) noexcept {
        if (n <= 0)
            return;
        accumulator_ = n < 32 ? accumulator_ >> n : 0;
        count_ = count_ < std::numeric_limits<int>::min() + n ? std::numeric_limits<int>::min() : count_ - n;
    }

    /// Consumes one bit: 0 or 1, or -1 at the end of the source.
    int get_bit() {
        int const bit = require(1) ? static_cast<int>(accumulator_ & 1) : -1;
        drop(1);
        return bit;
    }

    /// The number of bits held; below 0 after bits were consumed that the source did not have.
    int count() const noexcept { return count_; }

private:
    friend p2_code;

    static constexpr int max_peek = 24;

    /// Bits to come, the first one lowest. Those from `length` up are 0.
    struct run {
        uint64 bits;
        int length;
    };

    bool read_until(int n);

    /// All bits that can be had with no byte from the source but one, if none is held; none at its end.
    run ahead();
    /// Passes over `n` bits of what `ahead` gave.
    void pass(int n);

    input * source_;
    /// The next bit is bit 0; bits from `count_` up are 0.
    uint32 accumulator_ = 0;
    int count_ = 0;
};

} // namespace nio
