#pragma once

#include <time.h>

namespace platform::posix {

using clock_reader = int (*)(clockid_t clock, timespec * now);

/// The one way in which this folder reads the host's clocks, `clock_gettime` at first. Tests set a date, or a failure,
/// by putting a reader of their own here.
extern clock_reader read_clock;

} // namespace platform::posix
