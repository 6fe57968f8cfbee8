#pragma once

#include "socle/basic/types.h"

namespace platform {

/// The times of an open file or folder in 100 nanoseconds since 1601. The creation time is the one that was set, else
/// the host's, else that of the last write.
bool GetFileTime(int file, uint64 & created, uint64 & modified);

/// Sets the times that are not null. A creation time is dropped where the host can keep none.
bool SetFileTime(int file, uint64 const * created, uint64 const * modified);

} // namespace platform
