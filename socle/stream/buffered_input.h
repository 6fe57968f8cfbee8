#pragma once

#include "socle/stream/filter_input.h"

#include <memory>

namespace stream {

/// Reads ahead from the underlying stream, with at most one call per operation. The position is the reader's, not that
/// of the underlying stream.
///
/// A block read may be short before the end, as the underlying stream may be short and is not asked again; 0 is the
/// end.
///
/// Bytes given back are kept in the buffer. Held bytes stay when `under(stream)` changes the underlying stream, are
/// read first, and go back to the new one: call `yield()` before. `yield()` and the destructor return unread bytes to
/// the underlying stream; `close()` does not. What the underlying stream throws passes through; what was read or
/// skipped by then stays read, as `tell()` shows. Bytes that its block read had delivered before it threw are lost, so
/// that a source which may throw in the midst of a block needs a block read that consumes nothing when it throws.
class SOCLE_API buffered_input : public filter_input {
public:
    /// Reads ahead in blocks of `size` bytes; 0 counts as 1. Does not read yet.
    buffered_input(input & stream, uint32 size);
    buffered_input(buffered_input const &) = delete;
    buffered_input & operator=(buffered_input const &) = delete;
    /// Returns unread bytes to the underlying stream, as `yield()` does, but fails silently if that refuses them.
    ~buffered_input() override;

    /// Keeps the bytes in the buffer, which grows as far as they need. Takes any bytes and any number of them.
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;

    /// Returns every unread byte to the underlying stream, whose position then is that of this one. If that stream
    /// throws, the bytes are still held.
    void yield();

protected:
    /// Reads a block. One of at least half the buffer goes past it, straight into `buffer`.
    uint32 _read(char * buffer, uint32 count) override;
    /// Reads a byte from the buffer, which it fills if it is empty.
    int _read() override;
    /// Skips in the buffer, then in the underlying stream.
    uint64 _skip(uint64 count) override;
    /// The position of the reader.
    uint64 _tell() const override;

    /// Moves the held bytes to the front of the buffer and reads once to fill it up.
    void refill();

    /// Writes up to `count` bytes to `target` one by one, then flushes it, and returns the number written; all ones
    /// means `size() - tell()`.
    uint64 _copy(output & target, uint64 count);

private:
    bool _ours() const override;

    std::size_t held() const { return static_cast<std::size_t>(filled_ - memory_.next); }
    void hold(uint64 first, uint64 end);
    void pass_beneath(uint64 count);

    uint32 buffer_size_;
    std::unique_ptr<char[]> buffer_;
    uint64 filled_ = 0; // from memory_.next on, these bytes of the buffer are held
    uint64 base_;       // the position of buffer_[0]
    uint64 capacity_;
};

} // namespace stream
