#include "socle/basic/version.h"

namespace basic {

static_assert(SOCLE_VERSION == SOCLE_PROJECT_VERSION, "the version of the project and of its header differ");

uint32 version() noexcept { return SOCLE_VERSION; }

} // namespace basic
