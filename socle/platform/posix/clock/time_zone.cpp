#include "socle/platform/time_zone.h"

#include "socle/platform/posix/clock/clock_seam.h"

#include <algorithm>
#include <optional>

namespace platform {

namespace {

constexpr int64 day = 24 * 60 * 60;

/// Local time minus GMT at a moment, in seconds.
std::optional<int64> offset_at(int64 seconds) {
    std::tm local{};
    if (!localtime(seconds, local))
        return std::nullopt;
    return local.tm_gmtoff;
}

std::optional<int64> now() {
    timespec host{};
    if (posix::read_clock(CLOCK_REALTIME, &host) != 0)
        return std::nullopt;
    return host.tv_sec;
}

std::optional<int64> offset_now() {
    auto const seconds = now();
    return seconds ? offset_at(*seconds) : std::nullopt;
}

/// A signed number of seconds as units of a file time, modulo 2^64.
uint64 as_units(int64 seconds) { return static_cast<uint64>(seconds) * file_time_second; }

} // namespace

uint32 GetTimeZoneInformation(TIME_ZONE_INFORMATION & zone) {
    auto const seconds = now();
    std::tm local{};
    if (!seconds || !localtime(*seconds, local))
        return TIME_ZONE_ID_INVALID;
    int64 const current = local.tm_gmtoff;
    int64 standard = current;
    int64 daylight = current;
    // No stretch of daylight saving, nor one of standard time within it, is as short as a week.
    int64 const new_year = *seconds - local.tm_yday * day;
    for (int64 probe = new_year; probe < new_year + 366 * day; probe += 7 * day) {
        int64 const offset = offset_at(probe).value_or(current);
        standard = std::min(standard, offset);
        daylight = std::max(daylight, offset);
    }
    bool const changes = standard != daylight;
    zone.Bias = static_cast<int>(-standard / 60);
    zone.DaylightBias = changes ? static_cast<int>((standard - daylight) / 60) : -60;
    if (!changes)
        return TIME_ZONE_ID_UNKNOWN;
    return current == standard ? TIME_ZONE_ID_STANDARD : TIME_ZONE_ID_DAYLIGHT;
}

bool FileTimeToLocalFileTime(uint64 time, uint64 & local) {
    auto const offset = offset_now();
    if (!offset)
        return false;
    local = time + as_units(*offset);
    return true;
}

bool LocalFileTimeToFileTime(uint64 local, uint64 & time) {
    auto const offset = offset_now();
    if (!offset)
        return false;
    time = local - as_units(*offset);
    return true;
}

bool SystemTimeToTzSpecificLocalTime(TIME_ZONE_INFORMATION const &, SYSTEMTIME const & gmt, SYSTEMTIME & local) {
    uint64 time = 0;
    if (!SystemTimeToFileTime(gmt, time))
        return false;
    auto const offset = offset_at(static_cast<int64>(time / file_time_second)
                                  - static_cast<int64>(file_time_of_1970 / file_time_second));
    return offset && FileTimeToSystemTime(time + as_units(*offset), local);
}

int64 mktime(std::tm local) { return ::mktime(&local); }

bool localtime(int64 seconds, std::tm & local) {
    // Unlike `localtime`, `localtime_r` need not look whether the process has changed its zone.
    ::tzset();
    time_t const host = seconds;
    return ::localtime_r(&host, &local) != nullptr;
}

} // namespace platform
