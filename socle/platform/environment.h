#pragma once

#include "socle/basic/types.h"

namespace platform {

/// The value of an environment variable; false if it is not set. `getenv` returns it in the ANSI page.
bool _wgetenv(char const * name, wide_string & value);
bool getenv(char const * name, narrow_string & value);

constexpr uint32 VER_PLATFORM_WIN32_NT = 2;
/// The kind of system this is.
uint32 GetVersionExA();

} // namespace platform
