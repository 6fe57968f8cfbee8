#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/system_code.h"

namespace platform::posix {

/// A creation time that was set, in decimal digits, where the disk keeps none.
constexpr char const * created_attribute = "user.socle.created";

/// In 100 nanoseconds since 1601.
struct file_times {
    uint64 created = 0;
    uint64 modified = 0;
};

/// The times of a file with this status, in which the host was asked for STATX_MTIME and STATX_BTIME. An extended
/// attribute with a creation time of its own is only looked for if there may be one: `recorded`.
system_code get_times_of(host::at const & file, struct statx const & status, bool recorded, file_times & times);

} // namespace platform::posix
