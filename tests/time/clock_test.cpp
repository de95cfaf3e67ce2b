// The clock and the zone, whatever zone it is: the C library and the system tell what is right. The tests run
// in several zones.
#include "quarn/platform/win32_api.h"
#include "quarn/time/time_span.h"
#include "quarn/time/win32_time.h"

#include "tests/time/time_text.h"
#include "tests/time/zone_clock.h"

#include <cstdlib>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::TIME;
using Quarn::Time;

class Clock : public testing::Test
{
protected:
    static void SetUpTestSuite() { TakeTheSystemsZone(); }
};

using LocalSeconds = Clock;
using FileTimes = Clock;

Time FromSystem(void (*read)(SYSTEMTIME*))
{
    SYSTEMTIME now{};
    read(&now);
    return Win32Quarn::Time(now);
}

Time SystemUtc()
{
    return FromSystem([](SYSTEMTIME* now) { ::GetSystemTime(now); });
}

Time SystemLocal()
{
    return FromSystem([](SYSTEMTIME* now) { ::GetLocalTime(now); });
}

// What `read` brings lies between two looks at the system's clock, unless that has been set back meanwhile.
template<typename Read>
void ExpectNow(Time (*systemClock)(), Read read)
{
    Time before;
    Time now;
    Time after;
    do {
        before = systemClock();
        now = read();
        after = systemClock();
    } while (after < before);
    EXPECT_LE(Text(before), Text(now));
    EXPECT_LE(Text(now), Text(after));
    EXPECT_EQ(now.GetMicroSecond(), 0);
}

TEST_F(Clock, GivesUtc)
{
    ExpectNow(SystemUtc, [] {
        Time time;
        Quarn::GetUTCTime(time);
        return time;
    });
    ExpectNow(SystemUtc, [] {
        Time time;
        time.GetCurrentUTCTime();
        return time;
    });
    ExpectNow(SystemUtc, [] { return Quarn::UTCTime(); });
}

TEST_F(Clock, GivesLocalTime)
{
    ExpectNow(SystemLocal, [] {
        Time time;
        Quarn::GetLocalTime(time);
        return time;
    });
    ExpectNow(SystemLocal, [] {
        Time time;
        time.GetCurrentLocalTime();
        return time;
    });
    ExpectNow(SystemLocal, [] { return Quarn::LocalTime(); });
}

TEST_F(Clock, SetsTheMicrosecondTo0AndKeepsTheReservedBits)
{
    Time time = TIME{3, 999};
    Quarn::GetUTCTime(time);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
    EXPECT_EQ(time.GetMicroSecond(), 0);
    time = TIME{2, 999};
    Quarn::GetLocalTime(time);
    EXPECT_EQ(TIME(time).High & 3U, 2U);
    EXPECT_EQ(time.GetMicroSecond(), 0);
}

TEST_F(Clock, IsThatOfTheRuntimeLibrary)
{
    // Within a second or two, in seconds since 1970 as the local time counts them.
    WithOffsetNow([](std::int64_t offset) {
        std::time_t const before = std::time(nullptr);
        Time const local = Quarn::LocalTime();
        std::time_t const after = std::time(nullptr);
        std::tm calendar{};
        std::int64_t const seconds = AsUtc(*local.Get_tm(&calendar)) - offset;
        if (OffsetNow() == offset) {
            EXPECT_LE(before - 1, seconds);
            EXPECT_LE(seconds, after + 1);
        }
    });
}

// ---- the file times' conversions

TEST_F(FileTimes, DeliberatelyGoByTheDistanceInForceNowWhateverTheDate)
{
    for (int month = 1; month <= 12; ++month) {
        SCOPED_TRACE(month);
        Time expected;
        Time toUtc;
        Time toLocal;
        Time const start(2015, static_cast<std::uint8_t>(month), 15, 12, 34, 56, 789, 321);
        Time expectedLocal;
        WithOffsetNow([&](std::int64_t offset) {
            std::tm calendar{};
            std::int64_t const seconds = AsUtc(*start.Get_tm(&calendar));
            expected = Time(seconds - offset, true);
            expectedLocal = Time(seconds + offset, true);
            toUtc = start;
            toLocal = start;
            Quarn::LocalToUTC(toUtc);
            Quarn::UTCToLocal(toLocal);
        });
        expected.SetMilliSecond(789); // the microsecond becomes 0
        expectedLocal.SetMilliSecond(789);
        EXPECT_EQ(Text(toUtc), Text(expected));
        EXPECT_EQ(Text(toLocal), Text(expectedLocal));
    }
}

TEST_F(FileTimes, AreEachOthersInverse)
{
    WithOffsetNow([](std::int64_t offset) {
        Time time(2015, 12, 31, 23, 59, 59, 999, 0);
        time.ConvertToUTC();
        Time const utc = time;
        time.ConvertToLocal();
        if (OffsetNow() == offset) {
            EXPECT_EQ(Text(time), "2015-12-31 23:59:59.999.000");
            EXPECT_EQ(utc == time, offset == 0);
        }
    });
}

TEST_F(FileTimes, MembersAreTheFreeFunctions)
{
    Time const start(2015, 7, 15, 12, 34, 56, 789, 321);
    Time member;
    Time free;
    WithOffsetNow([&](std::int64_t) {
        member = start;
        free = start;
        member.ConvertToUTC();
        Quarn::LocalToUTC(free);
    });
    EXPECT_EQ(Text(member), Text(free));
    WithOffsetNow([&](std::int64_t) {
        member = start;
        free = start;
        member.ConvertToLocal();
        Quarn::UTCToLocal(free);
    });
    EXPECT_EQ(Text(member), Text(free));
}

TEST_F(FileTimes, KeepTheReservedBits)
{
    Time time = At(2015, 7, 15);
    time = TIME{TIME(time).High | 3U, 0};
    Quarn::LocalToUTC(time);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
}

TEST_F(FileTimes, LeaveTimesThatTheSystemRefusesAsTheyAre)
{
    for (Time const& refused :
         {Time::NoTime, Time::MinTime, At(1600, 12, 31, 23, 59, 59), At(2015, 2, 30), At(2015, 13, 1),
          At(2015, 1, 1, 24), At(2015, 1, 1, 0, 60), At(40000, 1, 1), Time(2015, 1, 1, 0, 0, 0, 1000, 7)}) {
        Time toUtc = refused;
        Time toLocal = refused;
        Quarn::LocalToUTC(toUtc);
        Quarn::UTCToLocal(toLocal);
        EXPECT_EQ(Text(toUtc), Text(refused));
        EXPECT_EQ(Text(toLocal), Text(refused));
    }
}

// ---- seconds since 1970

std::string Text(std::tm const& calendar)
{
    return ::Text(Time(&calendar));
}

// The moments of 2015 at which the zone changes its clocks.
std::vector<std::time_t> Changes()
{
    constexpr std::time_t start = 1420070400; // 2015-01-01
    constexpr std::time_t step = 6 * 3600;
    std::vector<std::time_t> changes;
    for (std::time_t moment = start; moment < start + 365 * 86400; moment += step) {
        std::time_t before = moment;
        std::time_t after = moment + step;
        if (OffsetAt(before) == OffsetAt(after)) {
            continue;
        }
        while (after - before > 1) {
            std::time_t const middle = before + (after - before) / 2;
            (OffsetAt(middle) == OffsetAt(moment) ? before : after) = middle;
        }
        changes.push_back(after);
    }
    return changes;
}

// Moments on both sides of each change, and all through the range of both systems.
std::vector<std::time_t> Moments()
{
    std::vector<std::time_t> moments = {86400, 1000000000, 2147483647, 2147483648, 4102444800, 32000000000};
    for (std::time_t moment = 1420070400; moment < 1420070400 + 366 * 86400; moment += 86400 * 5 + 3599) {
        moments.push_back(moment);
    }
    for (std::time_t const change : Changes()) {
        for (std::time_t distance = -4 * 3600; distance <= 4 * 3600; distance += 900) {
            for (std::time_t const second : {-1, 0, 1}) {
                moments.push_back(change + distance + second);
            }
        }
    }
    return moments;
}

TEST_F(LocalSeconds, SetLocalIsTheRuntimeLibrarys)
{
    for (std::time_t const moment : Moments()) {
        std::string const expected = Text(*std::localtime(&moment));
        Time time;
        time.SetLocal(moment);
        EXPECT_EQ(::Text(time), expected) << moment;
        EXPECT_EQ(::Text(Time(moment, false)), expected) << moment;
    }
}

TEST_F(LocalSeconds, SetUTCIsTheRuntimeLibrarys)
{
    for (std::time_t const moment : Moments()) {
        std::string const expected = Text(*std::gmtime(&moment));
        Time time;
        time.SetUTC(moment);
        EXPECT_EQ(::Text(time), expected) << moment;
        EXPECT_EQ(::Text(Time(moment, true)), expected) << moment;
    }
}

TEST_F(LocalSeconds, KeepWhatSecondsLack)
{
    Time time = TIME{3, (123U << 10U) | 456U};
    time.SetUTC(86400);
    EXPECT_EQ(::Text(time), "1970-01-02 00:00:00.123.456");
    EXPECT_EQ(TIME(time).High & 3U, 3U);
    time.SetLocal(1000000000);
    EXPECT_EQ(time.GetMilliSecond(), 123);
    EXPECT_EQ(time.GetMicroSecond(), 456);
    EXPECT_EQ(TIME(time).High & 3U, 3U);
    EXPECT_EQ(TIME(Time(1000000000, false)).Low & 0xFFFFFU, 0U);
}

TEST_F(LocalSeconds, TakeEveryInteger)
{
    Time expected;
    expected.SetLocal(std::int64_t{100000});
    Time time;
    time.SetLocal(100000);
    EXPECT_EQ(time, expected);
    time.SetLocal(100000U);
    EXPECT_EQ(time, expected);
    time.SetLocal(100000L);
    EXPECT_EQ(time, expected);
    time.SetLocal(100000LL);
    EXPECT_EQ(time, expected);
    time.SetLocal(0); // not the text, which would change nothing
    expected.SetLocal(std::int64_t{0});
    EXPECT_EQ(time, expected);
}

TEST_F(LocalSeconds, ComeBackButInTheHourThatIsRepeated)
{
    for (std::time_t const moment : Moments()) {
        Time const local(moment, false);
        // The moment with the same local time that standard time gives, where there are two.
        std::time_t expected = moment;
        for (std::time_t const change : Changes()) {
            std::time_t const back = static_cast<std::time_t>(OffsetAt(change - 1) - OffsetAt(change));
            if (back > 0 && moment < change && moment >= change - back) {
                expected = moment + back;
            }
        }
        EXPECT_EQ(local.Get_time_t(), expected) << ::Text(local);
        EXPECT_EQ(static_cast<std::int64_t>(local), expected) << ::Text(local);
    }
}

TEST_F(LocalSeconds, OfTheSkippedHourCountOnFromTheHourBefore)
{
    for (std::time_t const change : Changes()) {
        std::int64_t const skipped = OffsetAt(change) - OffsetAt(change - 1);
        for (std::int64_t second = 0; second < skipped; second += 60) {
            Time const wall(change + OffsetAt(change - 1) + second, true);
            EXPECT_EQ(wall.Get_time_t(), change - skipped + second) << ::Text(wall);
        }
    }
}

TEST_F(LocalSeconds, AreThoseOfTheRuntimeLibraryForTimesThatThereAreOnce)
{
    for (int month = 1; month <= 12; ++month) {
        Time const time(2015, static_cast<std::uint8_t>(month), 20, 12, 34, 56, 999, 999);
        std::tm calendar{};
        EXPECT_EQ(time.Get_time_t(), std::mktime(time.Get_tm(&calendar))) << ::Text(time);
    }
}

TEST_F(LocalSeconds, OfFieldsOutOfOrderAreNormalised)
{
    EXPECT_EQ(At(2015, 1, 31, 24).Get_time_t(), At(2015, 2, 1).Get_time_t());
    EXPECT_EQ(At(2015, 2, 30).Get_time_t(), At(2015, 3, 2).Get_time_t());
    EXPECT_EQ(At(2015, 13, 1).Get_time_t(), At(2016, 1, 1).Get_time_t());
    EXPECT_EQ(At(2015, 1, 0).Get_time_t(), At(2014, 12, 31).Get_time_t());
    EXPECT_EQ(At(2015, 1, 1, 0, 63, 63).Get_time_t(), At(2015, 1, 1, 1, 4, 3).Get_time_t());
}

} // namespace
