#pragma once

#include "socle/stream/output.h"

namespace stream::random {

/// A sink that can seek.
class SOCLE_API output : public virtual stream::output {
public:
    output() = default;
    output(output const &) = default;
    output & operator=(output const &) = default;
    ~output() override;

    using stream::output::write;

    /// Moves to `where`; false means no move.
    bool seek(uint64 where) override = 0;
    /// The length of the whole sink.
    uint64 size() const override = 0;
    /// Makes the sink `size` bytes long.
    void resize(uint64 size) override = 0;
};

} // namespace stream::random
