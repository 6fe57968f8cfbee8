#pragma once

#include "socle/stream/output.h"
#include "socle/un/array.h"

namespace stream {

/// Writes into a fixed block of memory, which the caller owns and which must outlive the stream. It cannot seek, and
/// its `size()` is its position.
///
/// A byte that does not fit throws "cannot write past the end of a fixed-size buffer".
class SOCLE_API array_output : public virtual output {
public:
    /// Writes to the `length` bytes at `data`, starting at index `start`, which may lie past the end.
    array_output(char * data, uint32 length, uint32 start = 0);
    explicit array_output(un::array<char> & array, uint32 start = 0);
    array_output(array_output const &) = default;
    array_output & operator=(array_output const &) = default;
    ~array_output() override;

    using output::write;

    /// Stores the byte.
    SOCLE_INLINE_API void write(char byte) override {
        if (memory_.open())
            memory_.bytes[memory_.next++] = byte;
        else
            write_on(byte);
    }
    /// Stores the bytes. If they do not fit, it stores those that do, and then throws.
    void write(char const * data, uint32 count) override;

    /// The index of the next byte.
    uint64 tell() const override;

    /// Reads `source.size()` bytes, the length of the whole source, with one call, and advances by what came. Throws
    /// "input stream is too large to copy into the array" if they do not fit, or if the size of the source is not
    /// known.
    void copy_from(input & source) override;

    /// Throws "cannot resize its buffer", unless `new_size` is `size()`.
    void resize(uint64 new_size) override;

private:
    bool _ours() const override;
    bool _apart(std::span<char const> data) const override;

    void open();
    void write_on(char byte);
    uint64 left() const { return memory_.next < length_ ? length_ - memory_.next : 0; }

    uint32 length_;
};

} // namespace stream
