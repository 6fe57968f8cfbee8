#pragma once

#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"

#include <span>

namespace stream {

/// @{
/// Reads a run of integers, as tables of files hold them. It does what one call of `read16`, `read32` or `read64` for
/// each value does, with all that an end of the stream or an exception in the midst leaves behind. Values that lie in
/// memory beneath a `big_endian_input` or `little_endian_input` are moved in blocks; a class derived from these gets
/// every single call.
SOCLE_API void read_integers(endian_input & in, std::span<uint16> values);
SOCLE_API void read_integers(endian_input & in, std::span<uint32> values);
SOCLE_API void read_integers(endian_input & in, std::span<uint64> values);
/// @}

/// @{
/// Writes a run of integers, as one call of `write16`, `write32` or `write64` for each value does; in blocks into
/// memory beneath a `big_endian_output` or `little_endian_output`.
SOCLE_API void write_integers(endian_output & out, std::span<uint16 const> values);
SOCLE_API void write_integers(endian_output & out, std::span<uint32 const> values);
SOCLE_API void write_integers(endian_output & out, std::span<uint64 const> values);
/// @}

} // namespace stream
