#pragma once

#include "socle/basic/types.h"

#include <memory>

namespace platform {

/// While one lives, the calls of its thread find a folder once: for the paths of one operation, which goes on in the
/// folder that it found first, whatever becomes of its name. The last two folders are kept. Inside of another one it
/// does nothing.
class held_paths {
public:
    held_paths();
    held_paths(held_paths const &) = delete;
    held_paths & operator=(held_paths const &) = delete;
    ~held_paths();

    /// How a system holds them.
    struct folders;

private:
    std::unique_ptr<folders> own_;
};

/// Whether the folder is there in which the last name of a path is. False also for a path that ends in a separator or
/// a full stop.
bool IsParentThere(wide_string const & path);

/// The absolute form of a path: every separator a `\`, `.` and `..` resolved in the text, whether it exists or not. A
/// path on an attached volume gets the letter of that volume, however it is spelled. False for an empty path and one
/// with a NUL, or if the working directory is gone.
bool GetFullPathNameW(wide_string const & path, wide_string & full);

/// The name of the file system at a volume's root, as in `C:\`. A path in it is refused.
bool GetVolumeInformationW(wide_string const & root, wide_string & file_system);

} // namespace platform
