// The system's clock, file times, and the runtime library's seconds, as the library uses them.
#include "quarn/platform/win32_api.h"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>

#include <gtest/gtest.h>

namespace {

std::uint64_t Steps(FILETIME const& time)
{
    return std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime;
}

FILETIME FromSteps(std::uint64_t steps)
{
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32U)};
}

// "2024-03-05 07:08:09.123 (2)"
std::string Text(SYSTEMTIME const& time)
{
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u (%u)", unsigned{time.wYear},
                  unsigned{time.wMonth}, unsigned{time.wDay}, unsigned{time.wHour}, unsigned{time.wMinute},
                  unsigned{time.wSecond}, unsigned{time.wMilliseconds}, unsigned{time.wDayOfWeek});
    return text;
}

struct Known
{
    SYSTEMTIME time;
    std::uint64_t steps;
};

constexpr Known known[] = {
    {{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
    {{1601, 1, 1, 1, 0, 0, 0, 1}, 10000},
    {{1970, 1, 4, 1, 0, 0, 0, 0}, 116444736000000000},
    {{2000, 2, 2, 29, 23, 59, 59, 999}, 125963423999990000},
    {{2015, 3, 0, 29, 1, 0, 0, 0}, 130720644000000000},
    {{30827, 12, 5, 31, 23, 59, 59, 999}, 9223149887999990000},
};

TEST(FileTime, OfKnownDates)
{
    for (Known const& row : known) {
        SCOPED_TRACE(Text(row.time));
        FILETIME fileTime{};
        EXPECT_EQ(::SystemTimeToFileTime(&row.time, &fileTime), TRUE);
        EXPECT_EQ(Steps(fileTime), row.steps);
        SYSTEMTIME back{};
        EXPECT_EQ(::FileTimeToSystemTime(&fileTime, &back), TRUE);
        EXPECT_EQ(Text(back), Text(row.time));
    }
}

TEST(FileTime, DoesNotReadTheDayOfTheWeek)
{
    SYSTEMTIME time = known[2].time;
    time.wDayOfWeek = 77;
    FILETIME fileTime{};
    EXPECT_EQ(::SystemTimeToFileTime(&time, &fileTime), TRUE);
    EXPECT_EQ(Steps(fileTime), known[2].steps);
}

TEST(FileTime, OfNoDateIsRefused)
{
    for (SYSTEMTIME const& time : {
             SYSTEMTIME{1600, 12, 0, 31, 23, 59, 59, 999},
#if !defined(_WIN32)
                 // Not every Windows refuses these two.
                 SYSTEMTIME{30828, 1, 0, 1, 0, 0, 0, 0}, SYSTEMTIME{2015, 2, 0, 29, 0, 0, 0, 0},
#endif
                 SYSTEMTIME{2015, 0, 0, 1, 0, 0, 0, 0}, SYSTEMTIME{2015, 13, 0, 1, 0, 0, 0, 0},
                 SYSTEMTIME{2015, 1, 0, 0, 0, 0, 0, 0}, SYSTEMTIME{2015, 1, 0, 32, 0, 0, 0, 0},
                 SYSTEMTIME{2015, 2, 0, 30, 0, 0, 0, 0}, SYSTEMTIME{2015, 4, 0, 31, 0, 0, 0, 0},
                 SYSTEMTIME{2015, 1, 0, 1, 24, 0, 0, 0}, SYSTEMTIME{2015, 1, 0, 1, 0, 60, 0, 0},
                 SYSTEMTIME{2015, 1, 0, 1, 0, 0, 60, 0}, SYSTEMTIME{2015, 1, 0, 1, 0, 0, 0, 1000},
                 SYSTEMTIME{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535},
         }) {
        SCOPED_TRACE(Text(time));
        FILETIME fileTime = {7, 8};
        ::SetLastError(0);
        EXPECT_EQ(::SystemTimeToFileTime(&time, &fileTime), FALSE);
        EXPECT_EQ(::GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
        EXPECT_EQ(fileTime.dwLowDateTime, 7U);
        EXPECT_EQ(fileTime.dwHighDateTime, 8U);
    }
}

TEST(FileTime, Beyond2To63IsRefused)
{
    FILETIME const fileTime = FromSteps(std::uint64_t{1} << 63U);
    SYSTEMTIME time = known[0].time;
    ::SetLastError(0);
    EXPECT_EQ(::FileTimeToSystemTime(&fileTime, &time), FALSE);
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Text(time), Text(known[0].time));
}

TEST(FileTime, LocalAndBackIsTheSame)
{
    for (int month = 1; month <= 12; ++month) {
        SYSTEMTIME const time = {2015, static_cast<WORD>(month), 0, 15, 12, 0, 0, 0};
        FILETIME before{};
        ASSERT_EQ(::SystemTimeToFileTime(&time, &before), TRUE);
        // Unless the clocks change between the two calls.
        FILETIME local{};
        FILETIME again{};
        FILETIME after{};
        do {
            EXPECT_EQ(::FileTimeToLocalFileTime(&before, &local), TRUE);
            EXPECT_EQ(::LocalFileTimeToFileTime(&local, &after), TRUE);
            EXPECT_EQ(::FileTimeToLocalFileTime(&before, &again), TRUE);
        } while (Steps(local) != Steps(again));
        EXPECT_EQ(Steps(after), Steps(before));
        std::int64_t const distance = static_cast<std::int64_t>(Steps(local) - Steps(before)) / 10'000'000;
        EXPECT_LE(distance, 15 * 3600);
        EXPECT_GE(distance, -15 * 3600);
    }
}

TEST(SystemClock, IsThatOfTheRuntimeLibrary)
{
    constexpr std::int64_t from1601To1970 = 11644473600;
    std::int64_t const before = std::time(nullptr);
    SYSTEMTIME now{};
    ::GetSystemTime(&now);
    std::int64_t const after = std::time(nullptr);
    FILETIME fileTime{};
    ASSERT_EQ(::SystemTimeToFileTime(&now, &fileTime), TRUE);
    std::int64_t const seconds = static_cast<std::int64_t>(Steps(fileTime) / 10'000'000) - from1601To1970;
    // The two may read clocks of different steps.
    EXPECT_GE(seconds, before - 1);
    EXPECT_LE(seconds, after + 1);
    EXPECT_LT(now.wMilliseconds, 1000);
    SYSTEMTIME withWeekday{};
    ASSERT_EQ(::FileTimeToSystemTime(&fileTime, &withWeekday), TRUE);
    EXPECT_EQ(Text(now), Text(withWeekday));
}

TEST(RuntimeSeconds, ConvertToUtc)
{
    __time64_t const moment = 1427590800;
    std::tm const* const calendar = ::_gmtime64(&moment);
    ASSERT_NE(calendar, nullptr);
    EXPECT_EQ(calendar->tm_year, 115);
    EXPECT_EQ(calendar->tm_mon, 2);
    EXPECT_EQ(calendar->tm_mday, 29);
    EXPECT_EQ(calendar->tm_hour, 1);
    EXPECT_EQ(calendar->tm_wday, 0);
    EXPECT_EQ(calendar->tm_yday, 87);
}

TEST(RuntimeSeconds, OfAnyTimeComeBack)
{
    for (__time64_t const moment : {__time64_t{1000000000}, __time64_t{1436961600}, __time64_t{4102444800}}) {
        std::tm const* const local = ::_localtime64(&moment);
        ASSERT_NE(local, nullptr);
        std::tm calendar = *local;
        calendar.tm_isdst = -1;
        EXPECT_EQ(::_mktime64(&calendar), moment);
    }
}

TEST(RuntimeSeconds, NormaliseTheRecord)
{
    std::tm calendar{};
    calendar.tm_year = 115;
    calendar.tm_mon = 12;
    calendar.tm_mday = 32;
    calendar.tm_hour = 25;
    calendar.tm_isdst = -1;
    EXPECT_GT(::_mktime64(&calendar), 0);
    EXPECT_EQ(calendar.tm_year, 116);
    EXPECT_EQ(calendar.tm_mon, 1);
    EXPECT_EQ(calendar.tm_mday, 2);
    EXPECT_EQ(calendar.tm_hour, 1);
    EXPECT_EQ(calendar.tm_wday, 2);
    EXPECT_EQ(calendar.tm_yday, 32);
}

TEST(RuntimeSeconds, WithoutAYearAreRefused)
{
    for (__time64_t const moment : {INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(::_gmtime64(&moment), nullptr);
        EXPECT_EQ(::_localtime64(&moment), nullptr);
    }
}

} // namespace
