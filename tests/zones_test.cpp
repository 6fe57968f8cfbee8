#include "socle/any/time.h"
#include "socle/platform/time_zone.h"

#include <gtest/gtest.h>

/// Local times in the zone in which the tests run.
namespace {

constexpr uint64 second = platform::file_time_second;

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
        uint64 const gmt = platform::file_time_of_1970 + seconds * second;
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
