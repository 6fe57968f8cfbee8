#pragma once

#include "socle/nio/bit_input.h"

namespace stream {

/// Carries the bit reader through which `any::read` takes integers from a source, which must outlive it.
class binary_input {
public:
    /// Reads from `source`, which has to outlive it.
    explicit binary_input(nio::input & source) noexcept : bits_(source) {}

    /// The reader of bits.
    nio::bit_input<1, 0, 1> & bits() noexcept { return bits_; }

private:
    nio::bit_input<1, 0, 1> bits_;
};

} // namespace stream
