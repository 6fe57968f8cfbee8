#pragma once

#include "socle/stream/binary_input.h"
#include "socle/stream/binary_output.h"

namespace any {

/// Reads one integer in the p2 code of `nio::read_p2`.
SOCLE_API int64 read(stream::binary_input & input);
/// Writes one integer in the p2 code of `nio::write_p2`.
SOCLE_API void write(int64 value, stream::binary_output & output);

} // namespace any
