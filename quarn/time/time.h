// Quarn::Time: a calendar date and time of day, packed into two 32-bit words, High and Low, so that comparing
// the words compares the times. Years 0 to 65535; up to 1582-10-04 in the Julian calendar, from 1582-10-15 on
// in the Gregorian one. No operation reports an error: a field takes what it is given, and a value that is
// too wide for it spills into the fields above. Which zone a time is in is its owner's business. A plain
// value; one object belongs to one thread at a time. On a stream: High, then Low, 32 bits each,
// little-endian.
//
//     Quarn::Time start(2024, 3, 5, 23, 59, 59, 0, 0);
//     start += Quarn::TimeValue(0, 0, 0, 1, 0, 0);       // 2024-03-06 00:00:00
//     Quarn::string text = start.Format("%Y-%m-%d %H:%M:%S");
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"
#include "quarn/time/civil_day.h"

#include <concepts>
#include <cstdint>
#include <ctime>

namespace Quarn {

class TimeSpan;
class TimeValue;

// The plain form of a Time.
struct TIME
{
    std::uint32_t High; // year 16-31, month 12-15, date 7-11, hour 2-6; bits 0 and 1 are reserved
    std::uint32_t Low;  // minute 26-31, second 20-25, millisecond 10-19, microsecond 0-9
};

class QUARN_API Time
{
public:
    // The halves of the day.
    enum AMPM
    {
        AM = 0,
        PM = 1,
    };

    static Time const MinTime; // 0000-01-01 00:00:00
    static Time const MaxTime; // 32767-12-31 23:59:59.999999
    static Time const NoTime;  // both words 0, which is no date: "there is no time"

    // Year 0, month 1, date 1, 00:00:00.
    constexpr Time() noexcept = default;
    // Both words as they are.
    constexpr Time(TIME const& time) noexcept : m_data{time.High, time.Low} {}
    // As Set(); the reserved bits are 0.
    Time(std::uint16_t year, std::uint8_t month, std::uint8_t date, std::uint8_t hour, std::uint8_t minute,
         std::uint8_t second, std::uint16_t millisecond, std::uint16_t microsecond)
        : m_data{0, 0}
    {
        Set(year, month, date, hour, minute, second, millisecond, microsecond);
    }
    // As Setgm() on NoTime.
    Time(std::tm const* calendar);
    // As SetUTC (`utc`) or SetLocal on NoTime: where the seconds are refused, NoTime.
    Time(std::int64_t seconds, bool utc);

    // Both words as they are.
    operator TIME() const { return {m_data.High, m_data.Low}; }
    // As Get_time_t().
    operator std::int64_t() const { return Get_time_t(); }
    // As assignment.
    Time& MSIsWonderfull(Time const& other);

    // The fields as they are stored.
    std::uint16_t GetYear() const { return static_cast<std::uint16_t>(GetHigh(YearMask, YearShift)); }
    std::uint8_t GetMonth() const { return static_cast<std::uint8_t>(GetHigh(MonthMask, MonthShift)); }
    std::uint8_t GetDate() const { return static_cast<std::uint8_t>(GetHigh(DateMask, DateShift)); }
    std::uint8_t GetHour() const { return static_cast<std::uint8_t>(GetHigh(HourMask, HourShift)); }
    std::uint8_t GetMinute() const { return static_cast<std::uint8_t>(GetLow(MinuteMask, MinuteShift)); }
    std::uint8_t GetSecond() const { return static_cast<std::uint8_t>(GetLow(SecondMask, SecondShift)); }
    std::uint16_t GetMilliSecond() const { return static_cast<std::uint16_t>(GetLow(MilliMask, MilliShift)); }
    std::uint16_t GetMicroSecond() const { return static_cast<std::uint16_t>(GetLow(MicroMask, MicroShift)); }

    // The year without its thousands and hundreds, 100 where nothing is left: 24 for 2024, 1 for 2001, 100
    // for 1900 and 2000; years up to 100 as they are.
    std::uint16_t GetYear2() const;
    // The hour, from 13 on less 12: midnight is 0, noon 12.
    std::uint8_t GetHour12() const;
    // PM from noon on.
    AMPM GetAmPm() const { return GetHour() < 12 ? AM : PM; }

    // Each replaces one field, unchecked: bits of the value above the field's width are ORed into the fields
    // above it in the same word (above minute there is none: they are lost).
    void SetYear(std::uint16_t year) { SetHigh(year, YearMask, YearShift); }
    void SetMonth(std::uint8_t month) { SetHigh(month, MonthMask, MonthShift); }
    void SetDate(std::uint8_t date) { SetHigh(date, DateMask, DateShift); }
    void SetHour(std::uint8_t hour) { SetHigh(hour, HourMask, HourShift); }
    void SetMinute(std::uint8_t minute) { SetLow(minute, MinuteMask, MinuteShift); }
    void SetSecond(std::uint8_t second) { SetLow(second, SecondMask, SecondShift); }
    void SetMilliSecond(std::uint16_t millisecond) { SetLow(millisecond, MilliMask, MilliShift); }
    void SetMicroSecond(std::uint16_t microsecond) { SetLow(microsecond, MicroMask, MicroShift); }
    // Replaces all fields, in this order, each as its own operation does; the reserved bits stay.
    void Set(std::uint16_t year, std::uint8_t month, std::uint8_t date, std::uint8_t hour,
             std::uint8_t minute, std::uint8_t second, std::uint16_t millisecond, std::uint16_t microsecond)
    {
        // In one step: bits that spill go up, into fields that come before.
        m_data.High = (m_data.High & ReservedMask) | std::uint32_t{year} << YearShift |
                      std::uint32_t{month} << MonthShift | std::uint32_t{date} << DateShift |
                      std::uint32_t{hour} << HourShift;
        m_data.Low = std::uint32_t{minute} << MinuteShift | std::uint32_t{second} << SecondShift |
                     std::uint32_t{millisecond} << MilliShift | std::uint32_t{microsecond} << MicroShift;
    }

    // The Julian day of date, hour, minute and second: days since noon of -4712-01-01, so that midnight is a
    // half. 2000-01-01 00:00 is 2451544.5.
    double GetJulian() const
    {
        // As good as the quotient: no number of seconds comes near enough to a place where the sum with a day
        // of 1721025 and more is rounded up or down for the last bits of the part to count.
        constexpr double daysPerSecond = 1.0 / 86400;
        int const seconds = GetHour() * 3600 + GetMinute() * 60 + GetSecond();
        return detail::DayNumber(GetYear(), GetMonth(), GetDate()) - 0.5 + seconds * daysPerSecond;
    }
    // The reverse, to the nearest second. Reserved bits, millisecond and microsecond stay. The time of day
    // does not carry into the date: less than half a second before midnight is hour 24. Of a year outside 0
    // to 65535 the low 16 bits are stored. A number that is none or has no fraction left (2^53 and more)
    // changes nothing.
    Time& SetJulian(double julian)
    {
        constexpr double limit = 100'000'000;
        double const days = julian + 0.5;
        if (!(days >= 0 && days < limit)) {
            return SetFarJulian(days);
        }
        auto const day = static_cast<std::int32_t>(days);
        SetDay(detail::CivilDateIn(static_cast<std::uint32_t>(day)), days - day);
        return *this;
    }

    // Fills the record and returns it: year, month, date, hour, minute, second, the day of the week, and -1
    // for tm_isdst. tm_yday stays as it is, and the members that a system adds. Null does nothing.
    std::tm* Get_tm(std::tm* calendar) const;
    // Takes year, month, date, hour, minute and second; reserved bits, millisecond and microsecond stay.
    // Null does nothing.
    void Setgm(std::tm const* calendar);

    // The seconds since 1970-01-01 00:00 UTC, this time read as local time. An hour that the zone repeats is
    // its second, standard time; one that it skips counts on from the hour before it. Where the runtime
    // library has no answer (on Windows before 1970 and after 3000), -1.
    std::int64_t Get_time_t() const;
    // Both take year, month, date, hour, minute and second from such seconds, in UTC or in local time;
    // reserved bits, millisecond and microsecond stay. Where the runtime library refuses the seconds (on
    // Windows before 1970 and after 3000), nothing changes. Safe in several threads at once: one lock of the
    // whole process serves all conversions.
    void SetUTC(std::int64_t seconds);
    void SetLocal(std::int64_t seconds);
    // Does nothing.
    void SetLocal(char const* text);
    // So that no integer, and no 0, is ambiguous.
    template<std::integral T>
    void SetLocal(T seconds)
    {
        SetLocal(static_cast<std::int64_t>(seconds));
    }

    // Both as GetUTCTime and GetLocalTime below, for this time.
    void GetCurrentUTCTime();
    void GetCurrentLocalTime();
    // Both as LocalToUTC and UTCToLocal below, for this time.
    void ConvertToUTC();
    void ConvertToLocal();

    // The text of strftime for this time in the current locale, up to its first zero byte and at most 255
    // characters: a longer text is empty. The conversions are "dHmMyYpSbBaA%cIjUwWxXzZ"; another goes to
    // strftime as it stands. There is none for millisecond and microsecond. The zone is not known: "%z" and
    // "%Z" are empty on Linux, and the name of the process's zone on Windows. Outside the years 1970 to 3000,
    // and where a field is no part of a date, the systems differ; Windows may refuse the time, with an empty
    // text.
    string Format(string const& format) const;
    // Whether a letter of the conversions above follows each '%'. The second '%' of "%%" is looked at once
    // more as the beginning of the next: "%%d" is good, "100%%" is not.
    static bool VerifyFormatString(string const& format);
    // Does nothing.
    void DebugShowTime() const;

    // Equal are equal words; the order is that of High, then of Low.
    bool operator==(Time const& other) const
    {
        return m_data.Low == other.m_data.Low && m_data.High == other.m_data.High;
    }
    bool operator!=(Time const& other) const { return !(*this == other); }
    bool operator<(Time const& other) const
    {
        return m_data.High != other.m_data.High ? m_data.High < other.m_data.High
                                                : m_data.Low < other.m_data.Low;
    }
    bool operator>(Time const& other) const { return other < *this; }
    // Without these two the seconds of both would be compared.
    bool operator<=(Time const& other) const { return !(other < *this); }
    bool operator>=(Time const& other) const { return !(*this < other); }

    // The time so much later, by way of its distance from year 0. That distance has 32 bits of minutes: up to
    // the year 8166; beyond, it starts again. Reserved bits become 0.
    Time operator+(TimeValue const& duration) const;
    Time& operator+=(TimeValue const& duration);
    // The time whose distance from year 0 is the difference between this time's and the duration, whichever
    // is longer: never before year 0.
    Time operator-(TimeValue const& duration) const;
    Time& operator-=(TimeValue const& duration);
    // The distance between the two, whichever is later.
    TimeValue Subtract(Time const& other) const;

    // Both as SetLocal of Get_time_t() plus or minus the span, on NoTime: no fractions of a second are left.
    Time operator+(TimeSpan const& span) const;
    Time operator-(TimeSpan const& span) const;
    // The difference, or the sum, of the two Get_time_t().
    TimeSpan operator-(Time const& other) const;
    TimeSpan operator+(Time const& other) const;

private:
    struct TimeData
    {
        std::uint32_t High;
        std::uint32_t Low;
    };

    static constexpr std::uint32_t YearMask = 0xFFFF0000;
    static constexpr std::uint32_t MonthMask = 0x0000F000;
    static constexpr std::uint32_t DateMask = 0x00000F80;
    static constexpr std::uint32_t HourMask = 0x0000007C;
    static constexpr std::uint32_t ReservedMask = 0x00000003;
    static constexpr unsigned YearShift = 16;
    static constexpr unsigned MonthShift = 12;
    static constexpr unsigned DateShift = 7;
    static constexpr unsigned HourShift = 2;
    static constexpr std::uint32_t MinuteMask = 0xFC000000;
    static constexpr std::uint32_t SecondMask = 0x03F00000;
    static constexpr std::uint32_t MilliMask = 0x000FFC00;
    static constexpr std::uint32_t MicroMask = 0x000003FF;
    static constexpr unsigned MinuteShift = 26;
    static constexpr unsigned SecondShift = 20;
    static constexpr unsigned MilliShift = 10;
    static constexpr unsigned MicroShift = 0;

    constexpr Time(TimeData const& data) noexcept : m_data(data) {}
    TimeData const& GetTimeData() const { return m_data; }
    void SetTimeData(TimeData const& data) { m_data = data; }

    std::uint32_t GetHigh(std::uint32_t mask, unsigned shift) const { return (m_data.High & mask) >> shift; }
    std::uint32_t GetLow(std::uint32_t mask, unsigned shift) const { return (m_data.Low & mask) >> shift; }
    void SetHigh(std::uint32_t value, std::uint32_t mask, unsigned shift)
    {
        m_data.High = (m_data.High & ~mask) | value << shift;
    }
    void SetLow(std::uint32_t value, std::uint32_t mask, unsigned shift)
    {
        m_data.Low = (m_data.Low & ~mask) | value << shift;
    }

    // SetJulian of a day before 0, or one that takes more than 32 bits to compute.
    Time& SetFarJulian(double days);
    // A date and the part of the day that has passed.
    void SetDay(detail::CivilDay const& civil, double part)
    {
        constexpr unsigned secondsPerDay = 86400;
        double const rounded = part * secondsPerDay + 0.5;
        auto const second = static_cast<unsigned>(static_cast<int>(rounded));
        int date = civil.date;
        if (second == secondsPerDay) {
            // A part that differs from 1 by less than the sum can show belongs to the next date.
            date = static_cast<int>(date + part);
        }
        unsigned const minute = second / 60;
        Set(static_cast<std::uint16_t>(civil.year), static_cast<std::uint8_t>(civil.month),
            static_cast<std::uint8_t>(date), static_cast<std::uint8_t>(minute / 60),
            static_cast<std::uint8_t>(minute % 60), static_cast<std::uint8_t>(second % 60), GetMilliSecond(),
            GetMicroSecond());
    }

    TimeData m_data = {4224, 0};
};

// The moment of construction in UTC, to the millisecond.
class QUARN_API UTCTime : public Time
{
public:
    // As GetUTCTime sets it.
    UTCTime() { GetCurrentUTCTime(); }
};

// The same in local time.
class QUARN_API LocalTime : public Time
{
public:
    // As GetLocalTime sets it.
    LocalTime() { GetCurrentLocalTime(); }
};

// Both set all fields from the system's clock, in UTC or in local time, the microsecond to 0. The reserved
// bits stay.
QUARN_API void GetUTCTime(Time& time);
QUARN_API void GetLocalTime(Time& time);
// Both take local time to UTC and back, by the zone's distance to UTC that is in force now, whatever the
// date. The microsecond becomes 0, the reserved bits stay. What is no date from 1601 on, or is none
// afterwards, does not change.
QUARN_API void LocalToUTC(Time& time);
QUARN_API void UTCToLocal(Time& time);

} // namespace Quarn
