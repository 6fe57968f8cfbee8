#pragma once

#include "socle/nio/time.h"

namespace any {

/// A point in time: `nio::time` under this family's name.
class time : public nio::time {
public:
    time() = default;
    /// As `set`.
    time(uint64 value, format_type format) { set(value, format); }
    /// As `set`.
    template <class Duration>
    explicit time(std::chrono::sys_time<Duration> point) : nio::time(point) {}
    /// The same point in time.
    time(nio::time const & other) : nio::time(other) {}
};

} // namespace any
