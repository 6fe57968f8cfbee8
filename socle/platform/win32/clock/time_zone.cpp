#include "socle/platform/win32/host/system.h"

namespace platform {

namespace {

constexpr int64 seconds_1601_to_1970 = file_time_of_1970 / file_time_second;

/// The rules of the process's zone in one year.
bool rules_of(uint16 year, ::TIME_ZONE_INFORMATION & rules) {
    return win32::report(::GetTimeZoneInformationForYear(year, nullptr, &rules));
}

bool to_local(SYSTEMTIME const & gmt, ::TIME_ZONE_INFORMATION & rules, SYSTEMTIME & local) {
    ::SYSTEMTIME const from = win32::system_of(gmt);
    ::SYSTEMTIME to;
    if (!rules_of(gmt.wYear, rules) || !win32::report(::SystemTimeToTzSpecificLocalTime(&rules, &from, &to)))
        return false;
    local = win32::calendar_of(to);
    return true;
}

/// A signed number of seconds as units of a file time, modulo 2^64.
uint64 as_units(int64 seconds) { return static_cast<uint64>(seconds) * file_time_second; }

} // namespace

uint32 GetTimeZoneInformation(TIME_ZONE_INFORMATION & zone) {
    ::TIME_ZONE_INFORMATION found;
    DWORD const now = ::GetTimeZoneInformation(&found);
    if (now == TIME_ZONE_ID_INVALID) {
        win32::report(false);
        return now;
    }
    bool const changes = found.StandardDate.wMonth != 0;
    zone.Bias = found.Bias + found.StandardBias;
    zone.DaylightBias = changes ? found.DaylightBias - found.StandardBias : -60;
    return changes ? now : TIME_ZONE_ID_UNKNOWN;
}

bool FileTimeToLocalFileTime(uint64 time, uint64 & local) {
    TIME_ZONE_INFORMATION zone;
    uint32 const now = GetTimeZoneInformation(zone);
    if (now == TIME_ZONE_ID_INVALID)
        return false;
    local = time - as_units(60 * int64{zone.Bias + (now == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : 0)});
    return true;
}

bool LocalFileTimeToFileTime(uint64 local, uint64 & time) {
    uint64 moved = 0;
    if (!FileTimeToLocalFileTime(0, moved))
        return false;
    time = local - moved;
    return true;
}

bool SystemTimeToTzSpecificLocalTime(TIME_ZONE_INFORMATION const &, SYSTEMTIME const & gmt, SYSTEMTIME & local) {
    ::TIME_ZONE_INFORMATION rules;
    return to_local(gmt, rules, local);
}

int64 mktime(std::tm local) {
    // Months first, as they differ in length.
    int64 const months = int64{local.tm_year} * 12 + local.tm_mon + 1900 * 12;
    if (months < 1601 * 12 || months > 30827 * 12)
        return -1;
    SYSTEMTIME calendar{};
    calendar.wYear = static_cast<uint16>(months / 12);
    calendar.wMonth = static_cast<uint16>(months % 12 + 1);
    calendar.wDay = 1;
    uint64 time = 0;
    SystemTimeToFileTime(calendar, time);
    time +=
        as_units(((int64{local.tm_mday} - 1) * 24 + local.tm_hour) * 3600 + int64{local.tm_min} * 60 + local.tm_sec);
    ::TIME_ZONE_INFORMATION rules;
    if (!FileTimeToSystemTime(time, calendar) || !rules_of(calendar.wYear, rules))
        return -1;
    ::SYSTEMTIME const from = win32::system_of(calendar);
    ::SYSTEMTIME gmt;
    if (!win32::report(::TzSpecificLocalTimeToSystemTime(&rules, &from, &gmt))
        || !SystemTimeToFileTime(win32::calendar_of(gmt), time))
        return -1;
    return static_cast<int64>(time / file_time_second) - seconds_1601_to_1970;
}

bool localtime(int64 seconds, std::tm & local) {
    SYSTEMTIME gmt, moved;
    ::TIME_ZONE_INFORMATION rules;
    if (seconds < -seconds_1601_to_1970 || seconds > INT64_MAX / int64{file_time_second} - seconds_1601_to_1970)
        return false;
    uint64 const time = as_units(seconds + seconds_1601_to_1970);
    uint64 local_time = 0, new_year = 0;
    if (!FileTimeToSystemTime(time, gmt) || !to_local(gmt, rules, moved) || !SystemTimeToFileTime(moved, local_time)
        || !SystemTimeToFileTime({moved.wYear, 1, 0, 1}, new_year))
        return false;
    int64 const bias = static_cast<int64>(time - local_time) / int64{60 * file_time_second};
    local = {};
    local.tm_year = moved.wYear - 1900;
    local.tm_mon = moved.wMonth - 1;
    local.tm_mday = moved.wDay;
    local.tm_hour = moved.wHour;
    local.tm_min = moved.wMinute;
    local.tm_sec = moved.wSecond;
    local.tm_wday = moved.wDayOfWeek;
    local.tm_yday = static_cast<int>((local_time - new_year) / (24 * 3600 * file_time_second));
    local.tm_isdst = bias != rules.Bias + rules.StandardBias;
    return true;
}

} // namespace platform
