#include "socle/any/time.h"
#include "socle/platform/time_zone.h"

#include <gtest/gtest.h>

namespace {

using nio::time;

constexpr uint64 second = platform::file_time_second;
constexpr uint64 epoch_1970 = platform::file_time_of_1970;

TEST(time, sets_and_reads_within_its_widths) {
    struct row {
        time::format_type from;
        uint64 number;
        time::format_type to;
        uint64 result;
    };
    for (auto const & [from, number, to, result] : {
             row{time::format_mac_fixed, 0xB67579008000, time::format_mac_fixed, 0xB67579008000},
             row{time::format_mac_fixed, 0xB67579008000, time::format_file_time, 126227808004980736},
             row{time::format_file_time, 126227808005000000, time::format_mac_fixed, 0xB6757900807E},
             row{time::format_file_time, 126227808009999999, time::format_mac_fixed, 0xB675790100FD},
             row{time::format_mac_seconds, 0xFFFF'FFFF, time::format_mac_seconds, 0xFFFF'FFFF},
             row{time::format_mac_seconds, 1, time::format_mac_seconds, 1},
             row{time::format_mac_seconds, 0, time::format_file_time, 95616288000000000},
             row{time::format_unix_seconds, 0x1234'0000'0000, time::format_file_time, epoch_1970},
             row{time::format_unix_seconds, 0xFFFF'FFFF, time::format_unix_seconds, 0xFFFF'FFFF},
             row{time::format_seconds_2000, 0x1'0000'0007, time::format_file_time, 125911584070000000},
             row{time::format_seconds_2000, 0, time::format_unix_seconds, 946684800},
             row{time::format_mac_fixed, 0x1234567, time::format_mac_seconds, 0x123},
             // Before the epoch the subtraction wraps.
             row{time::format_file_time, 0, time::format_unix_seconds, 0xC9191ACA},
         }) {
        time value;
        value.set(number, from);
        EXPECT_EQ(value.get(to), result) << number << " in " << from << " as " << to;
    }

    time value;
    value.set(0xB67579008000, time::format_mac_fixed);
    value.set(1, static_cast<time::format_type>(6));
    EXPECT_EQ(value.mac_time(), 0xB67579008000u);
    value.set(0, time::format_unix_seconds);
    EXPECT_EQ(value.mac_time(), 0u);
    value.to_local();
    value.set(0, time::format_unix_seconds);
    EXPECT_TRUE(value.is_local());
}

TEST(time, goes_to_the_clock_of_the_standard_library_and_back) {
    using namespace std::chrono;
    struct {
        sys_time<nanoseconds> point;
        uint64 file_time;
    } const table[] = {
        {sys_days(2001y / January / 1), 126'227'808'000'000'000},
        {sys_days(1970y / January / 1) + nanoseconds(199), 116'444'736'000'000'001},
        {sys_days(1970y / January / 1) - nanoseconds(1), 116'444'735'999'999'999},
    };
    for (auto const & [point, file_time] : table) {
        nio::time const time(point);
        EXPECT_EQ(time.file_time(), file_time);
        EXPECT_EQ(time.sys_time(), floor<nio::time::ticks>(point));
        EXPECT_EQ(any::time(time.sys_time()).file_time(), file_time);
    }
    nio::time day;
    day.set(sys_days(1601y / January / 2));
    EXPECT_EQ(day.file_time(), 864'000'000'000u);
}

TEST(calendar, goes_from_1601_as_far_as_its_fields) {
    platform::SYSTEMTIME date;
    EXPECT_FALSE(platform::FileTimeToSystemTime(uint64{1} << 63, date));
    ASSERT_TRUE(platform::FileTimeToSystemTime(126227808004980736 + 86400 * second, date));
    EXPECT_EQ(std::tuple(date.wYear, date.wMonth, date.wDay, date.wDayOfWeek, date.wHour, date.wMilliseconds),
              std::tuple(2001, 1, 2, 2, 0, 498));
    ASSERT_TRUE(platform::FileTimeToSystemTime(~uint64{0} >> 1, date));
    EXPECT_EQ(std::tuple(date.wYear, date.wMonth, date.wDay, date.wHour, date.wMinute, date.wSecond),
              std::tuple(30828, 9, 14, 2, 48, 5));
    uint64 back = 1;
    EXPECT_FALSE(platform::SystemTimeToFileTime(date, back));

    using calendar = platform::SYSTEMTIME;
    for (calendar const & wrong : {calendar{1600, 12, 0, 31, 0, 0, 0, 0}, calendar{2023, 2, 0, 29, 0, 0, 0, 0},
                                   calendar{2023, 0, 0, 1, 0, 0, 0, 0}, calendar{2023, 13, 0, 1, 0, 0, 0, 0},
                                   calendar{2023, 1, 0, 0, 0, 0, 0, 0}, calendar{2023, 1, 0, 1, 24, 0, 0, 0},
                                   calendar{2023, 1, 0, 1, 0, 60, 0, 0}, calendar{2023, 1, 0, 1, 0, 0, 60, 0},
                                   calendar{2023, 1, 0, 1, 0, 0, 0, 1000}, calendar{}})
        EXPECT_FALSE(platform::SystemTimeToFileTime(wrong, back)) << wrong.wYear;
    EXPECT_EQ(back, 1u);
    for (uint64 units = 54'321; units < uint64{1} << 62; units += 12'345'678'910'111'213) {
        ASSERT_TRUE(platform::FileTimeToSystemTime(units, date) && platform::SystemTimeToFileTime(date, back));
        ASSERT_EQ(back, units - units % 10'000);
    }
}

/// Local times in the zone in which the tests run.
class zones : public testing::Test {
protected:
    void SetUp() override {
        platform::TIME_ZONE_INFORMATION zone;
        platform::GetTimeZoneInformation(zone);
        if (zone.Bias != 300 || zone.DaylightBias != -60)
            GTEST_SKIP() << "the process's zone is not that of New York, but has a bias of " << zone.Bias;
    }
};

TEST_F(zones, follow_the_calendar_in_every_year) {
    struct {
        int64 seconds; // since 1970
        int year, month, day, hour;
        bool daylight;
    } const moments[] = {
        {994003200, 2001, 7, 1, 12, true},    {978307200, 2000, 12, 31, 19, false}, {-15638400, 1969, 7, 3, 20, true},
        {-31536000, 1968, 12, 31, 19, false}, {47304000000, 3469, 1, 1, 19, false},
    };
    for (auto const & m : moments) {
        SCOPED_TRACE(m.seconds);
        std::tm local{};
        ASSERT_TRUE(platform::localtime(m.seconds, local));
        EXPECT_EQ(std::tuple(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour),
                  std::tuple(m.year, m.month, m.day, m.hour));
        EXPECT_EQ(local.tm_isdst > 0, m.daylight);
        local.tm_isdst = -1;
        EXPECT_EQ(platform::mktime(local), m.seconds);
        // The same with fields out of their range.
        local.tm_mon -= 24;
        local.tm_year += 2;
        local.tm_hour += 48;
        local.tm_mday -= 2;
        EXPECT_EQ(platform::mktime(local), m.seconds);
    }
}

TEST_F(zones, are_left_and_come_back) {
    for (uint64 const seconds : {978307200u, 994003200u, 1700000000u}) {
        uint64 const gmt = epoch_1970 + seconds * second;
        any::time value(gmt, nio::time::format_file_time);
        value.to_local();
        EXPECT_EQ(gmt - value.file_time(), (seconds == 994003200 ? 4 : 5) * 3600 * second);
        value.to_gmt();
        EXPECT_EQ(value.file_time(), gmt);
        any::time dos(value.get_dos(), nio::time::format_dos);
        EXPECT_EQ(dos.file_time(), gmt);
    }
}

} // namespace
