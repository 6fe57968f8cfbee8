#pragma once

#include "socle/platform/clock.h"

#include <ctime>

namespace platform {

/// Minutes to add to local time for GMT: `Bias`, and on top of it `DaylightBias` (below 0) while daylight saving holds.
/// `DaylightBias` is an hour where the year has none, so that no time is mistaken for one of daylight saving.
struct TIME_ZONE_INFORMATION {
    int Bias = 0;
    int DaylightBias = 0;
};

constexpr uint32 TIME_ZONE_ID_UNKNOWN = 0;
constexpr uint32 TIME_ZONE_ID_STANDARD = 1;
constexpr uint32 TIME_ZONE_ID_DAYLIGHT = 2;
constexpr uint32 TIME_ZONE_ID_INVALID = 0xFFFFFFFF;

/// The process's zone as it is in this year, and what holds now: standard time, daylight saving, unknown if the year
/// has no change, or invalid, which leaves `zone` as it was.
uint32 GetTimeZoneInformation(TIME_ZONE_INFORMATION & zone);

/// Between GMT and local time by the bias that holds now, whatever the date; modulo 2^64. False leaves the result as it
/// was.
bool FileTimeToLocalFileTime(uint64 time, uint64 & local);
bool LocalFileTimeToFileTime(uint64 local, uint64 & time);

/// GMT to local time by the bias that holds in `zone` at that date. Here the host's zone data know it.
bool SystemTimeToTzSpecificLocalTime(TIME_ZONE_INFORMATION const & zone, SYSTEMTIME const & gmt, SYSTEMTIME & local);

/// Seconds since 1970 of a local time, any field of which may be out of its range; -1 if there are none.
int64 mktime(std::tm local);
/// The local time of seconds since 1970; false if there is none.
bool localtime(int64 seconds, std::tm & local);

} // namespace platform
