// The times by Boost's dates and times. Its texts have a 'T' between date and time, which is made a blank.
#include "bench/time_bench.h"

#include <vector>

#include <boost/date_time/posix_time/posix_time.hpp>

namespace {

namespace pt = boost::posix_time;
using Bench::Fields;
using boost::gregorian::date;

Fields Of(date const& day, int second)
{
    auto const civil = day.year_month_day();
    return {civil.year, civil.month.as_number(), civil.day, second / 3600, second / 60 % 60, second % 60};
}

std::vector<pt::ptime> const& Times()
{
    static std::vector<pt::ptime> const times = [] {
        std::vector<pt::ptime> made;
        for (Fields const& fields : Bench::TheTimes().fields) {
            made.emplace_back(date(static_cast<unsigned short>(fields.year),
                                   static_cast<unsigned short>(fields.month),
                                   static_cast<unsigned short>(fields.day)),
                              pt::time_duration(fields.hour, fields.minute, fields.second));
        }
        return made;
    }();
    return times;
}

// From the fields, as the other peers: a date is a day's number already.
void ToJulian(benchmark::State& state)
{
    Bench::Times const& times = Bench::TheTimes();
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            Fields const& fields = times.fields[i];
            date const day(static_cast<unsigned short>(fields.year),
                           static_cast<unsigned short>(fields.month),
                           static_cast<unsigned short>(fields.day));
            return Bench::ToJulian(std::int64_t{day.julian_day()} - Bench::Epoch, fields.SecondOfDay());
        },
        Bench::JulianDay);
}

void FromJulian(benchmark::State& state)
{
    Bench::Times const& times = Bench::TheTimes();
    date const epoch(1970, 1, 1);
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            Bench::DayAndSecond const split = Bench::Split(times.julian[i]);
            return Of(epoch + boost::gregorian::days(split.day), split.second);
        },
        Bench::Original);
}

void Add(benchmark::State& state)
{
    std::vector<pt::ptime> const& times = Times();
    pt::time_duration const duration = pt::seconds(Bench::Added);
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            pt::ptime const later = times[i] + duration;
            return Of(later.date(), static_cast<int>(later.time_of_day().total_seconds()));
        },
        Bench::Later);
}

void Format(benchmark::State& state)
{
    std::vector<pt::ptime> const& times = Times();
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            std::string text = pt::to_iso_extended_string(times[i]);
            text[10] = ' ';
            return text;
        },
        Bench::Text);
}

BENCHMARK(ToJulian)->Name("date to Julian day/boost::gregorian");
BENCHMARK(FromJulian)->Name("Julian day to date/boost::gregorian");
BENCHMARK(Add)->Name("time plus duration/boost::posix_time");
BENCHMARK(Format)->Name("time as text/boost::posix_time");

} // namespace
