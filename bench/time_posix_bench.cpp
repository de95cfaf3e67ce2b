// The times by the C library's calendars, as far as the standard does not have them.
#include "bench/time_bench.h"

#include <array>
#include <cstdint>
#include <ctime>

#include <benchmark/benchmark.h>
#include <time.h>

namespace {

using Bench::Added;
using Bench::Epoch;
using Bench::Fields;
using Bench::JulianDay;
using Bench::Later;
using Bench::MeasureTimes;
using Bench::Original;
using Bench::Split;
using Bench::TheTimes;
using Bench::TimeCount;

using Calendars = std::array<std::tm, TimeCount>;

Calendars const& TheCalendars()
{
    static Calendars const& calendars = *[] {
        auto* const made = new Calendars{};
        for (std::size_t i = 0; i < TimeCount; ++i) {
            std::time_t const seconds = TheTimes().seconds[i];
            ::gmtime_r(&seconds, &(*made)[i]);
        }
        return made;
    }();
    return calendars;
}

Fields Of(std::tm const& calendar)
{
    return {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday,
            calendar.tm_hour,        calendar.tm_min,     calendar.tm_sec};
}

void ToJulianTimegm(benchmark::State& state)
{
    Calendars const& calendars = TheCalendars();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            std::tm calendar = calendars[i];
            std::int64_t const seconds = ::timegm(&calendar) + Epoch * 86400;
            return static_cast<double>(seconds / 86400) - 0.5 + static_cast<double>(seconds % 86400) / 86400;
        },
        JulianDay);
}

void FromJulianGmtime(benchmark::State& state)
{
    Bench::Times const& times = TheTimes();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            std::time_t const seconds = Split(times.julian[i]).Seconds();
            std::tm calendar;
            return Of(*::gmtime_r(&seconds, &calendar));
        },
        Original);
}

void AddTimegm(benchmark::State& state)
{
    Calendars const& calendars = TheCalendars();
    MeasureTimes(
        state,
        [&](std::size_t i) {
            std::tm calendar = calendars[i];
            calendar.tm_sec += Added;
            ::timegm(&calendar);
            return Of(calendar);
        },
        Later);
}

BENCHMARK(ToJulianTimegm)->Name("date to Julian day/timegm");
BENCHMARK(FromJulianGmtime)->Name("Julian day to date/gmtime_r");
BENCHMARK(AddTimegm)->Name("time plus duration/timegm");

} // namespace
