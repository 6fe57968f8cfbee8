#pragma once

#include "socle/stream/transform.h"

namespace stream {

/// Moves bytes as they are, in blocks. A short read ends a bounded copy. The mark of `target` is used for the count,
/// and nothing is flushed. What the streams throw passes through, and what was moved stays moved.
class SOCLE_API copier : public transform {
public:
    /// Moves blocks of `size` bytes; 0 counts as 1.
    explicit copier(uint32 size = 65536);
    copier(copier const &) = default;
    copier & operator=(copier const &) = delete;
    ~copier() override;

    /// The size of the blocks.
    uint32 buffer_size() const noexcept { return buffer_size_; }

    /// Copies up to `count` bytes, or everything if `count` is all ones, and returns the number that arrived at
    /// `target`.
    uint64 process(input & source, output & target, uint64 count) override;
    /// Copies everything to the end and returns the number of bytes that arrived at `target`.
    uint64 process(input & source, output & target) override;

private:
    uint32 move_block(input & source, output & target, uint32 count);

    byte_vector buffer_;
    uint32 buffer_size_;
};

} // namespace stream
