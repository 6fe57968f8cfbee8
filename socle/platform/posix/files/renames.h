#pragma once

#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/host_error.h"

namespace platform::posix {

/// Renames, unless `to` exists: EEXIST. Where the host lacks that promise, files are linked and unlinked instead.
host_error rename_unless_there(host::at const & from, host::at const & to);

} // namespace platform::posix
