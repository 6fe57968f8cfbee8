#pragma once

#include "socle/platform/system_code.h"

namespace platform::posix {

/// What a call of the system's kind answers: whether it worked, with the last error set if it did not.
inline bool report(system_code code) {
    if (code)
        SetLastError(code.value());
    return !code;
}

} // namespace platform::posix
