// Two-digit years, twelve-hour clocks, and the C library's broken-down time.
#include "quarn/time/time.h"

#include "tests/time/time_text.h"

#include <climits>
#include <ctime>

#include <gtest/gtest.h>

namespace {

using Quarn::TIME;
using Quarn::Time;

int Year2(int year)
{
    return At(year, 1, 1).GetYear2();
}

Time AtHour(int hour)
{
    return At(2024, 3, 5, hour);
}

TEST(Time, GetYear2LeavesTheLastTwoDigits)
{
    EXPECT_EQ(Year2(2024), 24);
    EXPECT_EQ(Year2(2001), 1);
    EXPECT_EQ(Year2(1999), 99);
    EXPECT_EQ(Year2(99), 99);
    EXPECT_EQ(Year2(0), 0);
    EXPECT_EQ(Year2(1), 1);
    EXPECT_EQ(Year2(101), 1);
    EXPECT_EQ(Year2(1001), 1);
    EXPECT_EQ(Year2(65535), 35);
}

TEST(Time, GetYear2OfFullHundredsIsDeliberately100)
{
    EXPECT_EQ(Year2(2000), 100);
    EXPECT_EQ(Year2(1900), 100);
    EXPECT_EQ(Year2(1000), 100);
    EXPECT_EQ(Year2(100), 100);
    EXPECT_EQ(Year2(200), 100);
}

TEST(Time, GetYear2IsTheYearModulo100OrElse100ForEveryYear)
{
    for (int year = 1; year <= 65535; ++year) {
        ASSERT_EQ(Year2(year), year % 100 != 0 ? year % 100 : 100) << year;
    }
}

TEST(Time, GetHour12OfMidnightIsDeliberately0)
{
    EXPECT_EQ(AtHour(0).GetHour12(), 0);
    EXPECT_EQ(AtHour(1).GetHour12(), 1);
    EXPECT_EQ(AtHour(11).GetHour12(), 11);
    EXPECT_EQ(AtHour(12).GetHour12(), 12);
    EXPECT_EQ(AtHour(13).GetHour12(), 1);
    EXPECT_EQ(AtHour(23).GetHour12(), 11);
    EXPECT_EQ(AtHour(31).GetHour12(), 19);
}

TEST(Time, GetAmPmChangesAtNoon)
{
    EXPECT_EQ(AtHour(0).GetAmPm(), Time::AM);
    EXPECT_EQ(AtHour(11).GetAmPm(), Time::AM);
    EXPECT_EQ(AtHour(12).GetAmPm(), Time::PM);
    EXPECT_EQ(AtHour(23).GetAmPm(), Time::PM);
    EXPECT_EQ(AtHour(24).GetAmPm(), Time::PM);
}

TEST(Time, Get_tmFillsAllButTheDayOfTheYear)
{
    std::tm calendar{};
    calendar.tm_yday = 4711;
    calendar.tm_isdst = 1;
    Time const time(2024, 3, 5, 7, 8, 9, 123, 456);
    EXPECT_EQ(time.Get_tm(&calendar), &calendar);
    EXPECT_EQ(calendar.tm_sec, 9);
    EXPECT_EQ(calendar.tm_min, 8);
    EXPECT_EQ(calendar.tm_hour, 7);
    EXPECT_EQ(calendar.tm_mday, 5);
    EXPECT_EQ(calendar.tm_mon, 2);
    EXPECT_EQ(calendar.tm_year, 124);
    EXPECT_EQ(calendar.tm_wday, 2);
    EXPECT_EQ(calendar.tm_yday, 4711);
    EXPECT_EQ(calendar.tm_isdst, -1);
}

TEST(Time, Get_tmOfNoTimeIsTheMonthBeforeJanuary)
{
    std::tm calendar{};
    Time::NoTime.Get_tm(&calendar);
    EXPECT_EQ(calendar.tm_mon, -1);
    EXPECT_EQ(calendar.tm_mday, 0);
    EXPECT_EQ(calendar.tm_year, -1900);
}

TEST(Time, Get_tmOfNothingDoesNothing)
{
    EXPECT_EQ(Time().Get_tm(nullptr), nullptr);
}

TEST(Time, WeekdaysOfKnownDates)
{
    struct Row
    {
        int year, month, date, weekday;
    };
    for (Row const& row :
         {Row{2000, 1, 1, 6}, Row{1970, 1, 1, 4}, Row{1582, 10, 15, 5}, Row{1582, 10, 4, 4},
          Row{2024, 2, 29, 4}, Row{1858, 11, 17, 3}, Row{9999, 12, 31, 5}, Row{0, 1, 1, 4}}) {
        std::tm calendar{};
        At(row.year, row.month, row.date, 23, 59, 59).Get_tm(&calendar);
        EXPECT_EQ(calendar.tm_wday, row.weekday) << row.year << '-' << row.month << '-' << row.date;
    }
}

TEST(Time, SetgmTakesTheRecordAndKeepsWhatItLacks)
{
    std::tm calendar{};
    calendar.tm_year = 124;
    calendar.tm_mon = 2;
    calendar.tm_mday = 5;
    calendar.tm_hour = 7;
    calendar.tm_min = 8;
    calendar.tm_sec = 9;
    Time time = TIME{3, (123U << 10U) | 456U};
    time.Setgm(&calendar);
    EXPECT_EQ(Words(time), "0x07E8329F 0x2091EDC8");
    EXPECT_EQ(Text(Time(&calendar)), "2024-03-05 07:08:09.000.000");
    EXPECT_EQ(Words(Time(&calendar)), "0x07E8329C 0x20900000");
}

TEST(Time, SetgmOfNothingDoesNothing)
{
    Time time(2024, 3, 5, 7, 8, 9, 123, 456);
    time.Setgm(nullptr);
    EXPECT_EQ(Text(time), "2024-03-05 07:08:09.123.456");
    EXPECT_EQ(Time(static_cast<std::tm const*>(nullptr)), Time::NoTime);
}

TEST(Time, SetgmStoresTheLowBitsOfValuesOutOfRange)
{
    std::tm calendar{};
    calendar.tm_year = INT_MAX;
    calendar.tm_mon = INT_MAX;
    calendar.tm_mday = INT_MIN;
    calendar.tm_hour = INT_MIN;
    calendar.tm_min = INT_MIN;
    calendar.tm_sec = 60; // a leap second
    Time const time(&calendar);
    EXPECT_EQ(Text(time), "1899-00-00 00:00:60.000.000");
}

TEST(Time, DoesNothingWhereDocumentedToDoNothing)
{
    Time time(2024, 3, 5, 7, 8, 9, 123, 456);
    time.SetLocal("2000-01-01");
    time.SetLocal(static_cast<char const*>(nullptr));
    time.DebugShowTime();
    EXPECT_EQ(Text(time), "2024-03-05 07:08:09.123.456");
}

} // namespace
