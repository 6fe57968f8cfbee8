#include "socle/platform/clock.h"

#include "socle/platform/posix/clock/clock_seam.h"

namespace platform {

namespace posix {
constinit clock_reader read_clock = ::clock_gettime;
} // namespace posix

namespace {

constexpr uint64 nanoseconds_per_second = 1'000'000'000;

} // namespace

bool QueryPerformanceFrequency(uint64 & units_per_second) {
    uint64 value = 0;
    if (!QueryPerformanceCounter(value))
        return false;
    units_per_second = nanoseconds_per_second;
    return true;
}

bool QueryPerformanceCounter(uint64 & value) {
    timespec now{};
    if (posix::read_clock(CLOCK_MONOTONIC, &now) != 0)
        return false;
    value = static_cast<uint64>(now.tv_sec) * nanoseconds_per_second + static_cast<uint64>(now.tv_nsec);
    return true;
}

void GetSystemTime(SYSTEMTIME & now) {
    timespec host{};
    now = {};
    if (posix::read_clock(CLOCK_REALTIME, &host) == 0)
        FileTimeToSystemTime(file_time_of_1970 + static_cast<uint64>(host.tv_sec) * file_time_second
                                 + static_cast<uint64>(host.tv_nsec) / 100,
                             now);
}

} // namespace platform
