#pragma once

#include "socle/nio/input.h"
#include "socle/nio/output.h"

namespace nio {

/// The one way to bytes that a source already holds in memory, and to room that a sink has.
///
/// Only an object whose dynamic type is a class of the library lends; from a caller's class nothing comes, and it has
/// to be asked through its public operations. What is lent holds until the next operation on the stream.
///
/// How a class lends:
/// - It overrides `_ours()` with a comparison of `typeid(*this)` with itself, so that classes derived from it do not
///   lend by accident.
/// - A source overrides `_lend()` and `_take()`, a sink `_room()` and `_use()`, and answers with nothing unless
///   `_ours()`. A window that it hands on from the underlying stream is cut to its own bounds, and what is taken is
///   counted as if it had been read. A sink that keeps nothing in the memory of the data overrides `_apart()` as well.
/// - In the family `stream`, a class with memory of its own points `memory_` (`nio/internal/memory.h`) there instead,
///   and single bytes then go without a call while the window is open. Only that class opens it, by setting
///   `memory_.limit` in an operation of its own, and only if `_ours()` and no bytes given back wait. A limit of 0 means
///   closed: every operation takes the full path, which opens the window again when it may. It is 0 in a new stream,
///   whose dynamic type is not settled before its constructors have ended, in a copy, and after `unread`.
/// - `safe_input` and `multi_input` never lend. A reader takes what a window has and sees no end in it, but the first
///   has to throw in the read that asks for more than is left, and the second has to call the user's `next()` there.
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
