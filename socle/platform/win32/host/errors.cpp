#include "socle/platform/win32/host/system.h"

namespace platform {

namespace {

/// Not the system's, which the runtime's own calls set back.
thread_local uint32 last_error_code = 0;

} // namespace

uint32 GetLastError() { return last_error_code; }

void SetLastError(uint32 code) { last_error_code = code; }

uint32 last_error() { return last_error_code; }

uint32 FormatMessageA(uint32 code, char * buffer, uint32 size) {
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    return ::FormatMessageA(flags, nullptr, code, 0, buffer, size, nullptr);
}

} // namespace platform
