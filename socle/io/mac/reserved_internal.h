#pragma once

#include "socle/nio/blocks.h"

namespace io::mac {

/// Reserved bytes of a record, which have no member.
inline void write_reserved(nio::output & output, uint64 count) { nio::fill(output, count, 0, 0x10000); }

} // namespace io::mac
