#pragma once

#include "socle/basic/types.h"

namespace platform {

/// What an exception says of a failed call: the system's text for its code, without the line end and full stops at the
/// end, or "unknown error" if the system has none. Does not change the last error.
narrow_string system_error_text(uint32 code);

} // namespace platform
