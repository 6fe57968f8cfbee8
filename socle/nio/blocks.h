#pragma once

#include "socle/nio/input.h"
#include "socle/nio/output.h"

/// Moving bytes in blocks between any source and any sink. Each call holds one block of at most `buffer_size` bytes,
/// and no more than it has to move; a `buffer_size` of 0 counts as 1. Exceptions of the streams pass through, and what
/// was moved stays moved.
namespace nio {

/// Copies up to `count` bytes and returns the number copied. The first short read ends the copy, after what it returned
/// has been written.
SOCLE_API uint64 copy(input & from, output & to, uint64 count, uint32 buffer_size);

/// Reads and drops up to `count` bytes and returns the number dropped. It never seeks, so it works on any input.
SOCLE_API uint64 skip(input & from, uint64 count, uint32 buffer_size);

/// Writes `count` copies of `value`.
SOCLE_API void fill(output & to, uint64 count, char value, uint32 buffer_size);

} // namespace nio
