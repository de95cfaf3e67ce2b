// Quarn::TimeValue: a duration of whole minutes and a fraction of a minute, 32 bits each; also the distance
// of a time from 0000-01-01 00:00. It is never negative: differences are absolute, and minutes count modulo
// 2^32 (8166 years). No operation reports an error. A plain value; one object belongs to one thread at a
// time. In a record: minutes, then fraction, 32 bits each, little-endian.
//
//     Quarn::TimeValue pause(0, 0, 1, 30, 0, 0);
//     pause.GetMinutes();                               // 1
//     pause.GetFraction();                              // 30 * Quarn::TimeValue::SecondValue
#pragma once

#include "quarn/export.h"
#include "quarn/time/time.h"

#include <cstdint>

namespace Quarn {

class istream;
class ostream;

// The plain form of a TimeValue.
struct TIMEVALUE
{
    std::uint32_t Minutes;  // whole minutes
    std::uint32_t Fraction; // of a minute, see TimeValue::MinuteValue
};

class QUARN_API TimeValue
{
public:
    // A duration in parts, which may be out of their usual range and negative.
    struct Parse
    {
        std::int32_t days;         // of 24 hours
        std::int32_t hours;        // 0 to 23 from ParseTime
        std::int32_t minutes;      // 0 to 59 from ParseTime
        std::int32_t seconds;      // 0 to 59 from ParseTime where the fraction is in order
        std::int32_t milliseconds; // 0 to 999 from ParseTime
        std::int32_t microseconds; // 0 to 999 from ParseTime
    };

    // How many units of the fraction these are.
    static constexpr std::uint32_t SecondValue = 35791394;
    static constexpr std::uint32_t MinuteValue = 2147483640;
    static constexpr std::uint32_t MaxFractionValue = 2147483640; // a fraction in order is below it
    static constexpr double MilliSecondValue = 35791.394;
    static constexpr double MicroSecondValue = 35.791394;
    // These two are the years meant for distances; nothing checks them.
    static constexpr std::uint16_t MinYear = 0;
    static constexpr std::uint16_t MaxYear = 8000;
    static constexpr double JulianOffset = 1721057.5; // the Julian day of 0000-01-01 00:00
    static constexpr double JulianDivisor = 1440.0;   // minutes in a day

    TimeValue() = default;
    // Both words as they are, in order or not.
    TimeValue(std::uint32_t minutes, std::uint32_t fraction) : m_minutes(minutes), m_fraction(fraction) {}
    TimeValue(TIMEVALUE const& value) : TimeValue(value.Minutes, value.Fraction) {}
    // As Set() of the same.
    TimeValue(Parse const& parts) { Set(parts); }
    TimeValue(std::int32_t days, std::int32_t hours, std::int32_t minutes, std::int32_t seconds,
              std::int32_t milliseconds, std::int32_t microseconds)
    {
        Set(Parse{days, hours, minutes, seconds, milliseconds, microseconds});
    }
    TimeValue(Time const& time) { Set(time); }
    TimeValue(double days) { Set(days); }

    // Both words as they are.
    operator TIMEVALUE() const { return {m_minutes, m_fraction}; }

    // The sum of the parts, rounded to a unit of the fraction. Minutes below 0, and a fraction below 0, count
    // modulo 2^32.
    TimeValue& Set(Parse const& parts);
    // The distance of `time` from year 0; seconds of 60 and more count in the minutes and in the fraction.
    TimeValue& Set(Time const& time);
    // As many days, to the nearest second, by way of Time::SetJulian.
    TimeValue& Set(double days);

    // The whole minutes.
    std::uint32_t GetMinutes() const { return m_minutes; }
    // Another name for the minutes, the one that dumps use.
    std::uint32_t GetMantissa() const { return m_minutes; }
    // The fraction of a minute, in order below MaxFractionValue.
    std::uint32_t GetFraction() const { return m_fraction; }

    // The duration in parts. Milliseconds and microseconds are cut off, not rounded: what Set made of 1 ms
    // comes back as 999 µs. Null does nothing.
    void ParseTime(Parse* parts) const;
    // The time that is so long after 0000-01-01 00:00; the fraction is cut off at the microsecond, and at the
    // end of the minute.
    Time GetQuarnTime() const;
    // The duration in days, to the whole second.
    double GetJulianValue() const;

    // The sum; a fraction of a minute or more carries once.
    TimeValue operator+(TimeValue const& other) const;
    TimeValue& operator+=(TimeValue const& other);
    // The absolute difference.
    TimeValue operator-(TimeValue const& other) const;
    TimeValue& operator-=(TimeValue const& other);
    // As many times the duration, by way of GetJulianValue: in whole seconds, the fraction of a second is
    // dropped before. A product beyond the range of Time::SetJulian is 0.
    TimeValue operator*(unsigned int n) const;

    // Equal are equal words.
    bool operator==(TimeValue const& other) const
    {
        return m_minutes == other.m_minutes && m_fraction == other.m_fraction;
    }
    // False only where both words of this duration equal the other's minutes; so two equal durations, too,
    // are unequal here unless their words are the same number. Use !(a == b).
    bool operator!=(TimeValue const& other) const
    {
        return m_minutes != other.m_minutes || m_fraction != other.m_minutes;
    }
    // These four look at the minutes first, then at the fraction.
    bool operator<(TimeValue const& other) const
    {
        return m_minutes != other.m_minutes ? m_minutes < other.m_minutes : m_fraction < other.m_fraction;
    }
    bool operator<=(TimeValue const& other) const { return !(other < *this); }
    bool operator>(TimeValue const& other) const { return other < *this; }
    bool operator>=(TimeValue const& other) const { return !(*this < other); }

private:
    TimeValue& Normalize();

    std::uint32_t m_minutes = 0;
    std::uint32_t m_fraction = 0;
};

// Reads minutes, then fraction. The value changes only where both are there.
QUARN_API istream& operator>>(istream& stream, TimeValue& value);
// Writes minutes, then fraction; or dumps the label and the lines "Mantissa" and "Fraction", indented by 4.
QUARN_API ostream& dump(ostream& stream, string label, TimeValue const& value);

} // namespace Quarn
