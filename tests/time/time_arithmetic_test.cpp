// Sums and differences, beside a model that counts in 64 bits.
#include "quarn/time/time.h"
#include "quarn/time/time_span.h"
#include "quarn/time/time_value.h"

#include "tests/time/time_text.h"

#include <cstdint>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace {

using Quarn::Time;
using Quarn::TimeSpan;
using Quarn::TimeValue;

constexpr std::uint64_t MinuteUnits = TimeValue::MaxFractionValue;

// A duration in order as one number of fraction units, below 2^63.
std::uint64_t Units(TimeValue const& value)
{
    return value.GetMinutes() * MinuteUnits + value.GetFraction();
}

TimeValue FromUnits(std::uint64_t units)
{
    return {static_cast<std::uint32_t>(units / MinuteUnits), static_cast<std::uint32_t>(units % MinuteUnits)};
}

// Durations of every order of magnitude.
TimeValue Random(std::mt19937& random)
{
    auto const minutes = static_cast<std::uint32_t>(random()) >> random() % 32;
    auto const fraction = static_cast<std::uint32_t>(random() % MinuteUnits) >> random() % 31;
    return {minutes, fraction};
}

TEST(TimeValueModel, OperationsAreThoseOfOneNumberOfUnits)
{
    constexpr std::uint64_t range = MinuteUnits << 32U; // where minutes start again
    std::mt19937 random(8);
    TimeValue value = Random(random);
    for (int i = 0; i < 200000; ++i) {
        TimeValue const other = Random(random);
        std::uint64_t const a = Units(value);
        std::uint64_t const b = Units(other);
        std::uint64_t const sum = (a + b) % range;
        std::uint64_t const difference = a < b ? b - a : a - b;
        bool const isRight = value + other == FromUnits(sum) && value - other == FromUnits(difference) &&
                             other - value == FromUnits(difference) && (value < other) == (a < b) &&
                             (value <= other) == (a <= b) && (value == other) == (a == b);
        ASSERT_TRUE(isRight) << Text(value) << " and " << Text(other);
        bool const adds = random() % 2 == 0;
        TimeValue const* const result = adds ? &(value += other) : &(value -= other);
        ASSERT_EQ(result, &value);
        ASSERT_EQ(Units(value), adds ? sum : difference) << Text(value);
    }
}

TEST(TimeValueModel, MultiplesAreThoseOfTheWholeSeconds)
{
    std::mt19937 random(9);
    for (int i = 0; i < 100000; ++i) {
        TimeValue const value(static_cast<std::uint32_t>(random() % 1000000),
                              static_cast<std::uint32_t>(random() % MinuteUnits));
        unsigned const n = random() % 1000;
        std::uint64_t const seconds =
            (std::uint64_t{value.GetMinutes()} * 60 + value.GetFraction() / TimeValue::SecondValue) * n;
        TimeValue const product = value * n;
        ASSERT_EQ(product.GetMinutes(), seconds / 60) << Text(value) << " * " << n;
        ASSERT_EQ(product.GetFraction(), seconds % 60 * TimeValue::SecondValue) << Text(value) << " * " << n;
    }
}

TEST(TimeValueModel, MultipleOfAFractionOfASecondIsDeliberatelyNothing)
{
    EXPECT_EQ(Text(TimeValue(0, 0, 0, 0, 999, 999) * 1000000), "0 + 0");
    EXPECT_EQ(Text(TimeValue(0, 0, 0, 1, 999, 0) * 10), "0 + " + std::to_string(10 * TimeValue::SecondValue));
    EXPECT_EQ(Text(TimeValue(0xFFFFFFFF, 5) * 0), "0 + 0");
}

TEST(TimeValueModel, MultipleBeyondAllYearsStaysInRange)
{
    TimeValue const value = TimeValue(0xFFFFFFFF, 0) * 0xFFFFFFFFU;
    EXPECT_LT(value.GetFraction(), TimeValue::MaxFractionValue);
}

TEST(TimeValueModel, SumCarriesOnceFromFractionsOutOfOrder)
{
    EXPECT_EQ(Text(TimeValue(0, TimeValue::MaxFractionValue) + TimeValue(0, TimeValue::MaxFractionValue)),
              "1 + 2147483640");
    EXPECT_EQ(Text(TimeValue(0xFFFFFFFF, TimeValue::MaxFractionValue) + TimeValue()), "0 + 0");
}

TEST(TimeArithmetic, AddingADurationCrossesMidnightMonthAndYear)
{
    Time const late = At(2024, 12, 31, 23, 59, 59);
    EXPECT_EQ(Text(late + TimeValue(0, 0, 0, 1, 0, 0)), "2025-01-01 00:00:00.000.000");
    EXPECT_EQ(Text(At(2024, 2, 28, 23, 59, 59) + TimeValue(0, 0, 0, 2, 0, 0)), "2024-02-29 00:00:01.000.000");
    EXPECT_EQ(Text(At(1582, 10, 4, 23, 59, 59) + TimeValue(0, 0, 0, 1, 0, 0)), "1582-10-15 00:00:00.000.000");
    Time time = late;
    EXPECT_EQ(&(time += TimeValue(366, 0, 0, 1, 0, 0)), &time);
    EXPECT_EQ(Text(time), "2026-01-02 00:00:00.000.000");
    EXPECT_EQ(Text(late), "2024-12-31 23:59:59.000.000");
}

TEST(TimeArithmetic, SubtractingADurationGoesBack)
{
    Time time = At(2024, 3, 1, 0, 0, 0);
    EXPECT_EQ(Text(time - TimeValue(0, 0, 0, 1, 0, 0)), "2024-02-29 23:59:59.000.000");
    EXPECT_EQ(&(time -= TimeValue(1, 0, 0, 0, 0, 0)), &time);
    EXPECT_EQ(Text(time), "2024-02-29 00:00:00.000.000");
}

TEST(TimeArithmetic, SubtractingMoreThanThereIsDeliberatelyMirrorsTheTimeAtYear0)
{
    EXPECT_EQ(Text(At(0, 1, 3) - TimeValue(5, 0, 0, 0, 0, 0)), "0000-01-04 00:00:00.000.000");
}

TEST(TimeArithmetic, SubtractIsDeliberatelyTheAbsoluteDistance)
{
    Time const earlier = At(2024, 2, 28, 12);
    Time const later = At(2024, 3, 1, 12);
    EXPECT_EQ(Text(later.Subtract(earlier)), "2880 + 0");
    EXPECT_EQ(Text(earlier.Subtract(later)), "2880 + 0");
    EXPECT_EQ(Text(later.Subtract(later)), "0 + 0");
    EXPECT_EQ(Text(At(2024, 1, 1, 0, 1, 0).Subtract(At(2024, 1, 1, 0, 0, 59))), "0 + 35791394");
}

TEST(TimeArithmetic, AddingClearsTheReservedBits)
{
    EXPECT_EQ(Words(Time(Quarn::TIME{4224 | 3, 0}) + TimeValue()), "0x00001080 0x00000000");
}

// A model of days and seconds of the standard library's kind: seconds since 1970, all Gregorian.
TEST(TimeArithmetic, SumsAndDistancesAreThoseOfSecondsCounted)
{
    std::mt19937_64 random(10);
    for (int i = 0; i < 100000; ++i) {
        auto const within = [&random](std::int64_t years) {
            return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(years * 31556952));
        };
        std::int64_t const start = within(1000);
        std::int64_t const length = within(1000);
        auto const at = [](std::int64_t seconds) {
            Time time;
            time.SetJulian(2440587.5 + static_cast<double>(seconds / 86400));
            time.SetHour(static_cast<std::uint8_t>(seconds / 3600 % 24));
            time.SetMinute(static_cast<std::uint8_t>(seconds / 60 % 60));
            time.SetSecond(static_cast<std::uint8_t>(seconds % 60));
            return time;
        };
        TimeValue const duration(static_cast<std::uint32_t>(length / 60),
                                 static_cast<std::uint32_t>(length % 60) * TimeValue::SecondValue);
        Time const first = at(start);
        Time const last = at(start + length);
        ASSERT_TRUE(first + duration == last) << Text(first) << " + " << Text(duration);
        ASSERT_TRUE(last - duration == first) << Text(last) << " - " << Text(duration);
        ASSERT_TRUE(last.Subtract(first) == duration) << Text(last) << " - " << Text(first);
    }
}

TEST(TimeArithmetic, SpansCountLocalSecondsAndDropFractions)
{
    Time const time(2024, 6, 15, 12, 0, 0, 123, 456);
    EXPECT_EQ(Text(time + TimeSpan(3600)), "2024-06-15 13:00:00.000.000");
    EXPECT_EQ(Text(time - TimeSpan(3600)), "2024-06-15 11:00:00.000.000");
    EXPECT_EQ(Text(time + TimeSpan(-3600)), "2024-06-15 11:00:00.000.000");
    EXPECT_EQ((At(2024, 6, 15, 13) - At(2024, 6, 15, 12)).Get_time_t(), 3600);
    EXPECT_EQ((At(2024, 6, 15, 12) - At(2024, 6, 15, 13)).Get_time_t(), -3600);
}

TEST(TimeArithmetic, SumOfTwoTimesIsDeliberatelyThatOfTheirSeconds)
{
    Time const a = At(2024, 6, 15, 12);
    Time const b = At(2001, 1, 1);
    EXPECT_EQ((a + b).Get_time_t(), a.Get_time_t() + b.Get_time_t());
}

TEST(TimeArithmetic, SpansBeyondAllTimesGiveNoTime)
{
    EXPECT_EQ(Words(At(2024, 6, 15) + TimeSpan(std::numeric_limits<std::int64_t>::max())),
              Words(Time::NoTime));
    EXPECT_EQ(Words(At(2024, 6, 15) - TimeSpan(std::numeric_limits<std::int64_t>::min())),
              Words(Time::NoTime));
}

} // namespace
