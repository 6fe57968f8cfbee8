#pragma once

#include "socle/stream/filter_output.h"

#include <memory>

namespace stream {

/// Collects small writes for the underlying stream. The position is the writer's, not that of the underlying stream.
///
/// What the underlying stream throws passes through; bytes that it did not take are still held. The destructor writes
/// what is held and swallows every failure, so a caller who needs to know of them calls `flush()` first; it does not
/// flush the underlying stream. `under(stream)` writes nothing: what is held goes to the new one, unless `flush()`
/// comes before.
class SOCLE_API buffered_output : public filter_output {
public:
    /// Holds up to `size` bytes; 0 counts as 1.
    buffered_output(output & stream, uint32 size);
    buffered_output(buffered_output const &) = delete;
    buffered_output & operator=(buffered_output const &) = delete;
    ~buffered_output() override;

    /// Calls `flush()`.
    void end() override;

    using output::write;

    /// Holds the bytes. A block of at least the size of the buffer goes past it, in one write.
    void write(char const * data, uint32 count) override;
    void write(narrow_string const & text) override;
    SOCLE_INLINE_API void write(char byte) override {
        if (memory_.open())
            memory_.bytes[memory_.next++] = byte;
        else
            write_on(byte);
    }

    /// Writes what is held to the underlying stream; does not flush that stream.
    void flush() override;

    /// The position of the writer.
    uint64 tell() const override;

    /// Writes what is held, then copies to the underlying stream.
    void copy_from(input & source) override;

    /// Drops what is held past `new_size`, writes the rest, and resizes the underlying stream.
    void resize(uint64 new_size) override;

protected:
    /// The core of `flush()`: one write, if anything is held.
    void flush_buffer();

private:
    bool _ours() const override;

    uint64 filled() const { return memory_.next; }
    void open();
    void write_on(char byte);
    void write_held(uint64 count);
    template <class Act>
    void move_beneath(Act act);

    uint32 buffer_size_;
    std::unique_ptr<char[]> buffer_;
    uint64 base_; // the position beneath, where buffer_[0] will land
};

} // namespace stream
