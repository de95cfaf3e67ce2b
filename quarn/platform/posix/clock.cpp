// Clocks, file times and the runtime's time conversions on POSIX.
#include "quarn/platform/posix/errors.h"

#include <algorithm>
#include <ctime>
#include <limits>

using namespace Quarn::detail;

namespace {

constexpr std::int64_t StepsPerSecond = 10'000'000;
constexpr std::int64_t StepsPerMillisecond = 10'000;
// From 1601, where file times begin, to 1970.
constexpr std::int64_t SecondsBefore1970 = 11'644'473'600;

SYSTEMTIME ToSystemTime(std::tm const& calendar, std::int64_t milliseconds)
{
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(calendar.tm_year + 1900);
    time.wMonth = static_cast<WORD>(calendar.tm_mon + 1);
    time.wDayOfWeek = static_cast<WORD>(calendar.tm_wday);
    time.wDay = static_cast<WORD>(calendar.tm_mday);
    time.wHour = static_cast<WORD>(calendar.tm_hour);
    time.wMinute = static_cast<WORD>(calendar.tm_min);
    time.wSecond = static_cast<WORD>(calendar.tm_sec);
    time.wMilliseconds = static_cast<WORD>(milliseconds);
    return time;
}

// The clock, broken down by gmtime_r or localtime_r.
SYSTEMTIME Now(std::tm* (*breakDown)(std::time_t const*, std::tm*))
{
    ::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::tm calendar{};
    breakDown(&now.tv_sec, &calendar);
    return ToSystemTime(calendar, now.tv_nsec / 1'000'000);
}

// Seconds east of UTC at that moment.
std::int64_t Offset(std::time_t moment)
{
    std::tm calendar{};
    return ::localtime_r(&moment, &calendar) != nullptr ? calendar.tm_gmtoff : 0;
}

// The same now, as file times count.
std::int64_t OffsetNow()
{
    ::tzset();
    return Offset(std::time(nullptr)) * StepsPerSecond;
}

std::int64_t Steps(FILETIME const& time)
{
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime);
}

FILETIME FromSteps(std::uint64_t steps)
{
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32U)};
}

FILETIME Shifted(FILETIME const& time, std::int64_t steps)
{
    return FromSteps(static_cast<std::uint64_t>(Steps(time)) + static_cast<std::uint64_t>(steps));
}

// The one record of the two conversions.
std::tm g_calendar;

} // namespace

void GetSystemTime(SYSTEMTIME* time)
{
    *time = Now(::gmtime_r);
}

void GetLocalTime(SYSTEMTIME* time)
{
    ::tzset();
    *time = Now(::localtime_r);
}

BOOL SystemTimeToFileTime(SYSTEMTIME const* time, FILETIME* fileTime)
{
    constexpr int firstYear = 1601;
    constexpr int lastYear = 30827;
    std::tm calendar{};
    calendar.tm_year = time->wYear - 1900;
    calendar.tm_mon = time->wMonth - 1;
    calendar.tm_mday = time->wDay;
    calendar.tm_hour = time->wHour;
    calendar.tm_min = time->wMinute;
    calendar.tm_sec = time->wSecond;
    std::tm normal = calendar;
    std::int64_t const seconds = ::timegm(&normal);
    // A field that is out of range carries into the others.
    bool const isDate = time->wYear >= firstYear && time->wYear <= lastYear &&
                        normal.tm_mon == calendar.tm_mon && normal.tm_mday == calendar.tm_mday &&
                        normal.tm_hour == calendar.tm_hour && normal.tm_min == calendar.tm_min &&
                        normal.tm_sec == calendar.tm_sec;
    if (!isDate || time->wMilliseconds >= 1000) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    *fileTime = FromSteps(static_cast<std::uint64_t>((seconds + SecondsBefore1970) * StepsPerSecond +
                                                     time->wMilliseconds * StepsPerMillisecond));
    return TRUE;
}

BOOL FileTimeToSystemTime(FILETIME const* fileTime, SYSTEMTIME* time)
{
    std::int64_t const steps = Steps(*fileTime);
    if (steps < 0) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    std::time_t const seconds = steps / StepsPerSecond - SecondsBefore1970;
    std::tm calendar{};
    ::gmtime_r(&seconds, &calendar);
    *time = ToSystemTime(calendar, steps % StepsPerSecond / StepsPerMillisecond);
    return TRUE;
}

BOOL FileTimeToLocalFileTime(FILETIME const* fileTime, FILETIME* local)
{
    *local = Shifted(*fileTime, OffsetNow());
    return TRUE;
}

BOOL LocalFileTimeToFileTime(FILETIME const* local, FILETIME* fileTime)
{
    *fileTime = Shifted(*local, -OffsetNow());
    return TRUE;
}

std::tm* _gmtime64(__time64_t const* seconds)
{
    std::time_t const moment = *seconds;
    return ::gmtime_r(&moment, &g_calendar);
}

std::tm* _localtime64(__time64_t const* seconds)
{
    std::time_t const moment = *seconds;
    ::tzset();
    return ::localtime_r(&moment, &g_calendar);
}

// mktime would do, but that its answer for an hour that is repeated or skipped depends on earlier calls.
__time64_t _mktime64(std::tm* time)
{
    constexpr std::time_t day = 86'400;
    constexpr std::time_t farthest = std::numeric_limits<std::time_t>::max() / 2;
    ::tzset();
    std::tm calendar = *time;
    std::time_t const asUtc = ::timegm(&calendar);
    if (asUtc > farthest || asUtc < -farthest) {
        return -1;
    }
    // No zone is more than a day from UTC, so these two are in force before and after whatever change of
    // clocks concerns the time.
    std::int64_t const before = Offset(asUtc - day);
    std::int64_t const after = Offset(asUtc + day);
    std::time_t const earlier = asUtc - std::max(before, after);
    std::time_t const later = asUtc - std::min(before, after);
    bool const holdsLater = Offset(later) == asUtc - later;
    std::time_t const seconds = holdsLater ? later : earlier;
    return ::localtime_r(&seconds, time) != nullptr ? seconds : -1;
}
