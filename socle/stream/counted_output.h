#pragma once

#include "socle/stream/filter_output.h"

namespace stream {

/// Counts the bytes that pass through `write`, from a value of the caller's. The count is the position.
///
/// Text, and what `copy_from` brings, goes to the underlying stream without being counted. A write that throws is not
/// counted.
class SOCLE_API counted_output : public filter_output {
public:
    /// Counts from `start` on.
    counted_output(output & stream, uint64 start);
    counted_output(counted_output const &) = default;
    counted_output & operator=(counted_output const &) = default;
    ~counted_output() override;

    /// `start` plus the number of bytes written since.
    uint64 count() const noexcept { return count_; }

    using filter_output::write;

    /// Writes to the underlying stream, then counts.
    void write(char const * data, uint32 count) override;
    void write(char byte) override;
    /// The count.
    uint64 tell() const override;

    /// Writes `byte` `count` times; they are counted.
    void fill(uint64 count, char byte);

private:
    bool _ours() const override;
    std::span<char> _room() override;
    void _use(uint64 count) override;

    uint64 count_;
};

} // namespace stream
