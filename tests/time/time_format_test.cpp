// Times as text, in the "C" locale and in German, and the check of formats.
#include "quarn/time/time.h"

#include "tests/german_locale.h"
#include "tests/time/time_text.h"

#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::TIME;
using Quarn::Time;

constexpr char letters[] = "dHmMyYpSbBaA%cIjUwWxXzZ";

Time const birthday(2024, 3, 5, 7, 8, 9, 123, 456); // a Tuesday

#if defined(_WIN32)
constexpr char march[] = "M\xE4rz";
#else
constexpr char march[] = "M\xC3\xA4rz";
#endif

// What the runtime library makes of a time.
std::string SystemText(char const* format, Time const& time = birthday)
{
    std::tm calendar{};
    time.Get_tm(&calendar);
    Time const day = At(time.GetYear(), time.GetMonth(), time.GetDate());
    calendar.tm_yday = static_cast<int>(day.GetJulian() - At(time.GetYear(), 1, 1).GetJulian());
    char text[256] = "";
    return std::strftime(text, sizeof text, format, &calendar) != 0 ? text : "";
}

// Mostly dates, most of them with fields in order.
Time RandomTime(std::mt19937& random)
{
    auto const below = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
    switch (random() % 8) {
    case 0:
        return TIME{static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
    case 1:
        return At(1969 + below(3), 12 * below(2), 1 + below(31), 23 + below(2), 59 + below(2), 59 + below(2));
    case 2:
        return At(2999 + below(3), 11 + below(3), 31 * below(2), below(24), below(60), below(60));
    default:
        return At(1970 + below(1031), 1 + below(12), 1 + below(31), below(24), below(60), below(60));
    }
}

// Conversions and other characters; one format in eight is near the longest text.
std::string RandomFormat(std::mt19937& random)
{
    std::string format;
    if (random() % 8 == 0) {
        format.assign(235 + random() % 22, '.');
    }
    for (unsigned part = random() % 9; part != 0; --part) {
        switch (random() % 8) {
        case 0:
            format += static_cast<char>(' ' + random() % ('%' - ' '));
            break;
        case 1:
            format += '%';
            format += letters[random() % 23];
            break;
        default:
            format += '%';
            format += "YmdHMS"[random() % 6];
            break;
        }
    }
    return format;
}

void ExpectSystemTexts(unsigned seed)
{
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        Time const time = RandomTime(random);
        std::string const format = RandomFormat(random);
        ASSERT_EQ(time.Format(format), SystemText(format.c_str(), time)) << format << ", " << Text(time);
    }
}

TEST(VerifyFormatString, TakesTextsWithoutConversions)
{
    EXPECT_TRUE(Time::VerifyFormatString(""));
    EXPECT_TRUE(Time::VerifyFormatString("plain text"));
}

TEST(VerifyFormatString, TakesTheTwentyThreeLettersAlone)
{
    std::string const accepted = letters;
    EXPECT_EQ(accepted.size(), 23U);
    for (int c = 0; c < 256; ++c) {
        char const format[] = {'%', static_cast<char>(c), 'x'};
        bool const isAccepted = c != 0 && accepted.find(static_cast<char>(c)) != std::string::npos;
        // Behind "%%", the second one begins the conversion "%x".
        EXPECT_EQ(Time::VerifyFormatString(Quarn::string(format, sizeof format)), isAccepted) << c;
    }
    EXPECT_TRUE(Time::VerifyFormatString("%Y-%m-%d %H:%M:%S"));
    EXPECT_FALSE(Time::VerifyFormatString("%Y-%Q"));
    EXPECT_FALSE(Time::VerifyFormatString("%5d"));
}

TEST(VerifyFormatString, RefusesALonePercentSign)
{
    EXPECT_FALSE(Time::VerifyFormatString("%"));
    EXPECT_FALSE(Time::VerifyFormatString("%d %"));
    EXPECT_FALSE(Time::VerifyFormatString("% d"));
}

TEST(VerifyFormatString, DeliberatelyReadsTheSecondSignOfAPairOnceMore)
{
    EXPECT_TRUE(Time::VerifyFormatString("%%d"));
    EXPECT_FALSE(Time::VerifyFormatString("100%%"));
    EXPECT_FALSE(Time::VerifyFormatString("%%"));
    EXPECT_FALSE(Time::VerifyFormatString("100%% or more"));
    EXPECT_TRUE(Time::VerifyFormatString("%%%d"));
    EXPECT_FALSE(Time::VerifyFormatString("%%%%"));
    EXPECT_FALSE(Time::VerifyFormatString("%%Q"));
}

TEST(VerifyFormatString, ReadsPastAZeroByte)
{
    EXPECT_FALSE(Time::VerifyFormatString(Quarn::string("%d\0%Q", 5)));
    EXPECT_TRUE(Time::VerifyFormatString(Quarn::string("%d\0%d", 5)));
    EXPECT_FALSE(Time::VerifyFormatString(Quarn::string("%\0d", 3)));
}

TEST(TimeFormat, OfEveryLetterInTheCLocale)
{
    EXPECT_EQ(birthday.Format("%Y-%m-%d %H:%M:%S"), "2024-03-05 07:08:09");
    EXPECT_EQ(birthday.Format("%y %I %p"), "24 07 AM");
    EXPECT_EQ(At(2024, 3, 5, 12).Format("%I %p"), "12 PM");
    EXPECT_EQ(At(2024, 3, 5, 0).Format("%I %p"), "12 AM");
    EXPECT_EQ(birthday.Format("%b %B %a %A"), "Mar March Tue Tuesday");
    EXPECT_EQ(birthday.Format("%x %X"), "03/05/24 07:08:09");
    EXPECT_EQ(birthday.Format("%w"), "2");
    EXPECT_EQ(At(2000, 1, 1).Format("%w"), "6");
    EXPECT_EQ(birthday.Format("%j"), "065");
    EXPECT_EQ(birthday.Format("%U %W"), "09 10");
    EXPECT_EQ(birthday.Format("%%d"), "%d");
    EXPECT_EQ(birthday.Format("plain"), "plain");
    EXPECT_EQ(birthday.Format(""), "");
}

TEST(TimeFormat, DateAndTimeOfTheCLocaleAreTheSystems)
{
    EXPECT_EQ(birthday.Format("%c"), SystemText("%c"));
}

TEST(TimeFormat, NeverShowsMillisecondsOrMicroseconds)
{
    Time const whole = At(2024, 3, 5, 7, 8, 9);
    for (char const letter : std::string(letters)) {
        Quarn::string const format(std::string("%") + letter);
        EXPECT_EQ(birthday.Format(format), whole.Format(format)) << letter;
    }
}

TEST(TimeFormat, OfAnyFormatAndTimeIsTheSystems)
{
    ExpectSystemTexts(21);
    for (char const* const format : {"%Y%", "%", "%Y %Ez", "\xE4 %Y", "%Y \xE4", "%-d %Y", "%EY", "%Od"}) {
        EXPECT_EQ(birthday.Format(format), SystemText(format)) << format;
    }
}

TEST(TimeFormat, OfAnyFormatAndTimeIsTheSystemsInGerman)
{
    GermanLocale const german;
    ASSERT_TRUE(german.Found()) << "no German locale";
    ExpectSystemTexts(22);
}

TEST(TimeFormat, InGerman)
{
    GermanLocale const german;
    ASSERT_TRUE(german.Found()) << "no German locale";
    EXPECT_EQ(birthday.Format("%A, %d. %B %Y"), std::string("Dienstag, 05. ") + march + " 2024");
    EXPECT_EQ(At(2024, 12, 24, 18, 30).Format("%a").substr(0, 2), "Di");
    EXPECT_EQ(At(2024, 12, 24, 18, 30).Format("%B %H:%M"), "Dezember 18:30");
    // How a date is abbreviated is the system's choice.
    for (char const* const format : {"%x", "%X", "%c", "%a %b", "%p"}) {
        EXPECT_EQ(birthday.Format(format), SystemText(format)) << format;
    }
    EXPECT_NE(birthday.Format("%x"), "03/05/24");
}

TEST(TimeFormat, DayAndWeekNumbersAreRightForEveryDay)
{
    using namespace std::chrono;
    sys_days const end{year{2101} / January / 1};
    for (sys_days day{year{1970} / January / 1}; day < end; day += days{1}) {
        year_month_day const civil{day};
        int const ofYear = static_cast<int>((day - sys_days{civil.year() / January / 1}).count());
        int const ofWeek = static_cast<int>(weekday{day}.c_encoding());
        Time const time = At(int{civil.year()}, static_cast<int>(unsigned{civil.month()}),
                             static_cast<int>(unsigned{civil.day()}));
        char expected[64];
        std::snprintf(expected, sizeof expected, "%03d %02d %02d %d", ofYear + 1, (ofYear + 7 - ofWeek) / 7,
                      (ofYear + 7 - (ofWeek + 6) % 7) / 7, ofWeek);
        ASSERT_EQ(time.Format("%j %U %W %w"), expected) << Text(time);
    }
}

TEST(TimeFormat, NumbersAreRightForRandomTimes)
{
    std::mt19937 random(11);
    auto const below = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
    for (int i = 0; i < 20000; ++i) {
        Time const time =
            At(1970 + below(1031), 1 + below(12), 1 + below(28), below(24), below(60), below(60));
        char expected[64];
        std::snprintf(expected, sizeof expected, "%04d-%02d-%02d %02d:%02d:%02d %02d/%02d/%02d %02d",
                      time.GetYear(), time.GetMonth(), time.GetDate(), time.GetHour(), time.GetMinute(),
                      time.GetSecond(), time.GetMonth(), time.GetDate(), time.GetYear() % 100,
                      (time.GetHour() + 11) % 12 + 1);
        ASSERT_EQ(time.Format("%Y-%m-%d %H:%M:%S %x %I"), expected);
    }
}

TEST(TimeFormat, TextUpTo255CharactersComesWhole)
{
    EXPECT_EQ(birthday.Format(Quarn::string(251, 'x') + "%Y"), Quarn::string(251, 'x') + "2024");
    EXPECT_EQ(birthday.Format(Quarn::string(255, 'x')), Quarn::string(255, 'x'));
}

TEST(TimeFormat, TextOver255CharactersIsDeliberatelyEmpty)
{
    EXPECT_EQ(birthday.Format(Quarn::string(252, 'x') + "%Y"), "");
    EXPECT_EQ(birthday.Format(Quarn::string(256, 'x')), "");
    EXPECT_EQ(birthday.Format(Quarn::string(1000000, 'x')), "");
    Quarn::string many;
    for (int i = 0; i < 100; ++i) {
        many += "%A ";
    }
    EXPECT_EQ(birthday.Format(many), "");
}

TEST(TimeFormat, EndsAtAZeroByte)
{
    EXPECT_EQ(birthday.Format(Quarn::string("%Y\0%m", 5)), "2024");
}

// Every value that each field can hold, with every accepted conversion: what comes is at most 255 characters.
TEST(TimeFormat, RendersEveryAcceptedFormatForEveryRepresentableTime)
{
    Quarn::string all;
    for (char const letter : std::string(letters)) {
        all += '%';
        all += letter;
        all += ' ';
    }
    std::vector<Time> times = {Time::NoTime, Time::MinTime, Time::MaxTime, TIME{0xFFFFFFFF, 0xFFFFFFFF}};
    for (int year : {0, 1, 999, 1000, 1582, 1899, 1900, 1969, 1970, 2038, 3000, 9999, 10000, 32767, 65535}) {
        for (int month = 0; month < 16; ++month) {
            for (int date = 0; date < 32; ++date) {
                times.push_back(At(year, month, date, (month + date) % 32, date * 2, date * 2));
            }
        }
    }
    for (int hour = 0; hour < 32; ++hour) {
        for (int minute = 0; minute < 64; ++minute) {
            times.push_back(At(2024, 3, 5, hour, minute, minute));
        }
    }
    for (Time const& time : times) {
        ASSERT_LE(time.Format(all).size(), 255U) << Text(time);
    }
    for (std::size_t i = 0; i < times.size(); i += 7) {
        for (char const letter : std::string(letters)) {
            Quarn::string const format(std::string("%") + letter + "%%d"); // "%%d" checks what follows "%%"
            ASSERT_TRUE(Time::VerifyFormatString(format));
            ASSERT_LE(times[i].Format(format).size(), 255U) << Text(times[i]);
        }
    }
}

TEST(TimeFormat, RendersRandomAcceptedFormatsForRandomWords)
{
    std::mt19937 random(12);
    for (int i = 0; i < 20000; ++i) {
        Quarn::string format;
        for (unsigned part = random() % 12; part != 0; --part) {
            format += random() % 3 == 0 ? '-' : '%';
            format += letters[random() % 23];
        }
        Time const time = TIME{static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
        ASSERT_LE(time.Format(format).size(), 255U) << format;
    }
}

TEST(TimeFormat, TakesFormatsThatItsCheckRefuses)
{
    // What comes of them is the runtime library's.
    for (char const* const format : {"%", "%Q", "%5", "%E", "%O", "%-d", "%100000000000d", "%\xFF", "a%"}) {
        EXPECT_FALSE(Time::VerifyFormatString(format)) << format;
        EXPECT_LE(birthday.Format(format).size(), 255U) << format;
        EXPECT_LE(Time::NoTime.Format(format).size(), 255U) << format;
    }
}

} // namespace
