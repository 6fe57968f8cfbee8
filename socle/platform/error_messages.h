#pragma once

#include "socle/basic/types.h"

#include <string_view>

namespace platform {

/// The text for a code of errors.h where the system has none of its own, ending ".\r\n"; empty if the code is unknown.
std::string_view error_message(uint32 code);

} // namespace platform
