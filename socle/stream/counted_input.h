#pragma once

#include "socle/stream/direct_input.h"

namespace stream {

/// Counts the bytes that pass, from a value of the caller's. The count is the position.
class SOCLE_API counted_input : public direct_input {
public:
    /// Counts from `start` on.
    counted_input(input & stream, uint64 start);
    counted_input(counted_input const &) = default;
    counted_input & operator=(counted_input const &) = default;
    ~counted_input() override;

    /// `start` plus the number of bytes read since.
    uint64 count() const noexcept { return count_; }

    /// The count so far, not the size of the source.
    uint64 size() const override;

    /// Gives bytes back to the underlying stream, then lowers the count.
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;

protected:
    /// @{
    /// Forwards to the underlying stream, and counts.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    uint64 _tell() const override;
    /// @}

private:
    bool _ours() const override;
    void _take(uint64 count) override;

    uint64 count_;
};

} // namespace stream
