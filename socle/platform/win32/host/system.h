#pragma once

#include "socle/platform/backup.h"
#include "socle/platform/clock.h"
#include "socle/platform/code_pages.h"
#include "socle/platform/directories.h"
#include "socle/platform/environment.h"
#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "socle/platform/paths.h"
#include "socle/platform/time_zone.h"

#include <bit>
#include <cstdint>

namespace platform::win32 {

/// Under a name that no macro of the system's header takes over.
constexpr int no_file = INVALID_HANDLE_VALUE;

} // namespace platform::win32

// Last, for its macros have the names of the constants above, and the same values.
#include <windows.h>

namespace platform::win32 {

/// The system's handles have 32 significant bits. -1 stands for no file with us, but is also a handle of the process
/// itself: the system gets none instead.
inline HANDLE handle_of(int file) {
    return file == no_file ? nullptr : reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(file));
}

inline int file_of(HANDLE handle) { return static_cast<int>(reinterpret_cast<std::intptr_t>(handle)); }

/// What a call of the system gave, with its last error kept if it failed: the runtime changes the system's own.
template <typename Result>
Result report(Result result) {
    if (!result)
        SetLastError(::GetLastError());
    return result;
}

/// The same for a code.
inline bool report_code(uint32 code) {
    if (code != 0)
        SetLastError(code);
    return code == 0;
}

inline uint64 units_of(FILETIME time) { return uint64{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

inline FILETIME file_time_of(uint64 units) { return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)}; }

inline SYSTEMTIME calendar_of(::SYSTEMTIME const & time) { return std::bit_cast<SYSTEMTIME>(time); }
inline ::SYSTEMTIME system_of(SYSTEMTIME const & time) { return std::bit_cast<::SYSTEMTIME>(time); }

/// Closes a handle of the system's when it goes.
class handle_closer {
public:
    explicit handle_closer(HANDLE handle) : handle_(handle) {}
    handle_closer(handle_closer const &) = delete;
    handle_closer & operator=(handle_closer const &) = delete;
    ~handle_closer() {
        if (open())
            ::CloseHandle(handle_);
    }

    bool open() const { return file_of(handle_) != no_file; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

} // namespace platform::win32
