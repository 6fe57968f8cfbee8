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

    /// Does nothing, for both directions.
    void begin() override;
    /// Does nothing, for both directions.
    void end() override;

    using input::read;
    using output::write;

    /// The position of both directions; by default the value last given to `position()`, 0 at first.
    uint64 tell() const override;
    /// False by default: nothing has moved.
    bool seek(uint64 where) override;
    /// All ones by default: it is not known.
    uint64 size() const override;

    /// Does nothing by default.
    void flush() override;

protected:
    /// The position that `tell()` returns by default.
    uint64 position() const noexcept { return position_; }
    void position(uint64 where) noexcept { position_ = where; }

private:
    uint64 position_ = 0;
};

} // namespace nio
