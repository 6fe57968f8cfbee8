#pragma once

#include "socle/basic/types.h"

namespace platform {

/// Counts of `QueryPerformanceCounter` in one second; false if there is no such counter.
bool QueryPerformanceFrequency(uint64 & units_per_second);
/// A counter that never goes back; false on failure.
bool QueryPerformanceCounter(uint64 & value);

/// A moment in the calendar. Weekdays count from Sunday, 0; months and days from 1.
struct SYSTEMTIME {
    uint16 wYear = 0;
    uint16 wMonth = 0;
    uint16 wDayOfWeek = 0;
    uint16 wDay = 0;
    uint16 wHour = 0;
    uint16 wMinute = 0;
    uint16 wSecond = 0;
    uint16 wMilliseconds = 0;
};

/// A file time counts units of 100 nanoseconds since 1 January 1601, 00:00.
constexpr uint64 file_time_second = 10'000'000;
constexpr uint64 file_time_of_1970 = 11'644'473'600 * file_time_second;

/// The current time, GMT; all zero if the host cannot tell.
void GetSystemTime(SYSTEMTIME & now);
/// False for a time of 2^63 and more.
bool FileTimeToSystemTime(uint64 time, SYSTEMTIME & calendar);
/// False for a field out of range; years are 1601 to 30827. The weekday is not looked at.
bool SystemTimeToFileTime(SYSTEMTIME const & calendar, uint64 & time);

} // namespace platform
