#pragma once

#include "socle/stream/filter_input.h"

#include <memory>

namespace stream {

/// Reads ahead from the stream beneath, which is asked at most once per operation and can be given back what was read
/// too far. The position is the reader's, not that of the stream beneath.
///
/// What is given back lands in the buffer. `close()` gives nothing back beneath; `yield()` and the destructor do. What
/// the stream beneath throws passes through; what was read or skipped by then stays read, as `tell()` shows.
class SOCLE_API buffered_input : public filter_input {
public:
    /// Reads ahead in blocks of `size` bytes, 0 counting as 1. Reads nothing yet.
    buffered_input(input & stream, uint32 size);
    buffered_input(buffered_input const &) = delete;
    buffered_input & operator=(buffered_input const &) = delete;
    /// Gives the bytes read ahead back, as `yield()` does, but without a word if the stream beneath refuses them.
    ~buffered_input() override;

    /// Any bytes and any number of them; the buffer grows as far as they need.
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;

    /// Gives every byte read ahead back to the stream beneath, which then stands where this one does. If it refuses
    /// them by throwing, they are still held here.
    void yield();

protected:
    /// A block of at least half the buffer goes past it, straight into `buffer`.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    uint64 _tell() const override;

    /// Moves the held bytes to the front of the buffer and reads once to fill it up.
    void refill();

    /// Writes up to `count` bytes to `target` one by one, then flushes it, and gives how many; all ones stands for
    /// `size() - tell()`.
    uint64 _copy(output & target, uint64 count);

private:
    bool _ours() const override;

    uint64 held() const { return filled_ - memory_.next; }
    void hold(uint64 first, uint64 end);
    void pass_beneath(uint64 count);

    uint32 buffer_size_;
    std::unique_ptr<char[]> buffer_;
    uint64 filled_ = 0; // from memory_.next on, these bytes of the buffer are held
    uint64 base_;       // the position of buffer_[0]
    uint64 capacity_;
};

} // namespace stream
