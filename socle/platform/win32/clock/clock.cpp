#include "socle/platform/win32/host/system.h"

namespace platform {

bool QueryPerformanceFrequency(uint64 & units_per_second) {
    LARGE_INTEGER value;
    bool const there = ::QueryPerformanceFrequency(&value);
    if (there)
        units_per_second = static_cast<uint64>(value.QuadPart);
    return there;
}

bool QueryPerformanceCounter(uint64 & value) {
    LARGE_INTEGER counter;
    bool const there = ::QueryPerformanceCounter(&counter);
    if (there)
        value = static_cast<uint64>(counter.QuadPart);
    return there;
}

void GetSystemTime(SYSTEMTIME & now) {
    ::SYSTEMTIME system;
    ::GetSystemTime(&system);
    now = win32::calendar_of(system);
}

} // namespace platform
