#pragma once

#include "socle/platform/posix/paths/resolve.h"

namespace platform::posix {

/// Copies all bytes from one open file to another and syncs that. 0 or a system code.
uint32 copy_bytes(int from, int to);

/// Makes the file `from` anew at `to`, on another volume or host file system, with its streams, attributes and times,
/// and removes it when all that is on the disk. Whatever fails before leaves the file where it was, and nothing at
/// `to`.
uint32 move_between(resolved_path const & from, resolved_path const & to);

/// Renames, unless `to` exists: 0 or an `errno`, EEXIST for that. A host that cannot promise this is asked in other
/// words for what is no folder.
int rename_unless_there(narrow_string const & from, narrow_string const & to);

} // namespace platform::posix
