#pragma once

#include "socle/stream/input.h"

namespace stream::random {

/// A source that can seek. Giving bytes back and skipping seek: what is given back is read again, and skipping reads
/// nothing.
class SOCLE_API input : public virtual stream::input {
public:
    input() = default;
    input(input const &) = default;
    input & operator=(input const &) = default;
    ~input() override;

    /// Moves back by the number of bytes, whatever they are. Throws a `stream::exception`, "cannot unread past the
    /// start".
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;
    /// Moves on by up to `count` bytes, at most to the end, and returns the number.
    uint64 skip(uint64 count) override;

    /// Moves to `where`; false means no move.
    bool seek(uint64 where) override = 0;
    /// The length of the whole source.
    uint64 size() const override = 0;
};

} // namespace stream::random
