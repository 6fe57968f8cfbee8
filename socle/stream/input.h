#pragma once

#include "socle/nio/input.h"
#include "socle/nio/internal/memory.h"
#include "socle/stream/exception.h"

namespace stream {

class output;

/// A byte source with single bytes, pushback, skipping, copying and marks.
///
/// A concrete source supplies the protected `_read()` and `_tell()`, and may override the other protected hooks; the
/// public operations look after the bytes that were given back. The end of the stream is never an exception, and what
/// a hook throws passes through. Copying copies the bytes given back; an underlying stream is shared.
class SOCLE_API input : public nio::input {
public:
    input() = default;
    input(input const &) = default;
    input & operator=(input const &) = default;
    ~input() override;

    using nio::input::read;

    /// Reads up to `count` bytes into `buffer` and returns the number read; below `count` the end was met.
    uint32 read(char * buffer, uint32 count) override;

    /// The position of the next byte that a reader gets: bytes given back count as not yet read.
    uint64 tell() const override;

    /// Throws "cannot seek in a sequential stream". A class that can seek overrides this; false means no move.
    bool seek(uint64 where) override;

    /// The next byte, 0 to 255, or -1 at the end, also when asked again.
    SOCLE_INLINE_API virtual int read() {
        if (memory_.open())
            return static_cast<unsigned char>(memory_.bytes[memory_.next++]);
        return read_on();
    }

    /// Gives bytes back, so that they are read next and `tell()` falls by `count`, below 0 modulo 2^64.
    ///
    /// A source that can seek goes back by `count` and reads its own bytes again. Otherwise `data` is kept: any bytes
    /// and any number of them, what was given back last being read first.
    virtual void unread(char const * data, uint32 count);
    virtual void unread(char byte);

    /// Skips up to `count` bytes and returns the number skipped, which is below `count` only at the end.
    virtual uint64 skip(uint64 count);

    /// Writes everything from the position to the end to `target` and returns the number of bytes written. If reading
    /// throws, what came of the block in hand is neither in `target` nor left to be read; `tell()` counts it.
    virtual uint64 copy_to(output & target);

    /// Ends the use of the stream. Does nothing by default.
    virtual void close();

    /// Records `tell()` for `drift()`.
    void mark();
    /// The number of bytes passed since `mark()`, modulo 2^64. It has a meaning only after a `mark()`.
    uint64 drift() const;

protected:
    /// The block through which `_skip` and `_copy_to` move bytes: 65536.
    static uint32 const buf_size = 65536;

    /// Reads a block without regard to bytes given back. By default it calls the public `read()` for each byte.
    virtual uint32 _read(char * buffer, uint32 count);
    /// Reads a byte without regard to bytes given back; -1 at the end.
    virtual int _read() = 0;

    /// Skips. By default it reads blocks of `buf_size` through the public `read` until that returns 0.
    virtual uint64 _skip(uint64 count);
    /// Copies. By default it reads blocks of `buf_size` through the public `read` until that returns 0.
    virtual uint64 _copy_to(output & target);

    /// The position without regard to bytes given back.
    virtual uint64 _tell() const = 0;

    /// Forgets the bytes given back.
    void release_data();

    // Where a source of the library reads in memory. It is opened only while nothing is given back and the dynamic type
    // is a class of the library.
    nio::memory<char const> memory_;
    // The next `count` bytes of a source, passed over, if they lie open in its memory; else null.
    static char const * open_bytes(input & source, uint64 count) {
        auto & memory = source.memory_;
        return memory.pass(count) ? memory.bytes + memory.next - count : nullptr;
    }
    // Bytes given back come first, then those in `memory_`.
    std::span<char const> _lend() override;
    void _take(uint64 count) override;

private:
    friend struct lending;

    std::size_t pending() const { return pushback_size_ - pushback_pos_; }
    int read_on();
    void pass(uint64 count);

    byte_vector pushback_;
    std::size_t pushback_size_ = 0;
    std::size_t pushback_pos_ = 0;
    uint64 pushback_at_ = 0;
    uint64 mark_position_ = 0;
    byte_vector scratch_;
};

} // namespace stream
