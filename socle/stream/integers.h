#pragma once

#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"

#include <span>

namespace stream {

/// @name Runs of integers
/// What a table of a file is read and written with. Each does what one call of `read16`, `write16`, ... for each value
/// does, with all that an end of the stream or an exception in the midst leaves behind; but values that lie in memory
/// beneath a `big_endian_input`, `little_endian_input`, `big_endian_output` or `little_endian_output` are moved in
/// blocks. A class derived from these gets every single call.
/// @{

SOCLE_API void read_integers(endian_input & in, std::span<uint16> values);
SOCLE_API void read_integers(endian_input & in, std::span<uint32> values);
SOCLE_API void read_integers(endian_input & in, std::span<uint64> values);

SOCLE_API void write_integers(endian_output & out, std::span<uint16 const> values);
SOCLE_API void write_integers(endian_output & out, std::span<uint32 const> values);
SOCLE_API void write_integers(endian_output & out, std::span<uint64 const> values);

/// @}

} // namespace stream
