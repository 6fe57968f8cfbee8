#pragma once

#include "socle/stream/direct_input.h"

namespace stream {

/// Ends a source after `limit` bytes. The position is that of the underlying stream.
class SOCLE_API limited_input : public direct_input {
public:
    /// At most `limit` bytes of `stream`, which has to outlive it.
    limited_input(input & stream, uint64 limit);
    limited_input(limited_input const &) = default;
    limited_input & operator=(limited_input const &) = default;
    ~limited_input() override;

    /// The number of bytes that may be read in all.
    uint64 limit() const noexcept { return limit_; }
    /// Bytes requested by reads plus bytes skipped, minus bytes given back, modulo 2^64. It exceeds what was delivered
    /// where the underlying stream ended early or threw.
    uint64 consumed() const noexcept { return limit_ - left_; }

    /// Moves the underlying stream to `where` and returns its answer. `where` also becomes the number of consumed
    /// bytes, whatever that answer is. Throws "cannot seek past the end of the stream" if `where` is above the limit.
    bool seek(uint64 where) override;

    /// The limit, even if the underlying stream is shorter.
    uint64 size() const override;

    /// Gives bytes back to the underlying stream, so that as many bytes more may be read.
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;

protected:
    /// @{
    /// Forwards to the underlying stream as far as the limit allows.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    /// @}

private:
    bool _ours() const override;
    std::span<char const> _lend() override;
    void _take(uint64 count) override;

    void give_back(uint64 count);

    uint64 limit_;
    uint64 left_; // above the limit after more was given back than read
};

} // namespace stream
