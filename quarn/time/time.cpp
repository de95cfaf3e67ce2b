#include "quarn/time/time.h"

#include <cmath>

namespace Quarn {

namespace {

constexpr int SecondsPerDay = 86400;

int SecondOfDay(Time const& time)
{
    return time.GetHour() * 3600 + time.GetMinute() * 60 + time.GetSecond();
}

int DayOf(Time const& time)
{
    return detail::DayNumber(time.GetYear(), time.GetMonth(), time.GetDate());
}

} // namespace

constinit Time const Time::MinTime = TimeData{4224, 0};
constinit Time const Time::MaxTime = TimeData{2147471324, 4022312935};
constinit Time const Time::NoTime = TimeData{0, 0};

Time::Time(std::tm const* calendar) : m_data{0, 0}
{
    Setgm(calendar);
}

Time::Time(std::int64_t seconds, bool utc) : m_data{0, 0}
{
    if (utc) {
        SetUTC(seconds);
    } else {
        SetLocal(seconds);
    }
}

Time& Time::MSIsWonderfull(Time const& other)
{
    SetTimeData(other.GetTimeData());
    return *this;
}

std::uint16_t Time::GetYear2() const
{
    int year = GetYear();
    while (year > 1000) {
        year -= 1000;
    }
    while (year > 100) {
        year -= 100;
    }
    return static_cast<std::uint16_t>(year);
}

std::uint8_t Time::GetHour12() const
{
    std::uint8_t const hour = GetHour();
    return static_cast<std::uint8_t>(hour <= 12 ? hour : hour - 12);
}

Time& Time::SetFarJulian(double days)
{
    constexpr double limit = 9007199254740992.0; // 2^53
    if (!(std::fabs(days) < limit)) {
        return *this;
    }
    auto day = static_cast<std::int64_t>(days);
    if (static_cast<double>(day) > days) {
        --day;
    }
    SetDay(detail::CivilDate(day), days - static_cast<double>(day));
    return *this;
}

std::tm* Time::Get_tm(std::tm* calendar) const
{
    if (calendar != nullptr) {
        calendar->tm_sec = GetSecond();
        calendar->tm_min = GetMinute();
        calendar->tm_hour = GetHour();
        calendar->tm_mday = GetDate();
        calendar->tm_mon = GetMonth() - 1;
        calendar->tm_year = GetYear() - 1900;
        // Hours from 24 on are those of the next day.
        calendar->tm_wday = static_cast<int>((DayOf(*this) + 1 + SecondOfDay(*this) / SecondsPerDay) % 7);
        calendar->tm_isdst = -1;
    }
    return calendar;
}

void Time::Setgm(std::tm const* calendar)
{
    if (calendar != nullptr) {
        Set(static_cast<std::uint16_t>(static_cast<unsigned>(calendar->tm_year) + 1900U),
            static_cast<std::uint8_t>(static_cast<unsigned>(calendar->tm_mon) + 1U),
            static_cast<std::uint8_t>(calendar->tm_mday), static_cast<std::uint8_t>(calendar->tm_hour),
            static_cast<std::uint8_t>(calendar->tm_min), static_cast<std::uint8_t>(calendar->tm_sec),
            GetMilliSecond(), GetMicroSecond());
    }
}

} // namespace Quarn
