#pragma once

#include "socle/nio/input.h"
#include "socle/nio/output.h"

namespace nio {

/// A source and a sink in one, with one position for both directions.
class SOCLE_API channel : public input, public output {
public:
    channel() = default;
    channel(channel const &) = default;
    channel & operator=(channel const &) = default;
    ~channel() override;

    /// Nothing here.
    void begin() override;
    void end() override;

    using output::write;

    /// The position, whichever side asks. Here the value last given to `position()`, 0 at first.
    uint64 tell() const override;
    /// False: nothing has moved.
    bool seek(uint64 where) override;
    /// All ones: there is none to give.
    uint64 size() const override;

    void flush() override;

protected:
    /// The position that `tell()` gives here.
    uint64 position() const noexcept { return position_; }
    void position(uint64 where) noexcept { position_ = where; }

private:
    uint64 position_ = 0;
};

} // namespace nio
