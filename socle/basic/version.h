#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

/// The version that a program is compiled with: 10000 * MAJOR + 100 * MINOR + PATCH.
#define SOCLE_VERSION 200

namespace basic {

/// The version of the library that the program runs with, counted in the same way. Until 1.0 the program must be
/// compiled with the same MAJOR and MINOR; see docs/plugins.md.
SOCLE_API uint32 version() noexcept;

} // namespace basic
