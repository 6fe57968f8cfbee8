#include "socle/platform/clock.h"
#include "socle/platform/errors.h"

#include <chrono>

namespace platform {

namespace {

using file_time_duration = std::chrono::duration<int64, std::ratio<1, file_time_second>>;
using days = std::chrono::days;

constexpr std::chrono::sys_days first_day = std::chrono::year(1601) / 1 / 1;

} // namespace

bool FileTimeToSystemTime(uint64 time, SYSTEMTIME & calendar) {
    file_time_duration const since_first_day(static_cast<int64>(time));
    if (since_first_day.count() < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    auto const day = std::chrono::floor<days>(since_first_day);
    std::chrono::year_month_day const date(first_day + day);
    std::chrono::hh_mm_ss const clock(std::chrono::floor<std::chrono::milliseconds>(since_first_day - day));
    calendar.wYear = static_cast<uint16>(static_cast<int>(date.year()));
    calendar.wMonth = static_cast<uint16>(static_cast<unsigned>(date.month()));
    calendar.wDayOfWeek = static_cast<uint16>(std::chrono::weekday(first_day + day).c_encoding());
    calendar.wDay = static_cast<uint16>(static_cast<unsigned>(date.day()));
    calendar.wHour = static_cast<uint16>(clock.hours().count());
    calendar.wMinute = static_cast<uint16>(clock.minutes().count());
    calendar.wSecond = static_cast<uint16>(clock.seconds().count());
    calendar.wMilliseconds = static_cast<uint16>(clock.subseconds().count());
    return true;
}

bool SystemTimeToFileTime(SYSTEMTIME const & calendar, uint64 & time) {
    auto const date = std::chrono::year(calendar.wYear) / calendar.wMonth / calendar.wDay;
    if (!date.ok() || calendar.wYear < 1601 || calendar.wYear > 30827 || calendar.wHour > 23 || calendar.wMinute > 59
        || calendar.wSecond > 59 || calendar.wMilliseconds > 999) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    file_time_duration const since_first_day =
        std::chrono::sys_days(date) - first_day + std::chrono::hours(calendar.wHour)
        + std::chrono::minutes(calendar.wMinute) + std::chrono::seconds(calendar.wSecond)
        + std::chrono::milliseconds(calendar.wMilliseconds);
    time = static_cast<uint64>(since_first_day.count());
    return true;
}

} // namespace platform
