#include "socle/platform/win32/host/system.h"

namespace platform {

bool GetFileTime(int file, uint64 & created, uint64 & modified) {
    FILETIME creation, last_write;
    if (!win32::report(::GetFileTime(win32::handle_of(file), &creation, nullptr, &last_write)))
        return false;
    created = win32::units_of(creation);
    modified = win32::units_of(last_write);
    return true;
}

bool SetFileTime(int file, uint64 const * created, uint64 const * modified) {
    FILETIME const creation = win32::file_time_of(created != nullptr ? *created : 0);
    FILETIME const last_write = win32::file_time_of(modified != nullptr ? *modified : 0);
    return win32::report(::SetFileTime(win32::handle_of(file), created != nullptr ? &creation : nullptr, nullptr,
                                       modified != nullptr ? &last_write : nullptr));
}

} // namespace platform
