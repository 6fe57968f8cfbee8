#pragma once

#include "socle/any/path.h"
#include "socle/basic/export.h"

namespace io {

/// Reports the system call that has just failed: throws `io::exception` with the thread's last error as its code and
/// `message "path"; code text` as its message, the code in decimal and the system's text. Returns for the code of a
/// broken pipe, 109; the caller then goes on as if the call had succeeded.
SOCLE_API void raise_system_error(any::path const & path, narrow_string const & message, narrow_string const & origin);

} // namespace io
