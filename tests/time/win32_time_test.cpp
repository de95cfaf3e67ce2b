// Times from and to the system's broken-down time.
#include "quarn/platform/win32_api.h"
#include "quarn/time/win32_time.h"

#include "tests/time/time_text.h"

#include <ctime>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Win32Time = Win32Quarn::Time;

static_assert(sizeof(Win32Time) == 8 && std::is_base_of_v<Quarn::Time, Win32Time>);
static_assert(sizeof(SYSTEMTIME) == 16);

constexpr SYSTEMTIME systemTime = {2024, 3, 6, 5, 7, 8, 9, 123};

TEST(Win32Time, TakesAllButTheDayOfTheWeek)
{
    EXPECT_EQ(Text(Win32Time(systemTime)), "2024-03-05 07:08:09.123.000");
    Win32Time time;
    EXPECT_EQ(&time.Set(systemTime), &time);
    EXPECT_EQ(Text(time), "2024-03-05 07:08:09.123.000");
    Win32Time other;
    EXPECT_EQ(&(other = systemTime), &other);
    EXPECT_EQ(other, time);
}

TEST(Win32Time, SetsAnyTimeAndKeepsItsReservedBits)
{
    Quarn::Time time = Quarn::TIME{3, 999};
    Win32Time::Set(systemTime, time);
    EXPECT_EQ(Words(time), "0x07E8329F 0x2091EC00");
}

TEST(Win32Time, FillsAllButTheDayOfTheWeek)
{
    SYSTEMTIME filled = {1, 1, 77, 1, 1, 1, 1, 1};
    Win32Time::Get(filled, Quarn::Time(2024, 3, 5, 7, 8, 9, 123, 456));
    EXPECT_EQ(filled.wYear, 2024);
    EXPECT_EQ(filled.wMonth, 3);
    EXPECT_EQ(filled.wDayOfWeek, 77);
    EXPECT_EQ(filled.wDay, 5);
    EXPECT_EQ(filled.wHour, 7);
    EXPECT_EQ(filled.wMinute, 8);
    EXPECT_EQ(filled.wSecond, 9);
    EXPECT_EQ(filled.wMilliseconds, 123);
}

TEST(Win32Time, ReturnsItsSystemTime)
{
    Win32Time const time(systemTime);
    SYSTEMTIME const returned = time.GetSYSTEMTIME();
    SYSTEMTIME const converted = time;
    EXPECT_EQ(returned.wYear, 2024);
    EXPECT_EQ(returned.wDayOfWeek, 0);
    EXPECT_EQ(returned.wMilliseconds, 123);
    EXPECT_EQ(converted.wMonth, 3);
    EXPECT_EQ(converted.wSecond, 9);
}

TEST(Win32Time, IsMadeAsAnyTimeIs)
{
    EXPECT_EQ(Win32Time(), Quarn::Time::MinTime);
    EXPECT_EQ(Win32Time(Quarn::Time::MaxTime), Quarn::Time::MaxTime);
    EXPECT_EQ(Text(Win32Time(86400, true)), "1970-01-02 00:00:00.000.000");
    EXPECT_EQ(Win32Time(86400, false), Quarn::Time(86400, false));
    std::tm calendar{};
    calendar.tm_year = 100;
    calendar.tm_mday = 1;
    EXPECT_EQ(Text(Win32Time(&calendar)), "2000-01-01 00:00:00.000.000");
    Win32Time time;
    time.Set(2024, 3, 5, 7, 8, 9, 123, 456);
    EXPECT_EQ(Text(time), "2024-03-05 07:08:09.123.456");
}

TEST(Win32Time, WordsTooWideForTheirFieldsSpillOrLoseTheirUpperBits)
{
    SYSTEMTIME const wide = {65535, 0x101, 0, 0x102, 0x103, 0x104, 0x105, 1024 + 5};
    EXPECT_EQ(Text(Win32Time(wide)), "65535-01-02 03:04:05.005.000");
    SYSTEMTIME const spilling = {2024, 1, 0, 1, 1, 1, 0, 1024 + 5};
    EXPECT_EQ(Text(Win32Time(spilling)), "2024-01-01 01:01:01.005.000");
}

} // namespace
