// Times and clocks: the runtime library's seconds, the system's clock, local time.
#include "quarn/platform/win32_api.h"
#include "quarn/time/win32_time.h"

#include <mutex>

namespace Quarn {

namespace {

// The lock of the runtime library's shared conversion record, made when the module starts and never given
// back: times may be used until the very end.
class ConversionLock
{
public:
    ConversionLock() noexcept { ::InitializeCriticalSection(&m_section); }
    ConversionLock(ConversionLock const&) = delete;
    ConversionLock& operator=(ConversionLock const&) = delete;
    ~ConversionLock() = default;

    void lock() { ::EnterCriticalSection(&m_section); }
    void unlock() { ::LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section;
};

ConversionLock g_conversionLock;

// The record that the runtime library makes of the seconds; false where it refuses them.
bool BreakDown(std::tm* (*convert)(__time64_t const*), std::int64_t seconds, std::tm& calendar)
{
    std::lock_guard const guard(g_conversionLock);
    __time64_t const moment = seconds;
    std::tm const* const shared = convert(&moment);
    if (shared == nullptr) {
        return false;
    }
    calendar = *shared;
    return true;
}

// Takes the time through the system's file times, between local time and UTC.
template<typename Conversion>
void Convert(Time& time, Conversion convert)
{
    SYSTEMTIME parts = Win32Quarn::Time(time).GetSYSTEMTIME();
    FILETIME before{};
    FILETIME after{};
    if (::SystemTimeToFileTime(&parts, &before) != FALSE && convert(&before, &after) != FALSE &&
        ::FileTimeToSystemTime(&after, &parts) != FALSE) {
        Win32Quarn::Time::Set(parts, time);
    }
}

} // namespace

std::int64_t Time::Get_time_t() const
{
    std::tm calendar{};
    Get_tm(&calendar);
    return ::_mktime64(&calendar);
}

void Time::SetUTC(std::int64_t seconds)
{
    std::tm calendar{};
    if (BreakDown([](__time64_t const* moment) { return ::_gmtime64(moment); }, seconds, calendar)) {
        Setgm(&calendar);
    }
}

void Time::SetLocal(std::int64_t seconds)
{
    std::tm calendar{};
    if (BreakDown([](__time64_t const* moment) { return ::_localtime64(moment); }, seconds, calendar)) {
        Setgm(&calendar);
    }
}

void Time::SetLocal(char const* /*text*/) {}

void Time::GetCurrentUTCTime()
{
    GetUTCTime(*this);
}

void Time::GetCurrentLocalTime()
{
    GetLocalTime(*this);
}

void Time::ConvertToUTC()
{
    LocalToUTC(*this);
}

void Time::ConvertToLocal()
{
    UTCToLocal(*this);
}

void GetUTCTime(Time& time)
{
    SYSTEMTIME now{};
    ::GetSystemTime(&now);
    Win32Quarn::Time::Set(now, time);
}

void GetLocalTime(Time& time)
{
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    Win32Quarn::Time::Set(now, time);
}

void LocalToUTC(Time& time)
{
    Convert(time, [](FILETIME const* local, FILETIME* utc) { return ::LocalFileTimeToFileTime(local, utc); });
}

void UTCToLocal(Time& time)
{
    Convert(time, [](FILETIME const* utc, FILETIME* local) { return ::FileTimeToLocalFileTime(utc, local); });
}

} // namespace Quarn
