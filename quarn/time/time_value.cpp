#include "quarn/time/time_value.h"

#include "quarn/time/civil_day.h"

#include <algorithm>

namespace Quarn {

namespace {

constexpr std::uint32_t MinutesPerDay = 1440;
// The number of the day 0000-01-01, at whose beginning a duration of 0 lies.
constexpr int FirstDay = 1721058;

// A number of seconds below a minute as a fraction.
std::uint32_t ToRoundedFraction(std::int64_t seconds, std::int64_t milliseconds, std::int64_t microseconds)
{
    double const value = static_cast<double>(milliseconds) / 1000.0 + static_cast<double>(seconds) +
                         static_cast<double>(microseconds) / 1000000.0;
    double const rounded = value * TimeValue::SecondValue + 0.5;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(rounded));
}

inline std::uint32_t ToFraction(std::int64_t seconds, std::int64_t milliseconds, std::int64_t microseconds)
{
    if (milliseconds == 0 && microseconds == 0 && seconds >= 0) {
        return static_cast<std::uint32_t>(seconds) * TimeValue::SecondValue;
    }
    return ToRoundedFraction(seconds, milliseconds, microseconds);
}

// The distance of a time from year 0. The minutes are those of (GetJulian() - JulianOffset) * JulianDivisor,
// in whole numbers: the Julian day's own rounding is far below the second that could make a difference.
inline TimeValue Distance(Time const& time)
{
    auto const days = static_cast<std::uint32_t>(
        detail::DayNumber(time.GetYear(), time.GetMonth(), time.GetDate()) - FirstDay);
    return {days * MinutesPerDay + time.GetHour() * 60U + time.GetMinute() + time.GetSecond() / 60U,
            ToFraction(time.GetSecond(), time.GetMilliSecond(), time.GetMicroSecond())};
}

struct Second
{
    std::uint32_t seconds;
    std::uint16_t milliseconds;
    std::uint16_t microseconds;
};

// `rest`: units of the fraction, less than a second.
void SetParts(Second& second, std::uint32_t rest)
{
    constexpr double most = 999.0;
    double const milliseconds = std::min(rest / TimeValue::MilliSecondValue, most);
    second.milliseconds = static_cast<std::uint16_t>(milliseconds);
    auto const units = static_cast<std::uint32_t>(second.milliseconds * TimeValue::MilliSecondValue);
    second.microseconds =
        static_cast<std::uint16_t>(std::min((rest - units) / TimeValue::MicroSecondValue, most));
}

inline Second FromFraction(std::uint32_t fraction)
{
    Second second{fraction / TimeValue::SecondValue, 0, 0};
    if (std::uint32_t const rest = fraction % TimeValue::SecondValue; rest != 0) {
        SetParts(second, rest);
    }
    return second;
}

// The time so long after year 0: the same as SetJulian(minutes / JulianDivisor + JulianOffset), which rounds
// to the nearest second.
inline Time TimeAfter(TimeValue const& distance)
{
    constexpr std::uint32_t lastSecond = 59;
    std::uint32_t const minutes = distance.GetMinutes();
    detail::CivilDay const civil = detail::CivilDateIn(minutes / MinutesPerDay + FirstDay);
    std::uint32_t const minute = minutes % MinutesPerDay;
    Second const second = FromFraction(distance.GetFraction());
    return {static_cast<std::uint16_t>(civil.year),
            static_cast<std::uint8_t>(civil.month),
            static_cast<std::uint8_t>(civil.date),
            static_cast<std::uint8_t>(minute / 60),
            static_cast<std::uint8_t>(minute % 60),
            static_cast<std::uint8_t>(std::min(second.seconds, lastSecond)),
            second.milliseconds,
            second.microseconds};
}

} // namespace

// Named once more, so that the library holds the constants for clients that take a reference to them.
// NOLINTBEGIN(readability-redundant-declaration)
constexpr std::uint32_t TimeValue::SecondValue;
constexpr std::uint32_t TimeValue::MinuteValue;
constexpr std::uint32_t TimeValue::MaxFractionValue;
constexpr double TimeValue::MilliSecondValue;
constexpr double TimeValue::MicroSecondValue;
constexpr std::uint16_t TimeValue::MinYear;
constexpr std::uint16_t TimeValue::MaxYear;
constexpr double TimeValue::JulianOffset;
constexpr double TimeValue::JulianDivisor;
// NOLINTEND(readability-redundant-declaration)

TimeValue& TimeValue::Set(Parse const& parts)
{
    std::int64_t const milliseconds = std::int64_t{parts.milliseconds} + parts.microseconds / 1000;
    std::int64_t const seconds = parts.seconds + milliseconds / 1000;
    std::int64_t const minutes = parts.minutes + seconds / 60;
    std::int64_t const hours = parts.hours + minutes / 60;
    std::int64_t const days = parts.days + hours / 24;
    m_minutes = static_cast<std::uint32_t>((days * 24 + hours % 24) * 60 + minutes % 60);
    m_fraction = ToFraction(seconds % 60, milliseconds % 1000, parts.microseconds % 1000);
    return *this;
}

TimeValue& TimeValue::Set(Time const& time)
{
    return *this = Distance(time);
}

TimeValue& TimeValue::Set(double days)
{
    return Set(Time().SetJulian(days + JulianOffset));
}

void TimeValue::ParseTime(Parse* parts) const
{
    if (parts == nullptr) {
        return;
    }
    Second const second = FromFraction(m_fraction);
    parts->days = static_cast<std::int32_t>(m_minutes / MinutesPerDay);
    parts->hours = static_cast<std::int32_t>(m_minutes % MinutesPerDay / 60);
    parts->minutes = static_cast<std::int32_t>(m_minutes % 60);
    parts->seconds = static_cast<std::int32_t>(second.seconds);
    parts->milliseconds = second.milliseconds;
    parts->microseconds = second.microseconds;
}

Time TimeValue::GetQuarnTime() const
{
    return TimeAfter(*this);
}

double TimeValue::GetJulianValue() const
{
    return GetQuarnTime().GetJulian() - TimeValue().GetQuarnTime().GetJulian();
}

TimeValue& TimeValue::Normalize()
{
    if (m_fraction >= MaxFractionValue) {
        ++m_minutes;
        m_fraction -= MaxFractionValue;
    }
    return *this;
}

TimeValue TimeValue::operator+(TimeValue const& other) const
{
    return TimeValue(m_minutes + other.m_minutes, m_fraction + other.m_fraction).Normalize();
}

TimeValue& TimeValue::operator+=(TimeValue const& other)
{
    return *this = *this + other;
}

TimeValue TimeValue::operator-(TimeValue const& other) const
{
    TimeValue const& larger = *this < other ? other : *this;
    TimeValue const& smaller = *this < other ? *this : other;
    TimeValue difference(larger.m_minutes - smaller.m_minutes, larger.m_fraction - smaller.m_fraction);
    if (larger.m_fraction < smaller.m_fraction) {
        --difference.m_minutes;
        difference.m_fraction += MaxFractionValue;
    }
    return difference;
}

TimeValue& TimeValue::operator-=(TimeValue const& other)
{
    return *this = *this - other;
}

TimeValue TimeValue::operator*(unsigned int n) const
{
    return Time().SetJulian(GetJulianValue() * n + JulianOffset);
}

// What times and durations make of each other stands here, so that the compiler sees all of it at once.

Time Time::operator+(TimeValue const& duration) const
{
    return TimeAfter(Distance(*this) + duration);
}

Time& Time::operator+=(TimeValue const& duration)
{
    return *this = *this + duration;
}

Time Time::operator-(TimeValue const& duration) const
{
    return TimeAfter(Distance(*this) - duration);
}

Time& Time::operator-=(TimeValue const& duration)
{
    return *this = *this - duration;
}

TimeValue Time::Subtract(Time const& other) const
{
    return Distance(*this) - Distance(other);
}

} // namespace Quarn
