#pragma once

#include "socle/nio/output.h"

namespace nio {

/// Writes one stream across a series of targets of limited size. A derived class supplies the series and owns its
/// members. A target may be filled exactly; the next one starts with the next byte. The position counts what was
/// written.
class SOCLE_API multi_output : public output {
public:
    multi_output() = default;
    multi_output(multi_output const &) = default;
    multi_output & operator=(multi_output const &) = default;
    ~multi_output() override;

    using output::write;

    /// Throws `nio::exception`, "multi_output has run out of files to write", with bytes left and no target. What had
    /// room by then is written and counted, and every further byte throws again.
    void write(char const * data, uint32 size) override;

    /// The number of bytes that the current target may take.
    uint64 limit() const noexcept { return limit_; }
    /// The number of bytes that the current target has.
    uint64 written() const noexcept { return written_; }

protected:
    /// The current target, null if there is no further one.
    output * target() const noexcept { return target_; }
    void target(output * next) noexcept { target_ = next; }
    /// Sets how many bytes the current target may take.
    void limit(uint64 bytes) noexcept { limit_ = bytes; }

    /// Called when the current target is full, and for the first one, to set `target` to the next one, or to null, and
    /// its `limit`.
    virtual void next() = 0;

private:
    uint64 room() const { return target_ && written_ < limit_ ? limit_ - written_ : 0; }
    void put(char const * data, uint32 size);
    void advance();

    output * target_ = nullptr;
    uint64 limit_ = 0;
    uint64 written_ = 0;
    bool finished_ = false;
};

} // namespace nio
