#include "socle/nio/time.h"

#include "socle/nio/found_at_load_internal.h"

namespace nio {

namespace {

constexpr uint64 second = platform::file_time_second;
constexpr uint64 hour = 3600 * second;

// In seconds since 1601.
constexpr uint64 year_1904 = 9'561'628'800;
constexpr uint64 year_1970 = platform::file_time_of_1970 / second;
constexpr uint64 year_2000 = 12'591'158'400;

/// 1/65536 second in units of a file time; cut off, as these times are converted between two systems in whole units.
constexpr uint64 mac_fraction = 152;

constexpr uint32 first_dos_time = 0x00210000;

constexpr uint64 low_32_bits(uint64 value) { return static_cast<uint32>(value); }

uint64 seconds_since(uint64 epoch, uint64 file_time) { return (file_time - epoch * second) / second; }

bool is_daylight(uint64 time) {
    platform::SYSTEMTIME calendar;
    platform::SYSTEMTIME local;
    if (!platform::FileTimeToSystemTime(time, calendar)
        || !platform::SystemTimeToTzSpecificLocalTime(zone_at_load, calendar, local))
        return false;
    uint64 gmt_time = 0;
    uint64 local_time = 0;
    platform::SystemTimeToFileTime(calendar, gmt_time);
    platform::SystemTimeToFileTime(local, local_time);
    int64 const minutes = static_cast<int64>(gmt_time - local_time) / static_cast<int64>(60 * second);
    return minutes == zone_at_load.Bias + zone_at_load.DaylightBias;
}

/// What daylight saving adds at `time` compared with now, modulo 2^64.
uint64 daylight_difference(uint64 time) {
    platform::SYSTEMTIME calendar;
    uint64 now = 0;
    platform::GetSystemTime(calendar);
    platform::SystemTimeToFileTime(calendar, now);
    return (is_daylight(time) ? hour : 0) - (is_daylight(now) ? hour : 0);
}

/// Local time minus GMT now, daylight saving left out, in 1/65536 second modulo 2^64.
uint64 mac_offset() {
    platform::TIME_ZONE_INFORMATION zone;
    if (platform::GetTimeZoneInformation(zone) == platform::TIME_ZONE_ID_INVALID)
        return 0;
    return static_cast<uint64>(int64{-60} * zone.Bias) * 65536;
}

} // namespace

uint64 time::get(format_type format) const {
    switch (format) {
    case format_file_time: return file_time_;
    case format_mac_seconds:
        return low_32_bits(mac_time_ != 0 ? mac_time_ >> 16 : seconds_since(year_1904, file_time_));
    case format_unix_seconds: return low_32_bits(seconds_since(year_1970, file_time_));
    case format_dos: return get_dos();
    case format_seconds_2000: return low_32_bits(seconds_since(year_2000, file_time_));
    case format_mac_fixed: {
        if (mac_time_ != 0)
            return mac_time_;
        uint64 const units = file_time_ - year_1904 * second;
        return units / second * 65536 + units % second / mac_fraction;
    }
    }
    return 0;
}

void time::set(uint64 value, format_type format) {
    switch (format) {
    case format_file_time:
        file_time_ = value;
        mac_time_ = 0;
        break;
    case format_mac_seconds:
        file_time_ = (low_32_bits(value) + year_1904) * second;
        mac_time_ = low_32_bits(value) << 16;
        break;
    case format_unix_seconds:
        file_time_ = (low_32_bits(value) + year_1970) * second;
        mac_time_ = 0;
        break;
    case format_dos: set_dos(static_cast<uint16>(value >> 16), static_cast<uint16>(value)); break;
    case format_seconds_2000:
        file_time_ = (low_32_bits(value) + year_2000) * second;
        mac_time_ = 0;
        break;
    case format_mac_fixed:
        file_time_ = ((value >> 16) + year_1904) * second + (value & 0xFFFF) * mac_fraction;
        mac_time_ = value;
        break;
    }
}

uint32 time::get_dos() const {
    uint64 seconds = seconds_since(year_1970, file_time_);
    seconds += seconds % 2;
    std::tm local{};
    if (!platform::localtime(static_cast<int64>(low_32_bits(seconds)), local))
        return first_dos_time;
    auto const time_word = static_cast<uint32>(local.tm_hour << 11 | local.tm_min << 5 | local.tm_sec / 2);
    if (local.tm_year < 80)
        return time_word;
    auto const date_word = static_cast<uint32>((local.tm_year - 80) << 9 | (local.tm_mon + 1) << 5 | local.tm_mday);
    return date_word << 16 | time_word;
}

void time::set_dos(uint16 date_word, uint16 time_word) {
    std::tm local{};
    local.tm_year = 80 + (date_word >> 9);
    local.tm_mon = (date_word >> 5 & 0xF) - 1;
    local.tm_mday = date_word & 0x1F;
    local.tm_hour = time_word >> 11;
    local.tm_min = time_word >> 5 & 0x3F;
    local.tm_sec = (time_word & 0x1F) * 2;
    local.tm_isdst = -1;
    file_time_ = (static_cast<uint64>(platform::mktime(local)) + year_1970) * second;
    mac_time_ = 0;
}

void time::to_local() {
    platform::FileTimeToLocalFileTime(file_time_, file_time_);
    file_time_ += daylight_difference(file_time_);
    if (mac_time_ != 0)
        mac_time_ += mac_offset();
    is_local_ = true;
}

void time::to_gmt() {
    platform::LocalFileTimeToFileTime(file_time_, file_time_);
    file_time_ -= daylight_difference(file_time_);
    if (mac_time_ != 0)
        mac_time_ -= mac_offset();
    is_local_ = false;
}

} // namespace nio
