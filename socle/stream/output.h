#pragma once

#include "socle/nio/internal/memory.h"
#include "socle/nio/output.h"
#include "socle/stream/exception.h"

namespace stream {

class input;

/// A byte sink with single bytes, text, copying, resizing and marks.
///
/// A concrete sink supplies `write(char)` and `tell()`. The destructor writes nothing: a class that holds bytes back
/// writes them itself. What a write throws passes through every operation, and what was written stays written.
class SOCLE_API output : public nio::output {
public:
    output() = default;
    output(output const &) = default;
    output & operator=(output const &) = default;
    ~output() override;

    using nio::output::write;

    /// Writes `count` bytes, by default each through `write(char)`. Null `data` writes nothing.
    void write(char const * data, uint32 count) override;

    /// The position of the next byte.
    uint64 tell() const override = 0;

    /// Throws "cannot seek in a sequential stream". A class that can seek overrides this; false means no move.
    bool seek(uint64 where) override;

    /// The length of the stream, by default `tell()`.
    uint64 size() const override;

    /// Writes the bytes of `text`, by default through the block form.
    virtual void write(narrow_string const & text);
    /// Writes one byte.
    virtual void write(char byte) = 0;
    /// Writes one byte, the low 8 bits of `byte`, so that a number such as 0 is a byte.
    void write(int byte) { write(static_cast<char>(byte)); }
    /// Writes a zero-terminated text through the form for text.
    void write(char const * text) { write(narrow_string(text)); }

    /// Writes everything from the position of `source` to its end, by default byte by byte.
    virtual void copy_from(input & source);

    /// Makes the stream `new_size` bytes long. By default it appends zero bytes to a shorter stream, and for a longer
    /// one throws "resize() does not truncate the stream".
    virtual void resize(uint64 new_size);

    /// Pushes held bytes through all layers, where `flush()` pushes those of this layer one layer down. By default it
    /// calls `flush()`.
    virtual void flush_through();

    /// Ends the use of the stream, by default with `flush()`.
    virtual void close();

    /// Writes `byte` `count` times.
    void fill(uint64 count, char byte);

    /// Records `tell()` for `drift()`.
    void mark();
    /// The number of bytes passed since `mark()`, modulo 2^64. It has a meaning only after a `mark()`.
    uint64 drift() const;

protected:
    // Where a sink of the library writes in memory. It is opened only if the dynamic type is a class of the library.
    nio::memory<char> memory_;
    // Room for the next `count` bytes of a sink, counted as written, if it lies open in its memory; else null.
    static char * open_room(output & sink, uint64 count) {
        auto & memory = sink.memory_;
        return memory.pass(count) ? memory.bytes + memory.next - count : nullptr;
    }

private:
    friend struct lending;

    std::span<char> _room() override;
    void _use(uint64 count) override;

    uint64 mark_position_ = 0;
};

} // namespace stream
