#pragma once

#include "socle/stream/output.h"

namespace stream {

/// Writes into a vector of bytes and grows it. The caller owns the vector, which must outlive the stream and may change
/// between operations. The stream cannot seek, and its `size()` is its position.
///
/// What the vector throws when it cannot grow passes through.
class SOCLE_API vector_output : public virtual output {
public:
    /// Starts at index `start`, which may lie past the end.
    explicit vector_output(byte_vector & vector, uint32 start = 0);
    vector_output(vector_output const &) = default;
    vector_output & operator=(vector_output const &) = delete;
    ~vector_output() override;

    using output::write;

    /// Overwrites the byte at the position, or appends to the vector if that is past its end.
    void write(char byte) override;
    /// Overwrites, after growing the vector with zero bytes as far as the block needs. `data` may lie in the vector.
    void write(char const * data, uint32 count) override;

    /// The index of the next byte.
    uint64 tell() const override;

    /// Grows the vector by `source.size()` zero bytes, the length of the whole source, from its end, or from the
    /// position if that is farther. Then reads as many bytes to the position with one call, and advances by what came.
    /// Throws "input stream is too large to copy into the vector" if the vector would pass 2^32 - 1 bytes, or if the
    /// size of the source is not known.
    void copy_from(input & source) override;

    /// Makes the vector `new_size` bytes long, with zero bytes, if that is above `size()`; the position stays. Below
    /// `size()` it throws "I do not truncate the stream".
    void resize(uint64 new_size) override;

private:
    bool _ours() const override;
    bool _apart(std::span<char const> data) const override;
    std::span<char> _room() override;
    void _use(uint64 count) override;

    byte_vector & vector_;
    uint64 index_;
};

} // namespace stream
