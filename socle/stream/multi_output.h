#pragma once

#include "socle/stream/filter_output.h"

namespace stream {

/// Writes one stream across a series of targets of limited size. A derived class supplies the series in `next()`, which
/// is called for the first target too, and owns the targets. A target is filled to exactly its limit before more bytes
/// make the next one start. One with a limit of 0 is skipped, so a series has to reach a target with room, or end.
///
/// With bytes left and no target, `write` throws "I have run out of files to write"; by then what fitted has been
/// written and counted, and the stream is finished. Text, `copy_from`, `resize`, `flush_through` and `close` act on the
/// current target alone, without regard to its limit, and are not counted.
class SOCLE_API multi_output : public filter_output {
public:
    multi_output() = default;
    multi_output(multi_output const &) = default;
    multi_output & operator=(multi_output const &) = default;
    ~multi_output() override;

    /// The number of bytes that the current target may take.
    uint64 limit() const noexcept { return limit_; }
    /// The number of bytes that the current target has.
    uint64 written() const noexcept { return written_; }

    using filter_output::write;

    /// Writes to the current target, and goes on to the next where that is full.
    void write(char const * data, uint32 count) override;
    void write(char byte) override;

    /// The number of bytes written to all targets.
    uint64 tell() const override;
    /// All ones.
    uint64 size() const override;

    using filter_output::under;
    /// Makes `stream` the current target, of which nothing is written yet.
    void under(output & stream) override;

    /// Called when the current target is full, to install the following one with `under(stream)` and to set its
    /// `limit`; a caller may call it earlier. By default it installs none, which ends the series.
    virtual void next();

protected:
    /// Sets the limit.
    void limit(uint64 bytes) noexcept { limit_ = bytes; }

private:
    uint64 room() const { return underlying() && written_ < limit_ ? limit_ - written_ : 0; }
    void advance();
    void put(char const * data, uint32 count);

    uint64 limit_ = 0;
    uint64 total_ = 0;
    uint64 written_ = 0;
    bool finished_ = false;
};

} // namespace stream
