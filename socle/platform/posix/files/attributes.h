#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/paths/volumes.h"

/// The attribute bits of files. On a mounted NTFS disk they are the disk's own. Elsewhere read-only is the owner's
/// missing write bit, and a user extended attribute keeps what the host knows nothing of.
namespace platform::posix {

/// Whether the file at `path`, with this mode, may not be written or deleted. Links are followed.
bool is_read_only(volume const & on, narrow_string const & path, mode_t mode);

} // namespace platform::posix
