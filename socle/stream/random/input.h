#pragma once

#include "socle/stream/input.h"

namespace stream::random {

/// A source that can seek, and goes back and forth by that: what is given back is read again, and skipping reads
/// nothing.
class SOCLE_API input : public virtual stream::input {
public:
    input() = default;
    input(input const &) = default;
    input & operator=(input const &) = default;
    ~input() override;

    /// Goes back; the bytes given are not looked at. Throws a `stream::exception`, "cannot unread past the start".
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;
    /// Stops at the end.
    uint64 skip(uint64 count) override;

    bool seek(uint64 where) override = 0;
    uint64 size() const override = 0;
};

} // namespace stream::random
