// The 1,024 times of 1950 to 2099 that every peer computes with, and what has to come of them.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

namespace Bench {

inline constexpr std::size_t TimeCount = 1024;
inline constexpr std::int64_t Epoch = 2440588; // the Julian day that begins at noon of 1970-01-01

// What is added to each: 37 d 1:01:01.
inline constexpr std::int64_t Added = 37 * 86400 + 3661;

struct Fields
{
    int year, month, day, hour, minute, second;
    bool operator==(Fields const& other) const = default;
    int SecondOfDay() const { return hour * 3600 + minute * 60 + second; }
};

inline Fields FromSeconds(std::int64_t seconds)
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

inline std::int64_t ToDays(Fields const& fields)
{
    using namespace std::chrono;
    return sys_days{year{fields.year} / fields.month / fields.day}.time_since_epoch().count();
}

// The Julian day of so many days since 1970 and a second of that day.
inline double ToJulian(std::int64_t days, int second)
{
    return static_cast<double>(days + Epoch) - 0.5 + static_cast<double>(second) / 86400;
}

// A Julian day as days since 1970 and seconds, to the nearest.
struct DayAndSecond
{
    std::int64_t day;
    int second;
    std::int64_t Seconds() const { return day * 86400 + second; }
};

inline DayAndSecond Split(double julian)
{
    double const days = julian + 0.5;
    auto const day = static_cast<std::int64_t>(days);
    return {day - Epoch, static_cast<int>((days - static_cast<double>(day)) * 86400 + 0.5)};
}

struct Times
{
    std::array<std::int64_t, TimeCount> seconds;
    std::array<double, TimeCount> julian; // days
    std::array<Fields, TimeCount> fields;
};

inline Times const& TheTimes()
{
    static Times const& times = *[] {
        auto* const made = new Times;
        std::mt19937_64 random(1);
        std::uniform_int_distribution<std::int64_t> seconds(-631152000, 4102444799);
        for (std::size_t i = 0; i < TimeCount; ++i) {
            made->seconds[i] = seconds(random);
            Fields const fields = FromSeconds(made->seconds[i]);
            made->fields[i] = fields;
            made->julian[i] = ToJulian(ToDays(fields), fields.SecondOfDay());
        }
        return made;
    }();
    return times;
}

// What each operation makes of the i-th time.

inline double JulianDay(std::size_t i)
{
    return TheTimes().julian[i];
}

inline Fields Original(std::size_t i)
{
    return TheTimes().fields[i];
}

inline Fields Later(std::size_t i)
{
    return FromSeconds(TheTimes().seconds[i] + Added);
}

inline std::string Text(std::size_t i)
{
    Fields const& fields = TheTimes().fields[i];
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", fields.year, fields.month, fields.day,
                  fields.hour, fields.minute, fields.second);
    return text;
}

// Measures `operation(i)` for each time, after it has been compared with the right result.
template<typename Operation, typename Expected>
void MeasureTimes(benchmark::State& state, Operation operation, Expected expected)
{
    for (std::size_t i = 0; i < TimeCount; ++i) {
        if (!(operation(i) == expected(i))) {
            state.SkipWithError("wrong result");
            return;
        }
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(operation(i));
        i = (i + 1) % TimeCount;
    }
}

} // namespace Bench
