#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace nio {

/// The machine's high-resolution counter. Both may be called from any thread, and return 0 if the host has none.
class SOCLE_API timer {
public:
    /// The current count; it never goes back.
    static uint64 absolute();
    /// Counts in a second.
    static uint64 resolution();
};

} // namespace nio
