#pragma once

#include "socle/basic/types.h"

namespace platform::posix {

/// The system code for an `errno` value; 0 for 0.
uint32 code_of(int error);

} // namespace platform::posix
