#pragma once

#include "socle/platform/posix/paths/resolve.h"

namespace platform::posix {

/// Copies all bytes from one open file to another and syncs that.
host_error copy_bytes(int from, int to);

/// Makes the file `from` anew at `to`, on another volume or host file system, with its streams, attributes and times,
/// and removes it when all that is on the disk. Whatever fails before leaves the file where it was, and nothing at
/// `to`.
system_code move_between(resolved_path const & from, resolved_path const & to);

} // namespace platform::posix
