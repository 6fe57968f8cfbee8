#pragma once

#include "socle/platform/errors.h"

namespace platform::posix {

/// What a call of the system's kind answers: whether it worked, with the last error set if it did not.
inline bool report(uint32 code) {
    if (code != 0)
        SetLastError(code);
    return code == 0;
}

} // namespace platform::posix
