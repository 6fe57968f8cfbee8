#pragma once

#include "socle/basic/types.h"

namespace platform {

/// The absolute form of a path: every separator a `\`, `.` and `..` resolved in the text, whether it exists or not. A
/// path on an attached volume gets the letter of that volume, however it is spelled. False for an empty path and one
/// with a NUL, or if the working directory is gone.
bool GetFullPathNameW(wide_string const & path, wide_string & full);

/// The name of the file system at a volume's root, as in `C:\`.
bool GetVolumeInformationW(wide_string const & root, wide_string & file_system);

} // namespace platform
