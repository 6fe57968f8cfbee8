#include "socle/platform/win32/paths/system_path.h"

namespace platform {

bool CreateDirectoryW(wide_string const & path) {
    win32::system_path const system(path);
    return system && win32::report(::CreateDirectoryW(system, nullptr));
}

bool RemoveDirectoryW(wide_string const & path) {
    win32::system_path const system(path);
    return system && win32::report(::RemoveDirectoryW(system));
}

} // namespace platform
