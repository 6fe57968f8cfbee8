#pragma once

#include "socle/platform/time_zone.h"

namespace nio {

/// The zone as it was when the library was loaded, by which times are told to be in daylight saving.
extern platform::TIME_ZONE_INFORMATION zone_at_load;

} // namespace nio
