#pragma once

#include "socle/stream/transform.h"

namespace stream {

/// Moves bytes as they are, in blocks. A short read ends a bounded copy. The mark of `target` is used up for the count,
/// and nothing is flushed. What the streams throw passes through, and what was moved stays moved.
class SOCLE_API copier : public transform {
public:
    /// Moves blocks of `size` bytes, 0 counting as 1.
    explicit copier(uint32 size = 65536);
    copier(copier const &) = default;
    copier & operator=(copier const &) = delete;
    ~copier() override;

    /// The size of the blocks.
    uint32 buffer_size() const noexcept { return buffer_size_; }

    uint64 process(input & source, output & target, uint64 count) override;
    uint64 process(input & source, output & target) override;

private:
    uint32 move_block(input & source, output & target, uint32 count);

    byte_vector buffer_;
    uint32 buffer_size_;
};

} // namespace stream
