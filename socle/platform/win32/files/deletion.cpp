#include "socle/platform/win32/files/links.h"
#include "socle/platform/win32/paths/system_path.h"

namespace platform {

bool DeleteFileW(wide_string const & path) {
    win32::system_path const system(path);
    if (!system)
        return false;
    if (::DeleteFileW(system))
        return true;
    DWORD const code = ::GetLastError();
    // A link to a folder goes by the call for folders.
    if (code == ERROR_ACCESS_DENIED && win32::is_folder_link(system) && ::RemoveDirectoryW(system))
        return true;
    SetLastError(code);
    return false;
}

} // namespace platform
