#pragma once

#include "basic/types.h"

namespace platform {

constexpr uint32 ERROR_INVALID_PARAMETER = 87;
constexpr uint32 ERROR_INSUFFICIENT_BUFFER = 122;

/// The code of the last call that failed on this thread. Calls that succeed leave it alone.
uint32 GetLastError();
void SetLastError(uint32 code);

} // namespace platform
