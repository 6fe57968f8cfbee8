#pragma once

#include "socle/nio/input.h"
#include "socle/nio/output.h"

namespace nio {

/// The one way to bytes that a source already holds in memory, and to room that a sink has.
///
/// Only an object whose dynamic type is a class of the library lends; from a caller's class nothing comes, and it has
/// to be asked through its public operations. What is lent holds until the next operation on the stream.
struct lending {
    /// Whether the dynamic type of the stream is a class of the library.
    static bool ours(input const & stream) { return stream._ours(); }

    /// The next bytes of `stream` as far as they are in memory; empty if none are, which says nothing about the end.
    static std::span<char const> bytes(input & stream) { return stream._lend(); }
    /// Passes over the first `count` bytes of what `bytes` gave.
    static void take(input & stream, uint64 count) { stream._take(count); }

    /// Memory that the next bytes of `stream` would be stored in; empty if there is none, which says nothing else.
    static std::span<char> room(output & stream) { return stream._room(); }
    /// Whether lent bytes may be written to `stream` as they stand: all of the chain are classes of the library, and
    /// none keeps what it is given in the memory where the bytes lie. Otherwise they have to be copied first.
    static bool apart(output const & stream, std::span<char const> data) { return stream._apart(data); }
    /// Counts the first `count` bytes of what `room` gave as written.
    static void use(output & stream, uint64 count) { stream._use(count); }
};

} // namespace nio
