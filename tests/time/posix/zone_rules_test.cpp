// Zones with known rules, chosen by the test itself. Of the zone data only rules of 2015 are used, which no
// longer change.
#include "quarn/time/time.h"

#include "tests/time/time_text.h"

#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

namespace {

using Quarn::Time;

class Zone
{
public:
    explicit Zone(char const* name)
    {
        if (char const* const former = ::getenv("TZ")) {
            m_former = former;
        }
        ::setenv("TZ", name, 1);
    }
    Zone(Zone const&) = delete;
    Zone& operator=(Zone const&) = delete;
    ~Zone()
    {
        if (m_former) {
            ::setenv("TZ", m_former->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

private:
    std::optional<std::string> m_former;
};

std::string Local(std::int64_t seconds)
{
    return Text(Time(seconds, false)).substr(0, 19);
}

TEST(ZoneRules, Utc)
{
    Zone const zone("UTC");
    EXPECT_EQ(Local(1427590800), "2015-03-29 01:00:00");
    EXPECT_EQ(At(2015, 3, 29, 1).Get_time_t(), 1427590800);
}

TEST(ZoneRules, Berlin)
{
    Zone const zone("Europe/Berlin");
    EXPECT_EQ(Local(1427590799), "2015-03-29 01:59:59");
    EXPECT_EQ(Local(1427590800), "2015-03-29 03:00:00");
    EXPECT_EQ(Local(1445734799), "2015-10-25 02:59:59");
    EXPECT_EQ(Local(1445734800), "2015-10-25 02:00:00");
    EXPECT_EQ(At(2015, 3, 29, 1, 59, 59).Get_time_t(), 1427590799);
    EXPECT_EQ(At(2015, 3, 29, 3).Get_time_t(), 1427590800);
    EXPECT_EQ(At(2015, 3, 29, 2, 30).Get_time_t(), 1427589000); // skipped: 01:30
    EXPECT_EQ(At(2015, 10, 25, 1, 59, 59).Get_time_t(), 1445731199);
    EXPECT_EQ(At(2015, 10, 25, 2, 30).Get_time_t(), 1445736600); // repeated: the second one
    EXPECT_EQ(At(2015, 10, 25, 3).Get_time_t(), 1445738400);
}

TEST(ZoneRules, Kolkata)
{
    Zone const zone("Asia/Kolkata");
    EXPECT_EQ(Local(1427590800), "2015-03-29 06:30:00");
    EXPECT_EQ(Local(1445734800), "2015-10-25 06:30:00");
    EXPECT_EQ(At(2015, 3, 29, 6, 30).Get_time_t(), 1427590800);
}

TEST(ZoneRules, StJohns)
{
    Zone const zone("America/St_Johns");
    EXPECT_EQ(Local(1425792599), "2015-03-08 01:59:59");
    EXPECT_EQ(Local(1425792600), "2015-03-08 03:00:00");
    EXPECT_EQ(Local(1446352199), "2015-11-01 01:59:59");
    EXPECT_EQ(Local(1446352200), "2015-11-01 01:00:00");
    EXPECT_EQ(At(2015, 3, 8, 2, 30).Get_time_t(), 1425790800);  // skipped: 01:30
    EXPECT_EQ(At(2015, 11, 1, 1, 30).Get_time_t(), 1446354000); // repeated: the second one
}

TEST(ZoneRules, LordHoweShiftsByHalfAnHour)
{
    Zone const zone("Australia/Lord_Howe");
    EXPECT_EQ(Local(1428159599), "2015-04-05 01:59:59");
    EXPECT_EQ(Local(1428159600), "2015-04-05 01:30:00");
    EXPECT_EQ(Local(1443886199), "2015-10-04 01:59:59");
    EXPECT_EQ(Local(1443886200), "2015-10-04 02:30:00");
    EXPECT_EQ(At(2015, 4, 5, 1, 45).Get_time_t(), 1428160500);  // repeated: the second one
    EXPECT_EQ(At(2015, 10, 4, 2, 15).Get_time_t(), 1443885300); // skipped: 01:45
}

TEST(ZoneRules, SecondsBefore1970AreTimesToo)
{
    Zone const zone("UTC");
    EXPECT_EQ(Local(-1), "1969-12-31 23:59:59");
    EXPECT_EQ(At(1969, 12, 31, 23, 59, 59).Get_time_t(), -1);
    EXPECT_EQ(At(1601, 1, 1).Get_time_t(), -11644473600);
    EXPECT_EQ(Local(253402300799), "9999-12-31 23:59:59");
}

TEST(ZoneRules, AnswerDoesNotDependOnEarlierQuestions)
{
    Zone const zone("Europe/Berlin");
    for (int month : {1, 7, 1, 7}) {
        (void)At(2015, month, 1).Get_time_t();
        EXPECT_EQ(At(2015, 10, 25, 2, 30).Get_time_t(), 1445736600);
        EXPECT_EQ(At(2015, 3, 29, 2, 30).Get_time_t(), 1427589000);
    }
}

} // namespace
