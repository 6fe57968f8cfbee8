#pragma once

#include "socle/basic/types.h"

#include <cstddef>
#include <span>

namespace nio {

/// A place in memory that a stream of the library reads from or writes to, open for single bytes while `next` is below
/// `limit`. `next` always holds the place; `limit` is 0 while every operation has to go the long way. A copy of a
/// stream starts closed, since only the class that holds the memory may open it.
template <class Byte>
struct memory {
    memory() = default;
    /// Closed, at the byte `start`.
    memory(Byte * first, uint64 start) : bytes(first), next(start) {}
    /// The same place, closed.
    memory(memory const & other) : bytes(other.bytes), next(other.next) {}
    memory & operator=(memory const & other) {
        bytes = other.bytes;
        next = other.next;
        limit = 0;
        return *this;
    }
    ~memory() = default;

    /// Whether single bytes may go past the long way.
    bool open() const noexcept { return next < limit; }

    /// The bytes that lie open; only while they do.
    std::span<Byte> window() const noexcept { return {bytes + next, static_cast<std::size_t>(limit - next)}; }

    /// Passes over the next `count` bytes if they are open. The sum cannot overflow: both are sizes in memory.
    bool pass(uint64 count) noexcept {
        uint64 const after = next + count;
        if (after > limit)
            return false;
        next = after;
        return true;
    }

    /// The memory, the place in it, and where it ends for single bytes.
    Byte * bytes = nullptr;
    uint64 next = 0;
    uint64 limit = 0;
};

} // namespace nio
