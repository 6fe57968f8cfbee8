#include "socle/algorithm/random.h"
#include "socle/any/time.h"
#include "socle/nio/found_at_load_internal.h"
#include "socle/nio/timer.h"
#include "socle/platform/posix/clock/clock_seam.h"
#include "socle/un/exception.h"
#include "socle/un/timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <optional>

namespace {

using nio::time;
using std::chrono::sys_days;

constexpr uint64 second = 10'000'000;
constexpr uint64 epoch_1970 = 116'444'736'000'000'000;
constexpr int64 hour = 3600;

uint64 from_unix(int64 seconds) { return epoch_1970 + static_cast<uint64>(seconds) * second; }

int64 midnight(int year, unsigned month, unsigned day) {
    std::chrono::year_month_day const date(std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{day});
    return sys_days(date).time_since_epoch() / std::chrono::seconds(1);
}

/// The host's clocks under a test's control, as long as this lives.
class host_clocks {
public:
    host_clocks() {
        counter = tick = 0;
        platform::posix::read_clock = read;
    }
    ~host_clocks() {
        broken = false;
        platform::posix::read_clock = ::clock_gettime;
    }

    inline static int64 date = 0;
    /// Each reading of the counter adds `tick`.
    inline static int64 counter = 0;
    inline static int64 tick = 0;
    inline static bool broken = false;

private:
    static int read(clockid_t clock, timespec * now) {
        if (broken)
            return -1;
        if (clock == CLOCK_REALTIME) {
            *now = {date, 0};
        } else {
            *now = {static_cast<time_t>(counter / 1'000'000'000), static_cast<long>(counter % 1'000'000'000)};
            counter += tick;
        }
        return 0;
    }
};

/// The process in another zone, as long as this lives; the library as if it had been loaded in it on 1 July 2024.
class in_zone {
public:
    explicit in_zone(char const * name) {
        if (char const * const old = std::getenv("TZ"))
            old_ = old;
        setenv("TZ", name, 1);
        host_clocks::date = midnight(2024, 7, 1);
        platform::GetTimeZoneInformation(nio::zone_at_load);
    }
    ~in_zone() {
        if (old_)
            setenv("TZ", old_->c_str(), 1);
        else
            unsetenv("TZ");
        platform::GetTimeZoneInformation(nio::zone_at_load);
    }

private:
    std::optional<std::string> old_;
    host_clocks clocks_;
};

int64 host_offset(int64 seconds) { return std::localtime(&seconds)->tm_gmtoff; }

/// What `to_local` adds to, or `to_gmt` takes from, a number of seconds since 1970.
int64 local_minus_gmt(int64 seconds) {
    any::time value(from_unix(seconds), time::format_file_time);
    value.to_local();
    return static_cast<int64>(value.file_time() - from_unix(seconds)) / static_cast<int64>(second);
}

TEST(time, worked_values_of_the_first_day_of_2001) {
    in_zone const utc("UTC");
    struct row {
        time::format_type format;
        uint64 number;
    };
    row const rows[] = {{time::format_file_time, 126227808000000000}, {time::format_mac_seconds, 3061152000},
                        {time::format_unix_seconds, 978307200},       {time::format_dos, 0x2A210000},
                        {time::format_seconds_2000, 31622400},        {time::format_mac_fixed, 200615657472000},
                        {static_cast<time::format_type>(6), 0},       {static_cast<time::format_type>(-1), 0}};
    for (auto const & from : rows) {
        if (from.number == 0)
            continue;
        any::time const value(from.number, from.format);
        for (auto const & [format, number] : rows)
            EXPECT_EQ(value.get(format), number) << from.format << " as " << format;
        bool const mac = from.format == time::format_mac_seconds || from.format == time::format_mac_fixed;
        EXPECT_EQ(value.mac_time(), mac ? rows[5].number : 0) << from.format;
        EXPECT_FALSE(value.is_local());
    }
}

TEST(time, takes_every_dos_word) {
    in_zone const utc("UTC");
    for (uint32 word = 0; word <= 0xFFFF; ++word) {
        time value;
        value.set_dos(static_cast<uint16>(word), 0);
        auto const month = std::chrono::year(1980) / 1 + std::chrono::months(static_cast<int>(word >> 9) * 12)
                           + std::chrono::months(static_cast<int>(word >> 5 & 0xF) - 1);
        auto const day = sys_days(month / 1) + std::chrono::days(static_cast<int>(word & 0x1F) - 1);
        ASSERT_EQ(value.file_time(), from_unix(day.time_since_epoch() / std::chrono::seconds(1))) << word;
        std::chrono::year_month_day const date(day);
        bool const proper = static_cast<unsigned>(date.day()) == (word & 0x1F)
                            && static_cast<unsigned>(date.month()) == (word >> 5 & 0xF);
        if (proper && word < (126 << 9 | 2 << 5))
            ASSERT_EQ(value.get_dos(), word << 16);

        value.set_dos(0x0021, static_cast<uint16>(word));
        int64 const seconds = (word >> 11) * hour + (word >> 5 & 0x3F) * 60 + (word & 0x1F) * 2;
        ASSERT_EQ(value.file_time(), from_unix(midnight(1980, 1, 1) + seconds)) << word;
    }
}

TEST(time, dos_time_is_local_and_even) {
    in_zone const utc("UTC");
    struct row {
        int64 seconds;
        uint32 dos;
    };
    for (auto const & [seconds, dos] : {
             row{midnight(2001, 1, 1) + 12 * hour + 1, 0x2A216001},
             row{midnight(2001, 12, 31) + 24 * hour - 1, 0x2C210000},
             row{midnight(1980, 1, 1) - 2, 23u << 11 | 59 << 5 | 29},
             row{midnight(1980, 1, 1) - 1, 0x00210000},
             // The last even second of 32 bits, and what wraps around to 1970.
             row{0xFFFF'FFFE, (126u << 9 | 2 << 5 | 7) << 16 | 6 << 11 | 28 << 5 | 7},
             row{0xFFFF'FFFF, 0},
             row{midnight(2107, 1, 1), 17u << 11 | 31 << 5 | 22},
         })
        EXPECT_EQ(any::time(from_unix(seconds), time::format_file_time).get_dos(), dos) << seconds;
    in_zone const new_york("America/New_York");
    time value;
    value.set(0x2AE1'6000, time::format_dos);
    EXPECT_EQ(value.get(time::format_unix_seconds), 994003200u) << "1 July 2001, 12:00 with daylight saving";
    EXPECT_EQ(value.get_dos(), 0x2AE1'6000u);
}

/// The smallest offset of a year from its first to its last moment.
int64 standard_offset(int year) {
    int64 offset = host_offset(midnight(year, 1, 1));
    for (int64 probe = midnight(year, 1, 1); probe < midnight(year + 1, 1, 1); probe += 5 * 24 * hour)
        offset = std::min(offset, host_offset(probe));
    return offset;
}

/// In a zone whose standard time is so many seconds ahead of GMT.
void agrees_with_the_host(char const * name, int64 standard) {
    SCOPED_TRACE(name);
    in_zone const zone(name);
    if (standard_offset(2024) != standard)
        GTEST_SKIP() << "the host has no data of this zone";
    EXPECT_EQ(nio::zone_at_load.Bias, -standard / 60);
    EXPECT_EQ(nio::zone_at_load.DaylightBias, -60);
    for (int64 const today : {midnight(2024, 1, 15), midnight(2024, 7, 15)}) {
        host_clocks::date = today;
        int compared = 0;
        for (int year = 1970; year <= 2040; ++year) {
            if (standard_offset(year) != standard)
                continue;
            for (int64 seconds = midnight(year, 1, 1); seconds < midnight(year + 1, 1, 1); seconds += 37 * hour + 1) {
                int64 const offset = host_offset(seconds);
                if (host_offset(seconds - 15 * hour) != offset || host_offset(seconds + 15 * hour) != offset)
                    continue;
                ++compared;
                any::time value(from_unix(seconds), time::format_file_time);
                value.to_local();
                ASSERT_EQ(value.file_time(), from_unix(seconds + offset)) << seconds;
                value.to_gmt();
                ASSERT_EQ(value.file_time(), from_unix(seconds)) << seconds;
            }
        }
        EXPECT_GT(compared, 14'000);
    }
}

TEST(time, agrees_with_the_host_away_from_a_change) {
    agrees_with_the_host("Europe/Berlin", hour);
    agrees_with_the_host("Europe/Dublin", 0);
    agrees_with_the_host("America/New_York", -5 * hour);
    agrees_with_the_host("Australia/Sydney", 10 * hour);
    agrees_with_the_host("Asia/Kolkata", 5 * hour + hour / 2);
    agrees_with_the_host("UTC", 0);
}

TEST(time, near_a_change_the_hour_follows_the_local_time_taken_for_gmt) {
    struct row {
        char const * zone;
        int64 today;
        /// GMT, of the last second with the old offset as `to_local` has it.
        int64 last;
        int64 before;
        int64 after;
    };
    int64 const winter = midnight(2024, 1, 15);
    int64 const summer = midnight(2024, 7, 15);
    for (auto const & [name, today, last, before, after] : {
             row{"Europe/Berlin", winter, midnight(2024, 3, 31) - 1, 1, 2},
             row{"Europe/Berlin", summer, midnight(2024, 3, 30) + 23 * hour - 1, 1, 2},
             row{"Europe/Berlin", winter, midnight(2024, 10, 27) - 1, 2, 1},
             row{"Europe/Berlin", summer, midnight(2024, 10, 26) + 23 * hour - 1, 2, 1},
             row{"America/New_York", winter, midnight(2024, 3, 10) + 12 * hour - 1, -5, -4},
             row{"America/New_York", summer, midnight(2024, 3, 10) + 11 * hour - 1, -5, -4},
             row{"America/New_York", winter, midnight(2024, 11, 3) + 11 * hour - 1, -4, -5},
         }) {
        in_zone const zone(name);
        host_clocks::date = today;
        EXPECT_EQ(local_minus_gmt(last), before * hour) << name << ' ' << last;
        EXPECT_EQ(local_minus_gmt(last + 1), after * hour) << name << ' ' << last;
    }
    in_zone const berlin("Europe/Berlin");
    host_clocks::date = summer;
    any::time value(from_unix(midnight(2024, 3, 31) + 3 * hour - 1), time::format_file_time);
    value.to_gmt();
    EXPECT_EQ(value.file_time(), from_unix(midnight(2024, 3, 31) + 2 * hour - 1));
    value.set(from_unix(midnight(2024, 3, 31) + 3 * hour), time::format_file_time);
    value.to_gmt();
    EXPECT_EQ(value.file_time(), from_unix(midnight(2024, 3, 31) + hour));
}

TEST(time, moves_the_macintosh_value_by_standard_time) {
    in_zone const new_york("America/New_York");
    any::time value(3061152000, time::format_mac_seconds);
    value.to_local();
    EXPECT_TRUE(value.is_local());
    EXPECT_EQ(value.get(time::format_mac_seconds), 3061152000u - 5 * hour);
    EXPECT_EQ(value.get(time::format_unix_seconds), 978307200u - 5 * hour);
    value.to_local();
    EXPECT_EQ(value.get(time::format_mac_seconds), 3061152000u - 10 * hour);
    value.to_gmt();
    value.to_gmt();
    EXPECT_FALSE(value.is_local());
    EXPECT_EQ(value.mac_time(), uint64{3061152000} << 16);
    EXPECT_EQ(value.get(time::format_unix_seconds), 978307200u);

    any::time july((uint64{2082844800} + 993945600) << 16, time::format_mac_fixed);
    july.to_local();
    EXPECT_EQ(july.get(time::format_unix_seconds), 993945600u - 4 * hour);
    EXPECT_EQ(july.get(time::format_mac_seconds), 2082844800u + 993945600 - 5 * hour);

    host_clocks::broken = true;
    any::time unmoved(3061152000, time::format_mac_seconds);
    unmoved.to_local();
    EXPECT_EQ(unmoved.get(time::format_unix_seconds), 978307200u);
    EXPECT_EQ(unmoved.get(time::format_mac_seconds), 3061152000u);
}

TEST(timer, sums_up_the_stretches_in_which_it_runs) {
    host_clocks const clocks;
    host_clocks::counter = 1000;
    un::timer timer, stopped(false);
    EXPECT_EQ(timer.units(), 0u);
    constexpr uint64 unasked = all_ones; // as asking ends a stretch
    struct {
        int64 wait;
        void (*then)(un::timer &);
        uint64 units;
    } const table[] = {
        {50, [](auto & t) { t.start(); }, 50}, // a running timer goes on
        {7, [](auto & t) { t.stop(); }, unasked},
        {1000, [](auto & t) { t.stop(); }, 57},
        {0, [](auto & t) { t.start(); }, unasked},
        {3, [](auto & t) { t.stop(); }, 60},
        {0, [](auto & t) { t.reset(); }, 0},
        {0, [](auto & t) { t.start(); }, unasked},
        {20, [](auto & t) { t.reset(); }, unasked}, // leaves the stretch that runs
        {5, [](auto &) {}, 25},
        {100, [](auto & t) { t.mark(); }, 25}, // throws the stretch away
    };
    for (auto const & [wait, then, units] : table) {
        host_clocks::counter += wait;
        then(timer);
        if (units != unasked)
            EXPECT_EQ(timer.units(), units) << host_clocks::counter;
    }
    host_clocks::counter += 3'999'999;
    un::timer copy = timer;
    EXPECT_EQ(copy.ms(), 4u);
    EXPECT_EQ(un::timer::resolution(), nio::timer::resolution());
    EXPECT_EQ(stopped.units() + stopped.ms(), 0u);
}

TEST(timer, leaves_out_the_time_between_its_two_readings) {
    host_clocks const clocks;
    un::timer timer;
    host_clocks::tick = 10;
    EXPECT_EQ(timer.units(), 0u);
    EXPECT_EQ(timer.units(), 10u);
}

TEST(timer_source, takes_the_low_bits_of_the_counter) {
    host_clocks const clocks;
    host_clocks::counter = 0x7FED'CBA9'8765'4321;
    EXPECT_EQ(algorithm::random::timer_source().bits(32), 0x8765'4321u);
    EXPECT_EQ(algorithm::random::timer_source().bits(9), 0x121u);
    EXPECT_EQ(algorithm::random::java_generator().state(), 0x8765'4321u);
}

TEST(timer, reports_a_counter_that_fails) {
    host_clocks const clocks;
    un::timer timer;
    host_clocks::counter += 9;
    host_clocks::broken = true;
    for (auto const & use : std::vector<void (*)(un::timer &)>{
             [](un::timer &) { un::timer::absolute(); }, [](un::timer & t) { t.stop(); },
             [](un::timer & t) { t.mark(); }, [](un::timer & t) { t.units(); }, [](un::timer & t) { t.ms(); },
             [](un::timer &) { un::timer made; }, [](un::timer &) { algorithm::random::java_generator made; }}) {
        try {
            use(timer);
            ADD_FAILURE();
        } catch (un::exception const & e) {
            EXPECT_EQ(e.message(), "cannot query the timer");
            EXPECT_EQ(e.origin(), "un");
        }
    }
    EXPECT_EQ(nio::timer::absolute(), 0u);
    host_clocks::broken = false;
    EXPECT_EQ(timer.units(), 9u) << "still running, with its stretch";
}

} // namespace
