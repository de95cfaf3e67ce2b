// The packed words: where each field lies, what setters do to it and to its neighbours.
#include "quarn/time/time.h"

#include "tests/time/time_text.h"

#include <cstddef>
#include <random>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Quarn::TIME;
using Quarn::Time;

static_assert(sizeof(Time) == 8 && alignof(Time) == 4 && std::is_trivially_copyable_v<Time>);
static_assert(sizeof(Quarn::UTCTime) == 8 && sizeof(Quarn::LocalTime) == 8);
static_assert(std::is_base_of_v<Time, Quarn::UTCTime> && std::is_base_of_v<Time, Quarn::LocalTime>);
static_assert(Time::AM == 0 && Time::PM == 1);
static_assert(std::is_same_v<decltype(Time().GetYear()), std::uint16_t>);
static_assert(std::is_same_v<decltype(Time().GetMonth()), std::uint8_t>);
static_assert(std::is_same_v<decltype(Time().GetMicroSecond()), std::uint16_t>);

TEST(TimeLayout, OfTheConstants)
{
    EXPECT_EQ(Words(Time::MinTime), "0x00001080 0x00000000");
    EXPECT_EQ(Words(Time::MaxTime), "0x7FFFCFDC 0xEFBF9FE7");
    EXPECT_EQ(Words(Time::NoTime), "0x00000000 0x00000000");
    EXPECT_EQ(TIME(Time::MinTime).High, 4224U);
    EXPECT_EQ(TIME(Time::MaxTime).High, 2147471324U);
    EXPECT_EQ(TIME(Time::MaxTime).Low, 4022312935U);
    EXPECT_EQ(Text(Time::MinTime), "0000-01-01 00:00:00.000.000");
    EXPECT_EQ(Text(Time::MaxTime), "32767-12-31 23:59:59.999.999");
    EXPECT_EQ(Text(Time::NoTime), "0000-00-00 00:00:00.000.000");
}

TEST(TimeLayout, OfTheDefault)
{
    EXPECT_EQ(Text(Time()), "0000-01-01 00:00:00.000.000");
    EXPECT_EQ(Time(), Time::MinTime);
}

TEST(TimeLayout, OfEveryField)
{
    // Each field at 1 and at its largest value, the others 0.
    EXPECT_EQ(Words(Time(1, 0, 0, 0, 0, 0, 0, 0)), "0x00010000 0x00000000");
    EXPECT_EQ(Words(Time(65535, 0, 0, 0, 0, 0, 0, 0)), "0xFFFF0000 0x00000000");
    EXPECT_EQ(Words(Time(0, 1, 0, 0, 0, 0, 0, 0)), "0x00001000 0x00000000");
    EXPECT_EQ(Words(Time(0, 15, 0, 0, 0, 0, 0, 0)), "0x0000F000 0x00000000");
    EXPECT_EQ(Words(Time(0, 0, 1, 0, 0, 0, 0, 0)), "0x00000080 0x00000000");
    EXPECT_EQ(Words(Time(0, 0, 31, 0, 0, 0, 0, 0)), "0x00000F80 0x00000000");
    EXPECT_EQ(Words(Time(0, 0, 0, 1, 0, 0, 0, 0)), "0x00000004 0x00000000");
    EXPECT_EQ(Words(Time(0, 0, 0, 31, 0, 0, 0, 0)), "0x0000007C 0x00000000");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 1, 0, 0, 0)), "0x00000000 0x04000000");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 63, 0, 0, 0)), "0x00000000 0xFC000000");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 0, 1, 0, 0)), "0x00000000 0x00100000");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 0, 63, 0, 0)), "0x00000000 0x03F00000");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 0, 0, 1, 0)), "0x00000000 0x00000400");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 0, 0, 1023, 0)), "0x00000000 0x000FFC00");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 0, 0, 0, 1)), "0x00000000 0x00000001");
    EXPECT_EQ(Words(Time(0, 0, 0, 0, 0, 0, 0, 1023)), "0x00000000 0x000003FF");
    EXPECT_EQ(Words(Time(2024, 3, 5, 7, 8, 9, 123, 456)), "0x07E8329C 0x2091EDC8");
}

TEST(TimeLayout, GettersTakeTheWordsApart)
{
    Time const time = TIME{0x07E8329C, 0x2091EDC8};
    EXPECT_EQ(time.GetYear(), 2024);
    EXPECT_EQ(time.GetMonth(), 3);
    EXPECT_EQ(time.GetDate(), 5);
    EXPECT_EQ(time.GetHour(), 7);
    EXPECT_EQ(time.GetMinute(), 8);
    EXPECT_EQ(time.GetSecond(), 9);
    EXPECT_EQ(time.GetMilliSecond(), 123);
    EXPECT_EQ(time.GetMicroSecond(), 456);
    // All bits set: every field at its largest.
    EXPECT_EQ(Text(TIME{0xFFFFFFFF, 0xFFFFFFFF}), "65535-15-31 31:63:63.1023.1023");
}

TEST(TimeLayout, SettersReplaceTheirFieldAndKeepTheRest)
{
    Time time = TIME{0xFFFFFFFF, 0xFFFFFFFF};
    time.SetYear(2024);
    EXPECT_EQ(Words(time), "0x07E8FFFF 0xFFFFFFFF");
    time.SetMonth(3);
    EXPECT_EQ(Words(time), "0x07E83FFF 0xFFFFFFFF");
    time.SetDate(5);
    EXPECT_EQ(Words(time), "0x07E832FF 0xFFFFFFFF");
    time.SetHour(7);
    EXPECT_EQ(Words(time), "0x07E8329F 0xFFFFFFFF");
    time.SetMinute(8);
    EXPECT_EQ(Words(time), "0x07E8329F 0x23FFFFFF");
    time.SetSecond(9);
    EXPECT_EQ(Words(time), "0x07E8329F 0x209FFFFF");
    time.SetMilliSecond(123);
    EXPECT_EQ(Words(time), "0x07E8329F 0x2091EFFF");
    time.SetMicroSecond(456);
    EXPECT_EQ(Words(time), "0x07E8329F 0x2091EDC8");
}

TEST(TimeLayout, SettersKeepTheReservedBits)
{
    Time time = TIME{3, 0};
    time.Set(2024, 3, 5, 7, 8, 9, 123, 456);
    EXPECT_EQ(Words(time), "0x07E8329F 0x2091EDC8");
    time.SetJulian(2451544.5);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
    time.SetUTC(0);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
    time.SetLocal(86400);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
    std::tm calendar{};
    time.Setgm(&calendar);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
}

TEST(TimeLayout, TooWideValuesDeliberatelySpillIntoTheFieldsAbove)
{
    Time time = TIME{0, 0};
    time.SetMonth(0xFF);
    EXPECT_EQ(Words(time), "0x000FF000 0x00000000"); // into the year
    time = TIME{0, 0};
    time.SetDate(0xFF);
    EXPECT_EQ(Words(time), "0x00007F80 0x00000000"); // into the month
    time = TIME{0, 0};
    time.SetHour(0xFF);
    EXPECT_EQ(Words(time), "0x000003FC 0x00000000"); // into the date
    time = TIME{0, 0};
    time.SetSecond(0xFF);
    EXPECT_EQ(Words(time), "0x00000000 0x0FF00000"); // into the minute
    time = TIME{0, 0};
    time.SetMilliSecond(0xFFFF);
    EXPECT_EQ(Words(time), "0x00000000 0x03FFFC00"); // into the second
    time = TIME{0, 0};
    time.SetMicroSecond(0xFFFF);
    EXPECT_EQ(Words(time), "0x00000000 0x0000FFFF"); // into the millisecond
}

TEST(TimeLayout, SpilledBitsDeliberatelyJoinThoseThatAreThere)
{
    Time time(2024, 4, 1, 0, 0, 0, 0, 0);
    time.SetDate(32 + 2); // one bit into the month: 4 becomes 5
    EXPECT_EQ(Text(time), "2024-05-02 00:00:00.000.000");
    time.SetDate(32 + 2); // which has it already
    EXPECT_EQ(Text(time), "2024-05-02 00:00:00.000.000");
}

TEST(TimeLayout, TooWideMinutesDeliberatelyLoseTheirUpperBits)
{
    Time time = TIME{0, 0};
    time.SetMinute(0xFF);
    EXPECT_EQ(Words(time), "0x00000000 0xFC000000");
    time.SetMinute(64);
    EXPECT_EQ(Words(time), "0x00000000 0x00000000");
}

TEST(TimeLayout, SetSpillsAsTheSettersOneAfterTheOther)
{
    std::mt19937 random(1);
    for (int i = 0; i < 10000; ++i) {
        auto const word = [&random] { return static_cast<std::uint16_t>(random()); };
        auto const byte = [&random] { return static_cast<std::uint8_t>(random()); };
        Time one = TIME{static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
        Time all = one;
        std::uint16_t const year = word();
        std::uint8_t const month = byte();
        std::uint8_t const date = byte();
        std::uint8_t const hour = byte();
        std::uint8_t const minute = byte();
        std::uint8_t const second = byte();
        std::uint16_t const milli = word();
        std::uint16_t const micro = word();
        one.SetYear(year);
        one.SetMonth(month);
        one.SetDate(date);
        one.SetHour(hour);
        one.SetMinute(minute);
        one.SetSecond(second);
        one.SetMilliSecond(milli);
        one.SetMicroSecond(micro);
        all.Set(year, month, date, hour, minute, second, milli, micro);
        ASSERT_TRUE(all == one) << Words(all) << " and " << Words(one);
    }
}

TEST(TimeLayout, WordsOrderTheTimes)
{
    Time const ascending[] = {
        Time::NoTime,
        Time::MinTime,
        Time(1999, 12, 31, 23, 59, 59, 999, 999),
        Time(2000, 1, 1, 0, 0, 0, 0, 0),
        Time(2000, 1, 1, 0, 0, 0, 0, 1),
        Time(2000, 1, 1, 0, 0, 0, 1, 0),
        Time(2000, 1, 1, 0, 0, 1, 0, 0),
        Time(2000, 1, 1, 0, 1, 0, 0, 0),
        Time(2000, 1, 1, 1, 0, 0, 0, 0),
        Time(2000, 1, 2, 0, 0, 0, 0, 0),
        Time(2000, 2, 1, 0, 0, 0, 0, 0),
        Time::MaxTime,
        Time(32768, 1, 1, 0, 0, 0, 0, 0),
        Time(65535, 12, 31, 23, 59, 59, 999, 999),
    };
    for (Time const& a : ascending) {
        for (Time const& b : ascending) {
            SCOPED_TRACE(Text(a) + " and " + Text(b));
            bool const isLess = &a < &b;
            bool const isSame = &a == &b;
            EXPECT_EQ(a < b, isLess);
            EXPECT_EQ(a > b, !isLess && !isSame);
            EXPECT_EQ(a <= b, isLess || isSame);
            EXPECT_EQ(a >= b, !isLess);
            EXPECT_EQ(a == b, isSame);
            EXPECT_EQ(a != b, !isSame);
        }
    }
}

TEST(TimeLayout, ReservedBitsCountInComparisons)
{
    Time const plain = TIME{0x07E8329C, 0};
    Time const reserved = TIME{0x07E8329D, 0};
    EXPECT_FALSE(plain == reserved);
    EXPECT_TRUE(plain != reserved);
    EXPECT_TRUE(plain < reserved);
}

TEST(TimeLayout, MSIsWonderfullIsPlainAssignment)
{
    Time time;
    EXPECT_EQ(&time.MSIsWonderfull(TIME{0xFFFFFFFF, 0x12345678}), &time);
    EXPECT_EQ(Words(time), "0xFFFFFFFF 0x12345678");
    time.MSIsWonderfull(time);
    EXPECT_EQ(Words(time), "0xFFFFFFFF 0x12345678");
}

} // namespace
