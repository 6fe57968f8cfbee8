#pragma once

#include "socle/platform/posix/host/host_error.h"

namespace platform::posix {

/// `bytes` random bytes in lower-case hexadecimal digits: a name that nobody else has.
host_error make_hex_id(std::size_t bytes, narrow_string & id);

} // namespace platform::posix
