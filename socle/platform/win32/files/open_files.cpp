#include "socle/platform/win32/files/links.h"
#include "socle/platform/win32/paths/system_path.h"

namespace platform {

namespace {

/// Opens or makes a file. It makes none behind a link that leads nowhere, and a hidden file may be made anew too, both
/// unlike the system where it is asked for CREATE_ALWAYS itself.
HANDLE open_or_make(wchar_t const * path, DWORD access, DWORD sharing, DWORD disposition, DWORD flags) {
    auto const open = [&](DWORD how, DWORD further) {
        return ::CreateFileW(path, access, sharing, nullptr, how, flags | further, nullptr);
    };
    if (disposition == OPEN_EXISTING)
        return open(OPEN_EXISTING, 0);
    // Again if the file comes or goes between two calls, but not for ever.
    for (int attempt = 0;; ++attempt) {
        if (disposition == CREATE_ALWAYS) {
            HANDLE const emptied = open(TRUNCATE_EXISTING, 0);
            if (win32::file_of(emptied) != win32::no_file || ::GetLastError() != ERROR_FILE_NOT_FOUND)
                return emptied;
        }
        HANDLE const made = open(CREATE_NEW, FILE_FLAG_OPEN_REPARSE_POINT);
        bool const again = disposition == CREATE_ALWAYS && attempt < 100 && win32::file_of(made) == win32::no_file
                           && ::GetLastError() == ERROR_FILE_EXISTS;
        if (!again)
            return made;
    }
}

} // namespace

int CreateFileW(wide_string const & path, uint32 access, uint32 sharing, uint32 disposition, uint32 flags) {
    win32::system_path const system(path);
    if (!system)
        return win32::no_file;
    bool const folders = (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0;
    bool const times_only = folders && (access & GENERIC_READ) == 0 && (sharing & FILE_SHARE_WRITE) != 0;
    // Not even a read-only file refuses that.
    constexpr DWORD times = FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES;
    HANDLE const file = times_only ? win32::open_target(system, access == 0 ? DWORD{FILE_READ_ATTRIBUTES} : times)
                                   : open_or_make(system, access, sharing, disposition, flags);
    return win32::report(win32::file_of(file) != win32::no_file) ? win32::file_of(file) : win32::no_file;
}

int GetStdHandle(uint32 which) {
    HANDLE const own = ::GetStdHandle(which);
    HANDLE copy = nullptr;
    HANDLE const process = ::GetCurrentProcess();
    // A program without a console may have none.
    bool const there = own != nullptr && win32::file_of(own) != win32::no_file;
    if (!win32::report_code(there ? 0 : ERROR_INVALID_HANDLE)
        || !win32::report(::DuplicateHandle(process, own, process, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS)))
        return win32::no_file;
    return win32::file_of(copy);
}

bool CloseHandle(int file) { return win32::report(::CloseHandle(win32::handle_of(file))); }

} // namespace platform
