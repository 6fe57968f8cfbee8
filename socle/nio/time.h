#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <chrono>
#include <ratio>

namespace nio {

/// A point in time that can be set from and read in six numeric formats, and moved between GMT and local time. A plain
/// value, all zero at first. It does not know whether it is GMT or local; `is_local` only reports the last conversion.
class SOCLE_API time {
public:
    /// The 100 nanoseconds that a time is counted in.
    using ticks = std::chrono::duration<int64, std::ratio<1, 10'000'000>>;

    time() = default;
    /// As `set`.
    template <class Duration>
    explicit time(std::chrono::sys_time<Duration> point) {
        set(point);
    }

    /// What a number means.
    enum format_type : int {
        format_file_time = 0,    ///< 100 nanoseconds since 1601, 64 bits
        format_mac_seconds = 1,  ///< seconds since 1904, 32 bits
        format_unix_seconds = 2, ///< seconds since 1970, 32 bits
        format_dos = 3,          ///< see `get_dos`, 32 bits; local time
        format_seconds_2000 = 4, ///< seconds since 2000, 32 bits
        format_mac_fixed = 5,    ///< 1/65536 second since 1904, 64 bits
    };

    /// The time in a format, modulo its width; 0 for any other format. A time before the epoch of a format has no
    /// meaningful number in it. What was set in a Macintosh format comes back exactly in both of them.
    uint64 get(format_type format) const;
    /// Sets the time; of a format of 32 bits only the low 32 count. Any other format changes nothing.
    void set(uint64 value, format_type format);
    /// Sets the time to a point of the system's clock, which counts GMT, cut down to whole ticks.
    template <class Duration>
    void set(std::chrono::sys_time<Duration> point) {
        set(static_cast<uint64>((std::chrono::floor<ticks>(point) - epoch()).count()), format_file_time);
    }
    /// The time, which has to be GMT, as a point of the system's clock.
    std::chrono::sys_time<ticks> sys_time() const { return epoch() + ticks(static_cast<int64>(file_time_)); }

    /// The DOS date in the high 16 bits: years since 1980, month, day, in 7, 4 and 5 bits; the DOS time in the low 16:
    /// hour, minute, seconds / 2, in 5, 6 and 5 bits. Odd seconds are rounded up. The time is taken as GMT, and its
    /// seconds since 1970 modulo 2^32; the words are local time. For a year before 1980 the date word is 0.
    uint32 get_dos() const;
    /// Sets the time from local time; a field out of its range carries into the others.
    void set_dos(uint16 date_word, uint16 time_word);

    /// Converts from GMT to local time. The zone's offset and rules of today count for all dates, also for those when
    /// the zone had others. Daylight saving adds an hour at the dates that have it; within 15 hours of a change that
    /// hour can be wrong. Called twice, it converts twice.
    void to_local();
    /// Converts from local time to GMT in the same way.
    void to_gmt();

    /// Whether `to_local` was called later than `to_gmt`.
    bool is_local() const noexcept { return is_local_; }
    /// The time in `format_file_time`.
    uint64 file_time() const noexcept { return file_time_; }
    /// The time in `format_mac_fixed` if it was set in a Macintosh format, else 0.
    uint64 mac_time() const noexcept { return mac_time_; }

private:
    // Where a file time begins.
    static constexpr std::chrono::sys_time<ticks> epoch() {
        return std::chrono::sys_days(std::chrono::year(1601) / std::chrono::January / 1);
    }

    bool is_local_ = false;
    uint64 file_time_ = 0;
    uint64 mac_time_ = 0;
};

} // namespace nio
