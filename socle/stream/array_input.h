#pragma once

#include "socle/stream/input.h"
#include "socle/un/array.h"

#include <span>
#include <string_view>

namespace stream {

/// Reads a fixed block of memory, which the caller owns and which must outlive the stream. It cannot seek.
class SOCLE_API array_input : public virtual input {
public:
    /// Reads `length` bytes from `data`, starting at index `start`, which may lie past the end.
    array_input(char const * data, uint32 length, uint32 start = 0);
    explicit array_input(un::array<char> const & array, uint32 start = 0);
    /// @{
    /// Reads a text or block; also of one that is not zero-terminated. Throws "cannot read more than the maximum array
    /// size" if its length needs more than 32 bits.
    explicit array_input(std::string_view block);
    explicit array_input(std::span<unsigned char const> block);
    /// @}
    array_input(array_input const &) = default;
    array_input & operator=(array_input const &) = default;
    ~array_input() override;

    /// The length of the whole block.
    uint64 size() const override;

protected:
    /// Reads from the block.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    /// Skips. Throws "cannot skip more than the maximum array size" if `count` needs more than 32 bits.
    uint64 _skip(uint64 count) override;
    /// The index of the next byte.
    uint64 _tell() const override;

    /// Writes the next `count` bytes to `target` in one block, then flushes it; all ones means `size()`. Returns the
    /// count; this stream does not move.
    ///
    /// Throws "cannot copy more than the maximum array size" if the count needs more than 32 bits, and "cannot copy
    /// more data than the array contains".
    uint64 _copy(output & target, uint64 count);

private:
    bool _ours() const override;

    uint64 left() const { return memory_.next < length_ ? length_ - memory_.next : 0; }

    uint32 length_;
};

} // namespace stream
