#pragma once

#include "socle/platform/time_zone.h"

/// What is found out about the system while the library loads.
namespace nio {

/// Whether the system is of the kind that knows NTFS streams and backup privileges.
extern bool const platform_is_nt;

/// The zone, by which times are told to be in daylight saving.
extern platform::TIME_ZONE_INFORMATION zone_at_load;

} // namespace nio
