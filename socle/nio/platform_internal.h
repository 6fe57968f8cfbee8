#pragma once

namespace nio {

/// Whether the system is of the kind that knows NTFS streams and backup privileges; found out while the library loads.
extern bool const platform_is_nt;

} // namespace nio
