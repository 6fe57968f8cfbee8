#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace platform {

/// Makes the host folder `folder` the volume of a further drive letter, with the name of a file system; on one called
/// "NTFS", files have named streams. Call it before other threads start. Returns 0 or a system code: 3 if there is no
/// such folder, 5 if something else is in the place of the hidden folder below, 50 if it cannot keep named streams, 87
/// for what is no letter, 183 for `C` and letters in use.
///
/// On Linux the folder stays open until it is detached, so that its disk cannot be unmounted; where it has been moved
/// or removed, paths on the drive fail with 3, whatever has taken its place.
///
/// Where the host's disk has no streams of its own, the first one makes a hidden folder, `.socle_streams`, at the top
/// of `folder`, which keeps them all, and marks its file with an extended attribute.
SOCLE_API uint32 attach_volume(char letter, narrow_string const & folder, narrow_string const & file_system);

/// Detaches the letter; the folder stays as it is. Returns 0, or 3 if the letter was not attached.
SOCLE_API uint32 detach_volume(char letter);

/// Removes what no file of the volume claims any more of the streams that the library keeps there: of files that other
/// programs have deleted or copied over. Looks at every file of the volume, which must not be moved about meanwhile.
/// Returns 0 or a system code: 3 for a letter without a volume, and the code for what could not be looked at, when
/// nothing is removed, or could not be removed. It takes root, or who made the folder of the streams. There is nothing
/// to do where the disk itself keeps them.
SOCLE_API uint32 sweep_volume(char letter);

/// The library's form of a host path, absolute or relative; `to_host` restores every byte of it. An absolute one is a
/// path on `C:`, also if it lies in the folder of an attached volume.
SOCLE_API wide_string from_host(narrow_string const & path);

/// The host's path for one of the library's; relative ones stay relative. Empty, with a last error, where the host has
/// no such path: an unknown drive, a share, a named stream, a NUL, a lone surrogate.
SOCLE_API narrow_string to_host(wide_string const & path);

/// The arguments of `main`, its program's name first, in the host's form, which `from_host` takes.
SOCLE_API std::vector<narrow_string> arguments(int argc, char const * const * argv);

/// Whether a path names a link of the file system, wherever that leads.
SOCLE_API bool is_link(wide_string const & path);

/// The system code of the last call that failed on this thread; 18 after a walk that ended at the end.
SOCLE_API uint32 last_error();

/// Whether a code says that nothing has such a name, and not that the system could not look.
SOCLE_API bool nothing_is_there(uint32 code = last_error());

} // namespace platform
