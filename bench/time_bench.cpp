// Times of 1950 to 2099: to Julian days, parts of a day included, and back, durations added, times as text.
// Every peer starts from the fields of a time in its own form, or from the number of days, and ends with the
// same result; one operation is one time.
#include "quarn/time/time.h"
#include "quarn/time/time_value.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <time.h>
#ifdef QUARN_HAVE_ABSL
#include <absl/time/civil_time.h>
#include <absl/time/time.h>
#endif

namespace {

constexpr std::size_t count = 1024;
constexpr std::int64_t epoch = 2440588; // the Julian day that begins at noon of 1970-01-01

struct Fields
{
    int year, month, day, hour, minute, second;
    bool operator==(Fields const& other) const = default;
};

// What is added to each: 37 d 1:01:01.
constexpr std::int64_t added = 37 * 86400 + 3661;

// The dates, in every peer's own form.
struct Dates
{
    std::array<std::int64_t, count> seconds;
    std::array<double, count> julian; // days
    std::array<Fields, count> fields;
    std::array<Quarn::Time, count> quarn;
    std::array<std::tm, count> calendars;
#ifdef QUARN_HAVE_ABSL
    std::array<absl::CivilSecond, count> absl;
#endif
};

Fields FromSeconds(std::int64_t seconds)
{
    using namespace std::chrono;
    sys_seconds const time{std::chrono::seconds(seconds)};
    sys_days const day = floor<days>(time);
    year_month_day const civil{day};
    hh_mm_ss const clock{time - day};
    return {int{civil.year()},
            static_cast<int>(unsigned{civil.month()}),
            static_cast<int>(unsigned{civil.day()}),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
}

std::int64_t ToDays(Fields const& fields)
{
    using namespace std::chrono;
    return sys_days{year{fields.year} / fields.month / fields.day}.time_since_epoch().count();
}

std::int64_t ToSeconds(Fields const& fields)
{
    return ToDays(fields) * 86400 + fields.hour * 3600 + fields.minute * 60 + fields.second;
}

Fields Of(Quarn::Time const& time)
{
    return {time.GetYear(), time.GetMonth(),  time.GetDate(),
            time.GetHour(), time.GetMinute(), time.GetSecond()};
}

Fields Of(std::tm const& calendar)
{
    return {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday,
            calendar.tm_hour,        calendar.tm_min,     calendar.tm_sec};
}

#ifdef QUARN_HAVE_ABSL
Fields Of(absl::CivilSecond const& time)
{
    return {
        static_cast<int>(time.year()), time.month(), time.day(), time.hour(), time.minute(), time.second()};
}
#endif

Dates const& TheDates()
{
    static Dates const& dates = *[] {
        auto* const made = new Dates;
        std::mt19937_64 random(1);
        std::uniform_int_distribution<std::int64_t> seconds(-631152000, 4102444799);
        for (std::size_t i = 0; i < count; ++i) {
            made->seconds[i] = seconds(random);
            Fields const fields = FromSeconds(made->seconds[i]);
            made->fields[i] = fields;
            made->julian[i] =
                static_cast<double>(ToDays(fields) + epoch) - 0.5 +
                static_cast<double>(fields.hour * 3600 + fields.minute * 60 + fields.second) / 86400;
            made->quarn[i].Set(
                static_cast<std::uint16_t>(fields.year), static_cast<std::uint8_t>(fields.month),
                static_cast<std::uint8_t>(fields.day), static_cast<std::uint8_t>(fields.hour),
                static_cast<std::uint8_t>(fields.minute), static_cast<std::uint8_t>(fields.second), 0, 0);
            made->quarn[i].Get_tm(&made->calendars[i]);
#ifdef QUARN_HAVE_ABSL
            made->absl[i] = absl::CivilSecond(fields.year, fields.month, fields.day, fields.hour,
                                              fields.minute, fields.second);
#endif
        }
        return made;
    }();
    return dates;
}

// Measures `operation(i)` for each date, after it has been compared with the right result.
template<typename Operation, typename Expected>
void Measure(benchmark::State& state, Operation operation, Expected expected)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (!(operation(i) == expected(i))) {
            state.SkipWithError("wrong result");
            return;
        }
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(operation(i));
        i = (i + 1) % count;
    }
}

// ---- date and time to Julian day

double SecondOfDay(Fields const& fields)
{
    return fields.hour * 3600 + fields.minute * 60 + fields.second;
}

double JulianDay(std::size_t i)
{
    return TheDates().julian[i];
}

void ToJulianQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state, [&](std::size_t i) { return dates.quarn[i].GetJulian(); }, JulianDay);
}

void ToJulianChrono(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            Fields const& fields = dates.fields[i];
            return static_cast<double>(ToDays(fields) + epoch) - 0.5 + SecondOfDay(fields) / 86400;
        },
        JulianDay);
}

void ToJulianTimegm(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            std::tm calendar = dates.calendars[i];
            std::int64_t const seconds = ::timegm(&calendar) + epoch * 86400;
            return static_cast<double>(seconds / 86400) - 0.5 + static_cast<double>(seconds % 86400) / 86400;
        },
        JulianDay);
}

#ifdef QUARN_HAVE_ABSL
void ToJulianAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            absl::CivilSecond const& time = dates.absl[i];
            std::int64_t const day = absl::CivilDay(time) - absl::CivilDay(1970, 1, 1) + epoch;
            return static_cast<double>(day) - 0.5 +
                   static_cast<double>(time.hour() * 3600 + time.minute() * 60 + time.second()) / 86400;
        },
        JulianDay);
}
#endif

// ---- Julian day to date and time

Fields Original(std::size_t i)
{
    return TheDates().fields[i];
}

// A Julian day as days since 1970 and seconds, to the nearest.
struct DayAndSecond
{
    std::int64_t day;
    int second;
    std::int64_t Seconds() const { return day * 86400 + second; }
};

DayAndSecond Split(double julian)
{
    double const days = julian + 0.5;
    auto const day = static_cast<std::int64_t>(days);
    return {day - epoch, static_cast<int>((days - static_cast<double>(day)) * 86400 + 0.5)};
}

void FromJulianQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            Quarn::Time time;
            return Of(time.SetJulian(dates.julian[i]));
        },
        Original);
}

void FromJulianChrono(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state, [&](std::size_t i) { return FromSeconds(Split(dates.julian[i]).Seconds()); }, Original);
}

void FromJulianGmtime(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            std::time_t const seconds = Split(dates.julian[i]).Seconds();
            std::tm calendar;
            return Of(*::gmtime_r(&seconds, &calendar));
        },
        Original);
}

#ifdef QUARN_HAVE_ABSL
void FromJulianAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            DayAndSecond const split = Split(dates.julian[i]);
            absl::CivilDay const day = absl::CivilDay(1970, 1, 1) + split.day;
            return Fields{static_cast<int>(day.year()), day.month(),      day.day(), split.second / 3600,
                          split.second / 60 % 60,       split.second % 60};
        },
        Original);
}
#endif

// ---- adding a duration

Fields Later(std::size_t i)
{
    return FromSeconds(TheDates().seconds[i] + added);
}

void AddQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Quarn::TimeValue const duration(37, 1, 1, 1, 0, 0);
    Measure(
        state, [&](std::size_t i) { return Of(dates.quarn[i] + duration); }, Later);
}

void AddChrono(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state, [&](std::size_t i) { return FromSeconds(ToSeconds(dates.fields[i]) + added); }, Later);
}

void AddTimegm(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            std::tm calendar = dates.calendars[i];
            calendar.tm_sec += added;
            ::timegm(&calendar);
            return Of(calendar);
        },
        Later);
}

#ifdef QUARN_HAVE_ABSL
void AddAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state, [&](std::size_t i) { return Of(dates.absl[i] + added); }, Later);
}
#endif

// ---- text

std::string Text(std::size_t i)
{
    Fields const& fields = TheDates().fields[i];
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", fields.year, fields.month, fields.day,
                  fields.hour, fields.minute, fields.second);
    return text;
}

void FormatQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Quarn::string const format = "%Y-%m-%d %H:%M:%S";
    Measure(
        state, [&](std::size_t i) { return dates.quarn[i].Format(format); }, Text);
}

void FormatStrftime(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            char text[256];
            std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &dates.calendars[i]);
            return std::string(text);
        },
        Text);
}

void FormatSnprintf(benchmark::State& state)
{
    Measure(state, Text, Text);
}

#ifdef QUARN_HAVE_ABSL
void FormatAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Measure(
        state,
        [&](std::size_t i) {
            return absl::FormatTime("%Y-%m-%d %H:%M:%S", absl::FromCivil(dates.absl[i], absl::UTCTimeZone()),
                                    absl::UTCTimeZone());
        },
        Text);
}
#endif

BENCHMARK(ToJulianQuarn)->Name("date to Julian day/quarn");
BENCHMARK(ToJulianChrono)->Name("date to Julian day/std::chrono");
BENCHMARK(ToJulianTimegm)->Name("date to Julian day/timegm");
BENCHMARK(FromJulianQuarn)->Name("Julian day to date/quarn");
BENCHMARK(FromJulianChrono)->Name("Julian day to date/std::chrono");
BENCHMARK(FromJulianGmtime)->Name("Julian day to date/gmtime_r");
BENCHMARK(AddQuarn)->Name("time plus duration/quarn");
BENCHMARK(AddChrono)->Name("time plus duration/std::chrono");
BENCHMARK(AddTimegm)->Name("time plus duration/timegm");
BENCHMARK(FormatQuarn)->Name("time as text/quarn");
BENCHMARK(FormatStrftime)->Name("time as text/strftime");
BENCHMARK(FormatSnprintf)->Name("time as text/snprintf");
#ifdef QUARN_HAVE_ABSL
BENCHMARK(ToJulianAbsl)->Name("date to Julian day/absl");
BENCHMARK(FromJulianAbsl)->Name("Julian day to date/absl");
BENCHMARK(AddAbsl)->Name("time plus duration/absl");
BENCHMARK(FormatAbsl)->Name("time as text/absl");
#endif

} // namespace
