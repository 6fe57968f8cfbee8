#pragma once

#include "socle/basic/buffer.h"
#include "socle/nio/output.h"

#include <cstring>

namespace nio {

/// Collects small writes for a target, which must outlive it. The position and the size count what was written to it.
///
/// What the target throws passes through, and what it did not take is still held. The destructor writes what is held
/// and swallows every failure, so a caller who needs to know of them calls `flush()` first.
class SOCLE_API buffered_output : public output {
public:
    /// Holds up to `capacity` bytes; 0 counts as 1.
    buffered_output(output & target, uint32 capacity);
    buffered_output(buffered_output const &) = delete;
    buffered_output & operator=(buffered_output const &) = delete;
    ~buffered_output() override;

    using output::write;

    /// Holds the bytes, or writes them to the target if they do not fit.
    void write(char const * data, uint32 size) override {
        if (size > capacity_ - used_ || size >= capacity_ || size == 0)
            return _write(data, size);
        std::memcpy(buffer_.data() + used_, data, size);
        used_ += size;
    }
    /// Holds the byte, after writing what is held if there is no room.
    void write(unsigned char byte) override {
        char const single = static_cast<char>(byte);
        if (used_ == capacity_ || capacity_ == 1)
            return _write(&single, 1);
        buffer_[used_++] = single;
    }

    /// Writes what is held to the target; does not flush the target.
    void flush() override;

    /// The number of bytes written to this object.
    uint64 tell() const override;
    /// The number of bytes written to this object.
    uint64 size() const override;

protected:
    /// Writes with at most two calls on the target. A block of at least the capacity goes straight there.
    void _write(char const * data, uint32 size);

private:
    bool _ours() const override;
    std::span<char> _room() override;
    void _use(uint64 count) override;

    output * target_;
    basic::buffer<char> buffer_;
    uint32 capacity_;
    uint32 used_ = 0;
    uint64 start_ = 0; // what has gone to the target
};

} // namespace nio
