// Julian days: published values, an independent calendar, and the documented formulas in their literal form.
#include "quarn/time/time.h"

#include "tests/time/literal_formulas.h"
#include "tests/time/time_text.h"

#include <chrono>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace {

using Quarn::TIME;
using Quarn::Time;

struct Published
{
    int year, month, date, hour, minute, second;
    double julian;
};

// Epochs and worked examples of the astronomical literature, and the zero points of well-known clocks.
constexpr Published published[] = {
    {0, 1, 1, 0, 0, 0, 1721057.5},         {1, 1, 1, 0, 0, 0, 1721423.5},
    {333, 1, 27, 12, 0, 0, 1842713.0},     {837, 4, 10, 7, 12, 0, 2026871.8},
    {1582, 10, 4, 0, 0, 0, 2299159.5},     {1582, 10, 15, 0, 0, 0, 2299160.5},
    {1600, 1, 1, 0, 0, 0, 2305447.5},      {1600, 12, 31, 0, 0, 0, 2305812.5},
    {1601, 1, 1, 0, 0, 0, 2305813.5},      {1858, 11, 17, 0, 0, 0, 2400000.5},
    {1900, 1, 1, 0, 0, 0, 2415020.5},      {1950, 1, 1, 0, 0, 0, 2433282.5},
    {1957, 10, 4, 19, 26, 24, 2436116.31}, {1968, 5, 24, 0, 0, 0, 2440000.5},
    {1970, 1, 1, 0, 0, 0, 2440587.5},      {1987, 1, 27, 0, 0, 0, 2446822.5},
    {1987, 6, 19, 12, 0, 0, 2446966.0},    {1988, 1, 27, 0, 0, 0, 2447187.5},
    {1988, 6, 19, 12, 0, 0, 2447332.0},    {1999, 1, 1, 0, 0, 0, 2451179.5},
    {2000, 1, 1, 0, 0, 0, 2451544.5},      {2000, 1, 1, 12, 0, 0, 2451545.0},
    {9999, 12, 31, 0, 0, 0, 5373483.5},
};

TEST(Julian, OfPublishedDates)
{
    for (Published const& row : published) {
        Time const time = At(row.year, row.month, row.date, row.hour, row.minute, row.second);
        SCOPED_TRACE(Text(time));
        EXPECT_EQ(time.GetJulian(), row.julian);
        EXPECT_EQ(Text(Time().SetJulian(row.julian)), Text(time));
    }
}

TEST(Julian, SetJulianReturnsTheTimeItself)
{
    Time time;
    EXPECT_EQ(&time.SetJulian(2451544.5), &time);
}

TEST(Julian, MillisecondsAndMicrosecondsTakeNoPart)
{
    EXPECT_EQ(Time(2000, 1, 1, 0, 0, 0, 999, 999).GetJulian(), 2451544.5);
    Time time = TIME{3, (123U << 10U) | 456U};
    time.SetJulian(2451545.0);
    EXPECT_EQ(Words(time), "0x07D010B3 0x0001EDC8");
}

TEST(Julian, CountsTheSeconds)
{
    EXPECT_EQ(At(2000, 1, 1, 23, 59, 59).GetJulian(), 2451544.5 + 86399.0 / 86400);
    EXPECT_EQ(Text(Time().SetJulian(2451544.5 + 1.0 / 86400)), "2000-01-01 00:00:01.000.000");
    EXPECT_EQ(Text(Time().SetJulian(2451544.5 + 86399.0 / 86400)), "2000-01-01 23:59:59.000.000");
}

TEST(Julian, EndOfTheDayDeliberatelyRoundsToHour24WithoutACarry)
{
    // A tenth of a second before midnight.
    EXPECT_EQ(Text(Time().SetJulian(2451545.5 - 0.1 / 86400)), "2000-01-01 24:00:00.000.000");
    // More than half a second before it.
    EXPECT_EQ(Text(Time().SetJulian(2451545.5 - 0.6 / 86400)), "2000-01-01 23:59:59.000.000");
    // Hour 24 is the next midnight.
    EXPECT_EQ(At(2000, 1, 1, 24).GetJulian(), 2451545.5);
}

// Every day from 0000-01-01 on is one more than the day before, through the change of calendars.
TEST(Julian, CountsEveryDayOfTheJulianCalendarAndTheDayAfterIt)
{
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    double expected = 1721057.5;
    for (int year = 0; year < 1583; ++year) {
        for (int month = 1; month <= 12; ++month) {
            int const length = lengths[month - 1] + (month == 2 && year % 4 == 0 ? 1 : 0);
            for (int date = 1; date <= length; ++date) {
                if (year == 1582 && month == 10 && date == 5) {
                    date = 15;
                }
                Time const time = At(year, month, date);
                ASSERT_EQ(time.GetJulian(), expected) << Text(time);
                ASSERT_EQ(Time().SetJulian(expected), time) << Text(time);
                expected += 1;
            }
        }
    }
    EXPECT_EQ(expected, 2299238.5); // 1583-01-01
}

// From 1583 to the end of 3000, day by day, with the standard library's calendar.
TEST(Julian, IsThatOfAnIndependentGregorianCalendarForEveryDay)
{
    using namespace std::chrono;
    constexpr double epoch = 2440587.5; // 1970-01-01
    sys_days const end{year{3001} / January / 1};
    for (sys_days day{year{1583} / January / 1}; day < end; day += days{1}) {
        year_month_day const civil{day};
        Time const time = At(int{civil.year()}, static_cast<int>(unsigned{civil.month()}),
                             static_cast<int>(unsigned{civil.day()}));
        double const julian = epoch + day.time_since_epoch().count();
        ASSERT_EQ(time.GetJulian(), julian) << Text(time);
        ASSERT_EQ(Time().SetJulian(julian), time) << Text(time);
        std::tm calendar{};
        time.Get_tm(&calendar);
        ASSERT_EQ(calendar.tm_wday, static_cast<int>(weekday{day}.c_encoding())) << Text(time);
    }
}

// The ten dates that the change of calendars skipped read as Gregorian, ten days before the dates of the same
// days; so they are not what comes back.
TEST(Julian, SkippedDatesOfOctober1582AreDeliberatelyNotInverted)
{
    for (int date = 5; date <= 14; ++date) {
        Time const skipped = At(1582, 10, date);
        EXPECT_EQ(skipped.GetJulian(), 2299160.5 - (15 - date));
        Time const back = Time().SetJulian(skipped.GetJulian());
        EXPECT_EQ(Text(back), Text(date <= 10 ? At(1582, 9, date + 20) : At(1582, 10, date - 10)));
    }
}

// Dates that there are, of whole seconds: then there is no exception, up to the last year that fits.
TEST(Julian, SetJulianInvertsGetJulianForAMillionTimesOfWholeSeconds)
{
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    std::mt19937 random(5);
    auto const below = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
    for (int i = 0; i < 1000000; ++i) {
        int const year = below(65536);
        int const month = 1 + below(12);
        bool const isLeap = year % 4 == 0 && (year <= 1582 || year % 100 != 0 || year % 400 == 0);
        int const date =
            1 + below(static_cast<unsigned>(lengths[month - 1] + (month == 2 && isLeap ? 1 : 0)));
        if (year == 1582 && month == 10 && date >= 5 && date < 15) {
            continue;
        }
        Time const time = At(year, month, date, below(24), below(60), below(60));
        Time const back = Time().SetJulian(time.GetJulian());
        ASSERT_TRUE(back == time) << Text(time) << " became " << Text(back);
    }
}

TEST(Julian, DatesThatThereAreNotComeBackAsThoseThatThereAre)
{
    EXPECT_EQ(Text(Time().SetJulian(At(2023, 2, 29).GetJulian())), "2023-03-01 00:00:00.000.000");
    EXPECT_EQ(Text(Time().SetJulian(At(2023, 2, 31).GetJulian())), "2023-03-03 00:00:00.000.000");
    EXPECT_EQ(Text(Time().SetJulian(At(2023, 5, 0).GetJulian())), "2023-04-30 00:00:00.000.000");
    EXPECT_EQ(Text(Time().SetJulian(Time(2023, 5, 1, 31, 63, 63, 0, 0).GetJulian())),
              "2023-05-02 08:04:03.000.000");
    EXPECT_EQ(Time::NoTime.GetJulian(), 1721025.5);
}

TEST(Julian, IsThatOfTheLiteralFormulaForAnyWords)
{
    std::mt19937 random(6);
    for (int i = 0; i < 300000; ++i) {
        Time const time = TIME{static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
        ASSERT_EQ(time.GetJulian(), literal::Julian(time)) << Text(time);
        std::tm calendar{};
        ASSERT_EQ(time.Get_tm(&calendar)->tm_wday, literal::Weekday(time)) << Text(time);
    }
}

TEST(Julian, IsThatOfTheLiteralFormulaForEveryTimeOfDayInEveryPowerOf2OfDays)
{
    for (int const year : {0, 1000, 1030, 6770, 6772, 18252, 18254, 41220, 41222, 65535}) {
        for (std::uint32_t low = 0; low < 1U << 12U; ++low) {
            for (std::uint32_t hour = 0; hour < 32; ++hour) {
                // Reserved bits stay 0; minutes and seconds are the upper bits of the second word.
                Time const time =
                    TIME{static_cast<std::uint32_t>(year) << 16U | 0x6880U | hour << 2U, low << 20U};
                ASSERT_EQ(time.GetJulian(), literal::Julian(time)) << Text(time);
            }
        }
    }
}

TEST(Julian, SetJulianIsTheLiteralFormulaForAnyNumber)
{
    std::mt19937_64 random(7);
    for (double const range : {2.0, 4000.0, 3e6, 3e7, 2e8, 1e9, 1e12}) {
        std::uniform_real_distribution<double> numbers(-range, range);
        for (int i = 0; i < 50000; ++i) {
            double const julian = numbers(random);
            Time const before =
                TIME{static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
            Time time = before;
            time.SetJulian(julian);
            ASSERT_TRUE(time == literal::FromJulian(before, julian)) << Text(time) << " of " << julian;
        }
    }
}

TEST(Julian, DaysNextToTheChangesOfTheFormulaAreThoseOfTheLiteralOne)
{
    for (double const day :
         {-1461.0, -1460.0, -1.0, 0.0, 1.0, 2299160.0, 2299161.0, 2299162.0, 99'999'999.0, 100'000'000.0}) {
        for (double const part : {-0.5, -0.4999999999, 0.0, 0.49999, 0.4999999999}) {
            EXPECT_EQ(Words(Time().SetJulian(day + part)), Words(literal::FromJulian(Time(), day + part)))
                << day + part;
        }
    }
    // So little before midnight that the difference is lost in the sum with the date.
    double const least = -0.5 - std::numeric_limits<double>::epsilon();
    EXPECT_EQ(Words(Time().SetJulian(least)), Words(literal::FromJulian(Time(), least)));
}

TEST(Julian, NumbersWithoutADateChangeNothing)
{
    Time const before(2024, 3, 5, 7, 8, 9, 123, 456);
    for (double const number :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max(), 1e16, -1e16}) {
        Time time = before;
        time.SetJulian(number);
        EXPECT_EQ(Text(time), Text(before)) << number;
    }
}

TEST(Julian, YearsOutOfRangeAreStoredModulo65536)
{
    // 65535-12-31 and the day after it.
    double const last = At(65535, 12, 31).GetJulian();
    EXPECT_EQ(Text(Time().SetJulian(last)), "65535-12-31 00:00:00.000.000");
    EXPECT_EQ(Text(Time().SetJulian(last + 1)), "0000-01-01 00:00:00.000.000");
    // The day before 0000-01-01.
    EXPECT_EQ(Text(Time().SetJulian(1721056.5)), "65535-12-31 00:00:00.000.000");
}

} // namespace
