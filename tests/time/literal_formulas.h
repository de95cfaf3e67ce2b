// The conversions of times as they are documented, step by step in double arithmetic: what the library's
// shorter ways are compared with.
#pragma once

#include "quarn/time/time.h"
#include "quarn/time/time_value.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace literal {

inline std::uint32_t Low32(double value)
{
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
}

inline double Julian(Quarn::Time const& time)
{
    double year = time.GetYear();
    double month = time.GetMonth();
    double const date = time.GetDate();
    bool const isGregorian =
        year > 1582 || (year == 1582 && month > 10) || (year == 1582 && month == 10 && date >= 5);
    if (month <= 2) {
        year -= 1;
        month += 12;
    }
    double correction = 0;
    if (isGregorian) {
        double const century = std::floor(year / 100);
        correction = 2 - century + std::floor(century * 0.25);
    }
    double const seconds = time.GetHour() * 3600 + time.GetMinute() * 60 + time.GetSecond();
    return std::floor((month + 1) * 30.6001) + std::floor((year + 4716) * 365.25) + date + correction -
           1524.5 + seconds / 86400;
}

inline int Weekday(Quarn::Time const& time)
{
    return static_cast<int>(static_cast<std::int64_t>(Julian(time) + 1.5) % 7);
}

// `time` with the fields that follow from the Julian day.
inline Quarn::Time FromJulian(Quarn::Time time, double julian)
{
    double const x = julian + 0.5;
    double const day = std::floor(x);
    double const fraction = x - day;
    double a = day;
    if (day >= 2299161) {
        double const alpha = std::floor((day - 1867216.25) / 36524.25);
        a = day + 1 + alpha - std::floor(alpha * 0.25);
    }
    double const b = a + 1524;
    double const c = std::floor((b - 122.1) / 365.25);
    double const d = b - std::floor(c * 365.25);
    double const e = std::floor(d / 30.6001);
    double const date = std::floor(d - std::floor(e * 30.6001) + fraction);
    double const month = e < 14 ? e - 1 : e - 13;
    double const year = month > 2 ? c - 4716 : c - 4715;
    int const seconds = static_cast<int>(fraction * 86400 + 0.5);
    time.SetYear(static_cast<std::uint16_t>(Low32(year)));
    time.SetMonth(static_cast<std::uint8_t>(month));
    time.SetDate(static_cast<std::uint8_t>(date));
    time.SetHour(static_cast<std::uint8_t>(seconds / 3600));
    time.SetMinute(static_cast<std::uint8_t>(seconds / 60 % 60));
    time.SetSecond(static_cast<std::uint8_t>(seconds % 60));
    return time;
}

inline Quarn::TimeValue Distance(Quarn::Time const& time)
{
    double const x = (Julian(time) - 1721057.5) * 1440;
    double const minutes = std::ceil(x) - x < 0.00001 ? std::ceil(x) : std::floor(x);
    double const fraction =
        (time.GetMilliSecond() / 1000.0 + time.GetSecond() + time.GetMicroSecond() / 1000000.0) * 35791394.0 +
        0.5;
    return {Low32(minutes), Low32(fraction)};
}

inline Quarn::Time FromDistance(Quarn::TimeValue const& value)
{
    Quarn::Time time = FromJulian(Quarn::Time(), value.GetMinutes() / 1440.0 + 1721057.5);
    std::uint32_t const rest = value.GetFraction() % 35791394;
    int const milli = std::min(static_cast<int>(rest / 35791.394), 999);
    double const units = std::floor(milli * 35791.394);
    time.SetSecond(static_cast<std::uint8_t>(std::min(value.GetFraction() / 35791394, 59U)));
    time.SetMilliSecond(static_cast<std::uint16_t>(milli));
    time.SetMicroSecond(
        static_cast<std::uint16_t>(std::min(static_cast<int>((rest - units) / 35.791394), 999)));
    return time;
}

} // namespace literal
