#pragma once

#include "socle/stream/input.h"

namespace stream {

/// An endless run of zero bytes, which counts what was read. It has no size, and cannot be copied to its end: that
/// throws "do you really want to copy all the data I've got?".
class SOCLE_API infinite_input : public input {
public:
    infinite_input() = default;
    infinite_input(infinite_input const &) = default;
    infinite_input & operator=(infinite_input const &) = default;
    ~infinite_input() override;

    /// The number of bytes read so far.
    uint64 count() const noexcept { return count_; }

    /// Always throws.
    uint64 copy_to(output & target) override;

protected:
    /// @{
    /// Delivers zero bytes, and counts them.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    /// @}
    /// The count.
    uint64 _tell() const override;

    /// Writes `count` zero bytes to `target` one by one, then flushes it. Throws if `count` is all ones.
    uint64 _copy(output & target, uint64 count);

private:
    bool _ours() const override;

    uint64 count_ = 0;
};

} // namespace stream
