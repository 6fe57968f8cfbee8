#pragma once

#include "socle/platform/win32/host/system.h"

/// Links are reparse points that stand for another name. Other files carry reparse points too: those whose data lie in
/// a cloud, or are shared with other files.
namespace platform::win32 {

/// Whether the path, with these bits of the system's, names a link.
bool is_link(wchar_t const * path, DWORD attributes);

/// The same for what a search has found.
inline bool is_link(::WIN32_FIND_DATAW const & found) {
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(found.dwReserved0);
}

bool is_folder_link(wchar_t const * path);

/// Opens what the path leads to: a file or folder, or a link that leads nowhere itself.
HANDLE open_target(wchar_t const * path, DWORD access);

} // namespace platform::win32
