#pragma once

#include "socle/stream/input.h"

namespace stream {

/// Reads a vector of bytes, which the caller owns and which must outlive the stream. The vector may change
/// between operations. The stream cannot seek.
class SOCLE_API vector_input : public virtual input {
public:
    /// Starts at index `start`, which may lie past the end.
    explicit vector_input(byte_vector const & vector, uint32 start = 0);
    vector_input(vector_input const &) = default;
    vector_input & operator=(vector_input const &) = delete;
    ~vector_input() override;

    /// The length of the vector.
    uint64 size() const override;

protected:
    /// Reads from the vector.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    /// Skips. Throws "cannot skip more than the maximum vector size" if `count` needs more than 32 bits.
    uint64 _skip(uint64 count) override;
    /// Writes everything from the position to the end in one block, as it is before: `target` may change the vector.
    /// This stream does not move: the bytes stay to be read.
    uint64 _copy_to(output & target) override;
    /// The index of the next byte.
    uint64 _tell() const override;

private:
    bool _ours() const override;
    std::span<char const> _lend() override;
    void _take(uint64 count) override;

    std::span<char const> rest() const;

    byte_vector const & vector_;
    uint64 index_;
};

} // namespace stream
