// Durations: their parts, their order, and the ways from and to times.
#include "quarn/stream/memory_stream.h"
#include "quarn/time/time_span.h"
#include "quarn/time/time_value.h"

#include "tests/stream/bytes.h"
#include "tests/stream/throws.h"
#include "tests/time/literal_formulas.h"
#include "tests/time/time_text.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Quarn::Time;
using Quarn::TIMEVALUE;
using Quarn::TimeValue;

static_assert(sizeof(TIMEVALUE) == 8 && offsetof(TIMEVALUE, Minutes) == 0 &&
              offsetof(TIMEVALUE, Fraction) == 4);
static_assert(sizeof(TimeValue) == 8 && std::is_trivially_copyable_v<TimeValue>);
static_assert(sizeof(TimeValue::Parse) == 24 && offsetof(TimeValue::Parse, days) == 0 &&
              offsetof(TimeValue::Parse, hours) == 4 && offsetof(TimeValue::Parse, minutes) == 8 &&
              offsetof(TimeValue::Parse, seconds) == 12 && offsetof(TimeValue::Parse, milliseconds) == 16 &&
              offsetof(TimeValue::Parse, microseconds) == 20);
static_assert(sizeof(Quarn::TimeSpan) == 16);

constexpr std::uint32_t second = TimeValue::SecondValue;
constexpr std::uint32_t mostFraction = TimeValue::MaxFractionValue - 1;

std::string PartsText(TimeValue::Parse const& parts)
{
    return std::to_string(parts.days) + " d " + std::to_string(parts.hours) + " h " +
           std::to_string(parts.minutes) + " min " + std::to_string(parts.seconds) + " s " +
           std::to_string(parts.milliseconds) + " ms " + std::to_string(parts.microseconds) + " us";
}

std::string Parts(TimeValue const& value)
{
    TimeValue::Parse parts{};
    value.ParseTime(&parts);
    return PartsText(parts);
}

TEST(TimeValue, Constants)
{
    EXPECT_EQ(TimeValue::SecondValue, 35791394U);
    EXPECT_EQ(TimeValue::MinuteValue, 2147483640U);
    EXPECT_EQ(TimeValue::MinuteValue, 60 * TimeValue::SecondValue);
    EXPECT_EQ(TimeValue::MaxFractionValue, 2147483640U);
    EXPECT_EQ(TimeValue::MilliSecondValue, 35791.394);
    EXPECT_EQ(TimeValue::MicroSecondValue, 35.791394);
    EXPECT_EQ(TimeValue::MinYear, 0);
    EXPECT_EQ(TimeValue::MaxYear, 8000);
    EXPECT_EQ(TimeValue::JulianOffset, 1721057.5);
    EXPECT_EQ(TimeValue::JulianDivisor, 1440.0);
}

TEST(TimeValue, IsNothingByDefault)
{
    EXPECT_EQ(Text(TimeValue()), "0 + 0");
}

TEST(TimeValue, ConvertsToThePlainFormAndBackAsItStands)
{
    TimeValue const value = TIMEVALUE{7, 0xFFFFFFFF};
    TIMEVALUE const words = value;
    EXPECT_EQ(words.Minutes, 7U);
    EXPECT_EQ(words.Fraction, 0xFFFFFFFFU);
    EXPECT_EQ(Text(TimeValue(7, 0xFFFFFFFF)), "7 + 4294967295");
    EXPECT_EQ(value.GetMantissa(), 7U);
    EXPECT_EQ(value.GetMinutes(), 7U);
    EXPECT_EQ(value.GetFraction(), 0xFFFFFFFFU);
}

TEST(TimeValue, OfADayHas1440Minutes)
{
    TimeValue const day(1, 0, 0, 0, 0, 0);
    EXPECT_EQ(Text(day), "1440 + 0");
    EXPECT_EQ(day.GetJulianValue(), 1.0);
    EXPECT_EQ(Text(TimeValue(1.0)), "1440 + 0");
}

TEST(TimeValue, OfAThousandMillisecondsIsASecond)
{
    EXPECT_EQ(Text(TimeValue(0, 0, 0, 0, 1000, 0)), "0 + 35791394");
    EXPECT_EQ(Text(TimeValue(0, 0, 0, 0, 0, 1000000)), "0 + 35791394");
    EXPECT_EQ(Text(TimeValue(0, 0, 0, 60, 0, 0)), "1 + 0");
}

TEST(TimeValue, SetCarriesFromPartToPart)
{
    // 1 d 25 h 61 min 61 s 1001 ms 1001 µs
    TimeValue value;
    TimeValue::Parse const parts{1, 25, 61, 61, 1001, 1001};
    EXPECT_EQ(&value.Set(parts), &value);
    EXPECT_EQ(value.GetMinutes(), 1440U + 25 * 60 + 61 + 1);
    EXPECT_EQ(value.GetFraction(),
              static_cast<std::uint32_t>((2.0 + 2 / 1000.0 + 1 / 1000000.0) * 35791394 + 0.5));
    EXPECT_EQ(Text(TimeValue(parts)), Text(value));
}

TEST(TimeValue, SetCarriesFromTheLargestNumbersWithoutOverflow)
{
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    // The sum in microseconds, worked out with 64 bits.
    constexpr std::int64_t microseconds = std::int64_t{most} * 1001001;                   // of the last three
    constexpr std::int64_t minutes = std::int64_t{most} * 1501 + microseconds / 60000000; // of all
    TimeValue const value(most, most, most, most, most, most);
    EXPECT_EQ(value.GetMinutes(), static_cast<std::uint32_t>(minutes));
    EXPECT_EQ(value.GetFraction() / second, microseconds / 1000000 % 60);
}

TEST(TimeValue, SetOfPartsBelow0CountsModulo2To32)
{
    EXPECT_EQ(Text(TimeValue(0, 0, -1, 0, 0, 0)), "4294967295 + 0");
    EXPECT_EQ(Text(TimeValue(0, 0, 1, -60, 0, 0)), "0 + 0");
    // The remainders keep their sign, and the half is added before the rest is cut off.
    EXPECT_EQ(Text(TimeValue(0, 0, 0, -1, 0, 0)), "0 + 4259175903");
    EXPECT_EQ(Text(TimeValue(0, 0, 1, -1, 0, 0)), "1 + 4259175903");
}

TEST(TimeValue, ParseTimeTakesTheDurationApart)
{
    EXPECT_EQ(Parts(TimeValue(3, 4, 5, 6, 7, 8)), "3 d 4 h 5 min 6 s 7 ms 8 us");
    EXPECT_EQ(Parts(TimeValue(0xFFFFFFFF, 0)), "2982616 d 4 h 15 min 0 s 0 ms 0 us");
    EXPECT_EQ(Parts(TimeValue(0, mostFraction)), "0 d 0 h 0 min 59 s 999 ms 999 us");
}

TEST(TimeValue, ParseTimeOfAFractionOutOfOrderHasMoreThan59Seconds)
{
    EXPECT_EQ(Parts(TimeValue(0, TimeValue::MinuteValue)), "0 d 0 h 0 min 60 s 0 ms 0 us");
    EXPECT_EQ(Parts(TimeValue(0, 0xFFFFFFFF)), "0 d 0 h 0 min 120 s 0 ms 0 us");
}

TEST(TimeValue, ParseTimeDeliberatelyCutsOffSoThatAMillisecondComesBackAsLess)
{
    EXPECT_EQ(TimeValue(0, 0, 0, 0, 1, 0).GetFraction(), 35791U); // of 35791.394
    EXPECT_EQ(Parts(TimeValue(0, 0, 0, 0, 1, 0)), "0 d 0 h 0 min 0 s 0 ms 999 us");
    EXPECT_EQ(Parts(TimeValue(0, 0, 0, 0, 2, 0)), "0 d 0 h 0 min 0 s 2 ms 0 us"); // 71583 of 71582.788
}

TEST(TimeValue, ParseTimeBringsBackWhatSetTookToTheMicrosecond)
{
    std::mt19937 random(2);
    auto const below = [&random](unsigned bound) { return static_cast<std::int32_t>(random() % bound); };
    for (int i = 0; i < 100000; ++i) {
        TimeValue::Parse const parts{below(2900000), below(24),   below(60),
                                     below(60),      below(1000), below(1000)};
        TimeValue::Parse back{};
        TimeValue(parts).ParseTime(&back);
        auto const micro = [](TimeValue::Parse const& p) {
            return (p.seconds * 1000 + p.milliseconds) * 1000 + p.microseconds;
        };
        bool const isSame = back.days == parts.days && back.hours == parts.hours &&
                            back.minutes == parts.minutes && micro(back) <= micro(parts) &&
                            micro(back) >= micro(parts) - 1;
        ASSERT_TRUE(isSame) << PartsText(parts) << " became " << PartsText(back);
    }
}

TEST(TimeValue, ParseTimeIntoNothingDoesNothing)
{
    TimeValue const duration(1, 2, 3, 4, 5, 6);
    std::string const before = Parts(duration);
    duration.ParseTime(nullptr);
    EXPECT_EQ(Parts(duration), before);
}

TEST(TimeValue, OfATimeIsItsDistanceFromYear0)
{
    EXPECT_EQ(Text(TimeValue(Time::MinTime)), "0 + 0");
    EXPECT_EQ(Text(TimeValue(At(0, 1, 2))), "1440 + 0");
    EXPECT_EQ(Text(TimeValue(At(2000, 1, 1))), "1051901280 + 0"); // (2451544.5 - 1721057.5) * 1440
    EXPECT_EQ(Text(TimeValue(Time(2000, 1, 1, 1, 2, 3, 500, 250))),
              "1051901342 + " + std::to_string(static_cast<std::uint32_t>(3.50025 * 35791394 + 0.5)));
}

TEST(TimeValue, OfATimeBefore0CountsModulo2To32)
{
    // NoTime lies 32 days before 0000-01-01.
    EXPECT_EQ(TimeValue(Time::NoTime).GetMinutes(), static_cast<std::uint32_t>(-32 * 1440));
}

TEST(TimeValue, OfATimeCountsSecondsFrom60OnTwice)
{
    EXPECT_EQ(Text(TimeValue(At(0, 1, 1, 0, 0, 62))), "1 + " + std::to_string(62 * second));
}

TEST(TimeValue, OfATimeIsThatOfTheLiteralFormulaForAnyWords)
{
    std::mt19937 random(3);
    for (int i = 0; i < 300000; ++i) {
        Time const time =
            Quarn::TIME{static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
        ASSERT_TRUE(TimeValue(time) == literal::Distance(time)) << Text(time);
    }
}

TEST(TimeValue, GetQuarnTimeIsThatOfTheLiteralFormulaForAnyWords)
{
    std::mt19937 random(4);
    for (int i = 0; i < 300000; ++i) {
        TimeValue const value(static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random()));
        ASSERT_TRUE(value.GetQuarnTime() == literal::FromDistance(value)) << Text(value);
    }
    // The first and the last minutes of days all through the range.
    for (std::uint32_t day = 0; day < 2982616; day += 7) {
        for (std::uint32_t const minute : {0U, 1U, 719U, 720U, 1438U, 1439U}) {
            TimeValue const value(day * 1440 + minute, mostFraction);
            ASSERT_TRUE(value.GetQuarnTime() == literal::FromDistance(value)) << Text(value);
        }
    }
}

TEST(TimeValue, GetQuarnTimeEndsAtSecond59)
{
    EXPECT_EQ(Text(TimeValue(0, mostFraction).GetQuarnTime()), "0000-01-01 00:00:59.999.999");
    EXPECT_EQ(Text(TimeValue(0, 0xFFFFFFFF).GetQuarnTime()), "0000-01-01 00:00:59.000.000");
    EXPECT_EQ(Text(TimeValue(0xFFFFFFFF, 0).GetQuarnTime()), "8166-02-13 04:15:00.000.000");
}

TEST(TimeValue, GetQuarnTimeBringsBackWholeSecondsExactly)
{
    std::mt19937 random(5);
    for (int i = 0; i < 100000; ++i) {
        TimeValue const value(static_cast<std::uint32_t>(random()), second * (random() % 60));
        ASSERT_TRUE(TimeValue(value.GetQuarnTime()) == value) << Text(value);
    }
}

TEST(TimeValue, GetJulianValueIsInDaysAndWholeSeconds)
{
    EXPECT_EQ(TimeValue().GetJulianValue(), 0.0);
    EXPECT_EQ(TimeValue(0, 12, 0, 0, 0, 0).GetJulianValue(), 0.5);
    EXPECT_EQ(TimeValue(0, 12, 0, 0, 999, 999).GetJulianValue(), 0.5);
    EXPECT_EQ(TimeValue(400000, 6, 0, 0, 0, 0).GetJulianValue(), 400000.25);
}

TEST(TimeValue, SetOfDaysRoundsToTheSecond)
{
    TimeValue value;
    EXPECT_EQ(&value.Set(1.5), &value);
    EXPECT_EQ(Text(value), "2160 + 0");
    EXPECT_EQ(Text(TimeValue(1.0 / 86400)), "0 + 35791394");
    EXPECT_EQ(Text(TimeValue(1.4 / 86400)), "0 + 35791394");
    EXPECT_EQ(Text(TimeValue(1.6 / 86400)), "0 + 71582788");
    EXPECT_EQ(Text(TimeValue(0.0)), "0 + 0");
    // Before the beginning lies year 65535.
    EXPECT_EQ(Text(TimeValue(-1.0)), Text(TimeValue(At(65535, 12, 31))));
    EXPECT_EQ(Text(TimeValue(std::numeric_limits<double>::quiet_NaN())), "0 + 0");
}

TEST(TimeValue, SetReturnsTheDurationItself)
{
    TimeValue value;
    EXPECT_EQ(&value.Set(At(0, 1, 2)), &value);
    EXPECT_EQ(Text(value), "1440 + 0");
}

TEST(TimeValue, OrderIsThatOfMinutesThenFraction)
{
    TimeValue const ascending[] = {TimeValue(0, 0),          TimeValue(0, 1), TimeValue(0, 0x80000000),
                                   TimeValue(0, 0xFFFFFFFF), TimeValue(1, 0), TimeValue(0x80000000, 5),
                                   TimeValue(0xFFFFFFFF, 0)};
    for (TimeValue const& a : ascending) {
        for (TimeValue const& b : ascending) {
            SCOPED_TRACE(Text(a) + " and " + Text(b));
            EXPECT_EQ(a < b, &a < &b);
            EXPECT_EQ(a <= b, &a <= &b);
            EXPECT_EQ(a > b, &a > &b);
            EXPECT_EQ(a >= b, &a >= &b);
            EXPECT_EQ(a == b, &a == &b);
        }
    }
}

TEST(TimeValue, InequalityDeliberatelyComparesTheFractionWithTheOthersMinutes)
{
    TimeValue const value(1440, second);
    TimeValue const same = value;
    EXPECT_TRUE(value == same);
    EXPECT_TRUE(value != same);
    // Unequal only where both words are the other's minutes.
    EXPECT_FALSE(TimeValue(5, 5) != TimeValue(5, 5));
    EXPECT_FALSE(TimeValue(5, 5) != TimeValue(5, 77));
    EXPECT_TRUE(TimeValue(5, 77) != TimeValue(5, 77));
    EXPECT_TRUE(TimeValue(5, 77) != TimeValue(5, 5));
    EXPECT_FALSE(TimeValue() != TimeValue());
    EXPECT_TRUE(TimeValue(6, 5) != TimeValue(5, 5));
}

TEST(TimeValueStream, ReadsMinutesThenFraction)
{
    Source source("A0 05 00 00 22 22 22 02");
    Quarn::memorystream& stream = source;
    TimeValue value;
    Quarn::istream& result = stream >> value;
    EXPECT_EQ(&result, &static_cast<Quarn::istream&>(stream));
    EXPECT_EQ(Text(value), "1440 + 35791394");
    EXPECT_EQ(stream.tellg(), stream.GetSize());
}

TEST(TimeValueStream, CutShortLeavesTheTargetAsItWas)
{
    Source source("A0 05 00 00 22 22 22");
    Quarn::memorystream& stream = source;
    TimeValue value(7, 8);
    EXPECT_EQ(ThrownText([&] { stream >> value; }), "Generic Read");
    EXPECT_EQ(Text(value), "7 + 8");
}

TEST(TimeSpan, HoldsSeconds)
{
    Quarn::TimeSpan span;
    EXPECT_EQ(span.Get_time_t(), 0);
    span.Set(-5);
    EXPECT_EQ(span.Get_time_t(), -5);
    EXPECT_EQ(Quarn::TimeSpan(std::int64_t{1} << 40U).Get_time_t(), std::int64_t{1} << 40U);
    span = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(span.Get_time_t(), std::numeric_limits<std::int64_t>::min());
}

} // namespace
