#include "quarn/time/win32_time.h"

#include "quarn/platform/win32_api.h"

namespace Win32Quarn {

void Time::Set(SYSTEMTIME const& systemTime, Quarn::Time& time)
{
    time.Set(systemTime.wYear, static_cast<std::uint8_t>(systemTime.wMonth),
             static_cast<std::uint8_t>(systemTime.wDay), static_cast<std::uint8_t>(systemTime.wHour),
             static_cast<std::uint8_t>(systemTime.wMinute), static_cast<std::uint8_t>(systemTime.wSecond),
             systemTime.wMilliseconds, 0);
}

Time& Time::Set(SYSTEMTIME const& systemTime)
{
    Set(systemTime, *this);
    return *this;
}

void Time::Get(SYSTEMTIME& systemTime, Quarn::Time const& time)
{
    systemTime.wYear = time.GetYear();
    systemTime.wMonth = time.GetMonth();
    systemTime.wDay = time.GetDate();
    systemTime.wHour = time.GetHour();
    systemTime.wMinute = time.GetMinute();
    systemTime.wSecond = time.GetSecond();
    systemTime.wMilliseconds = time.GetMilliSecond();
}

SYSTEMTIME Time::GetSYSTEMTIME() const
{
    SYSTEMTIME systemTime{};
    Get(systemTime, *this);
    return systemTime;
}

Time::operator SYSTEMTIME() const
{
    return GetSYSTEMTIME();
}

} // namespace Win32Quarn
