#pragma once

#include "socle/platform/win32/host/system.h"

namespace platform {

struct file_search {
    file_search(HANDLE search, bool without_dots) : handle(search), entries_only(without_dots) {}
    file_search(file_search const &) = delete;
    file_search & operator=(file_search const &) = delete;
    ~file_search() { ::FindClose(handle); }

    HANDLE handle;
    bool entries_only; // "." and ".." are left out
};

namespace win32 {

/// Begins a search and finds its first entry; null if there is none.
file_search * begin_search(wide_string const & pattern, bool entries_only, WIN32_FIND_DATAW & data);

} // namespace win32

} // namespace platform
