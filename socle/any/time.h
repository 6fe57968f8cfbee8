#pragma once

#include "socle/nio/time.h"

namespace any {

/// A point in time: `nio::time` under this family's name.
class time : public nio::time {
public:
    time() = default;
    /// As `set`.
    time(uint64 value, format_type format) { set(value, format); }
    /// The same point in time.
    time(nio::time const & other) : nio::time(other) {}
};

} // namespace any
