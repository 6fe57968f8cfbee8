#pragma once

#include "socle/nio/input.h"

namespace nio {

/// Reads a series of sources as one. A derived class supplies the series and owns its members. The position counts what
/// was read.
class SOCLE_API multi_input : public input {
public:
    multi_input() = default;
    multi_input(multi_input const &) = default;
    multi_input & operator=(multi_input const &) = default;
    ~multi_input() override;

    using input::read;

    /// Reads from as many sources as it takes. A short result means that the last source has ended. A source that
    /// returns less than it is asked for has ended.
    uint32 read(char * buffer, uint32 size) override;

protected:
    /// The current source, null if there is no further one.
    input * source() const noexcept { return source_; }
    void source(input * next) noexcept { source_ = next; }

    /// Called when the current source has ended, to set `source` to the next one, or to null.
    virtual void next() = 0;

private:
    input * source_ = nullptr;
};

} // namespace nio
