#pragma once

#include "socle/basic/buffer.h"
#include "socle/nio/input.h"

#include <cstring>

namespace nio {

/// Reads ahead from a source, which must outlive it. The position is the reader's. Nothing is given back: the source
/// stays where reading ahead has moved it.
class SOCLE_API buffered_input : public input {
public:
    /// Holds up to `capacity` bytes; 0 counts as 1. Does not read yet.
    buffered_input(input & source, uint32 capacity);
    /// The copy holds the same bytes and reads on from the same source.
    buffered_input(buffered_input const &) = default;
    buffered_input & operator=(buffered_input const &) = default;
    ~buffered_input() override;

    using input::read;

    /// Reads from the buffer, and more from the source where that does not suffice.
    uint32 read(char * buffer, uint32 size) override {
        if (size > fill_ - cursor_ || size == 0)
            return _read(buffer, size);
        std::memcpy(buffer, buffer_.data() + cursor_, size);
        cursor_ += size;
        return size;
    }

    /// The position of the reader.
    uint64 tell() const override;
    /// The size of the source.
    uint64 size() const override;

protected:
    /// Reads with at most one call on the source. What is left of a request, if it is at least half the capacity, goes
    /// straight to the caller.
    uint32 _read(char * buffer, uint32 size);

private:
    bool _ours() const override;
    std::span<char const> _lend() override;
    void _take(uint64 count) override;

    uint32 hand_out(char * buffer, uint32 size);
    void refill();

    input * source_;
    basic::buffer<char> buffer_;
    uint32 capacity_;
    uint32 fill_ = 0;
    uint32 cursor_ = 0;
    uint64 start_; // the position in the source of the first byte of the buffer
};

} // namespace nio
