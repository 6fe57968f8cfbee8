#pragma once

#include "socle/nio/bit_output.h"

namespace stream {

/// Carries the bit writer through which `any::write` writes integers to a sink, which must outlive it. After the last
/// one call `bits().finish()`: until then up to 31 bits are held back, and the destructor does not write them.
class binary_output {
public:
    /// Writes to `target`, which has to outlive it.
    explicit binary_output(nio::output & target) noexcept : bits_(target) {}

    /// The writer of bits.
    nio::bit_output<1, 0> & bits() noexcept { return bits_; }

private:
    nio::bit_output<1, 0> bits_;
};

} // namespace stream
