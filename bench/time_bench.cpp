// Times of 1950 to 2099: to Julian days, parts of a day included, and back, durations added, times as text.
// Every peer starts from the fields of a time in its own form, or from the number of days, and ends with the
// same result; one operation is one time.
#include "bench/time_bench.h"

#include "quarn/time/time.h"
#include "quarn/time/time_value.h"

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

#include <benchmark/benchmark.h>
#ifdef QUARN_HAVE_ABSL
#include <absl/time/civil_time.h>
#include <absl/time/time.h>
#endif

namespace {

using Bench::Added;
using Bench::DayAndSecond;
using Bench::Epoch;
using Bench::Fields;
using Bench::FromSeconds;
using Bench::JulianDay;
using Bench::Later;
using Bench::MeasureTimes;
using Bench::Original;
using Bench::Split;
using Bench::Text;
using Bench::TheTimes;
using Bench::TimeCount;
using Bench::ToDays;
using Bench::ToJulian;

// The dates, in every peer's own form.
struct Dates
{
    std::array<Quarn::Time, TimeCount> quarn;
    std::array<std::tm, TimeCount> calendars;
#ifdef QUARN_HAVE_ABSL
    std::array<absl::CivilSecond, TimeCount> absl;
#endif
};

std::int64_t ToSeconds(Fields const& fields)
{
    return ToDays(fields) * 86400 + fields.hour * 3600 + fields.minute * 60 + fields.second;
}

Fields Of(Quarn::Time const& time)
{
    return {time.GetYear(), time.GetMonth(),  time.GetDate(),
            time.GetHour(), time.GetMinute(), time.GetSecond()};
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
        for (std::size_t i = 0; i < TimeCount; ++i) {
            Fields const& fields = TheTimes().fields[i];
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

// ---- date and time to Julian day

void ToJulianQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    MeasureTimes(
        state, [&](std::size_t i) { return dates.quarn[i].GetJulian(); }, JulianDay);
}

void ToJulianChrono(benchmark::State& state)
{
    Bench::Times const& times = TheTimes();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            Fields const& fields = times.fields[i];
            return ToJulian(ToDays(fields), fields.SecondOfDay());
        },
        JulianDay);
}

#ifdef QUARN_HAVE_ABSL
void ToJulianAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            absl::CivilSecond const& time = dates.absl[i];
            std::int64_t const day = absl::CivilDay(time) - absl::CivilDay(1970, 1, 1) + Epoch;
            return static_cast<double>(day) - 0.5 +
                   static_cast<double>(time.hour() * 3600 + time.minute() * 60 + time.second()) / 86400;
        },
        JulianDay);
}
#endif

// ---- Julian day to date and time

void FromJulianQuarn(benchmark::State& state)
{
    Bench::Times const& times = TheTimes();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            Quarn::Time time;
            return Of(time.SetJulian(times.julian[i]));
        },
        Original);
}

void FromJulianChrono(benchmark::State& state)
{
    Bench::Times const& times = TheTimes();
    MeasureTimes(
        state, [&](std::size_t i) { return FromSeconds(Split(times.julian[i]).Seconds()); }, Original);
}

#ifdef QUARN_HAVE_ABSL
void FromJulianAbsl(benchmark::State& state)
{
    Bench::Times const& times = TheTimes();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            DayAndSecond const split = Split(times.julian[i]);
            absl::CivilDay const day = absl::CivilDay(1970, 1, 1) + split.day;
            return Fields{static_cast<int>(day.year()), day.month(),      day.day(), split.second / 3600,
                          split.second / 60 % 60,       split.second % 60};
        },
        Original);
}
#endif

// ---- adding a duration

void AddQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Quarn::TimeValue const duration(37, 1, 1, 1, 0, 0);
    MeasureTimes(
        state, [&](std::size_t i) { return Of(dates.quarn[i] + duration); }, Later);
}

void AddChrono(benchmark::State& state)
{
    Bench::Times const& times = TheTimes();
    MeasureTimes(
        state, [&](std::size_t i) { return FromSeconds(ToSeconds(times.fields[i]) + Added); }, Later);
}

#ifdef QUARN_HAVE_ABSL
void AddAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    MeasureTimes(
        state, [&](std::size_t i) { return Of(dates.absl[i] + Added); }, Later);
}
#endif

// ---- text

void FormatQuarn(benchmark::State& state)
{
    Dates const& dates = TheDates();
    Quarn::string const format = "%Y-%m-%d %H:%M:%S";
    MeasureTimes(
        state, [&](std::size_t i) { return dates.quarn[i].Format(format); }, Text);
}

void FormatStrftime(benchmark::State& state)
{
    Dates const& dates = TheDates();
    MeasureTimes(
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
    MeasureTimes(state, Text, Text);
}

#ifdef QUARN_HAVE_ABSL
void FormatAbsl(benchmark::State& state)
{
    Dates const& dates = TheDates();
    MeasureTimes(
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
BENCHMARK(FromJulianQuarn)->Name("Julian day to date/quarn");
BENCHMARK(FromJulianChrono)->Name("Julian day to date/std::chrono");
BENCHMARK(AddQuarn)->Name("time plus duration/quarn");
BENCHMARK(AddChrono)->Name("time plus duration/std::chrono");
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
