// The time zone of the test's process, as the C library and the system see it.
#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>

#include <stdlib.h>
#include <time.h>

// The runtime library of Windows reads zones such as Europe/Berlin out of TZ, and misreads them; without it
// it takes the system's zone.
inline void TakeTheSystemsZone()
{
#if defined(_WIN32)
    ::_putenv("TZ=");
    ::_tzset();
#endif
}

// The fields of a record as seconds, as if it were UTC.
inline std::int64_t AsUtc(std::tm const& calendar)
{
    using namespace std::chrono;
    sys_days const day{year{calendar.tm_year + 1900} / (calendar.tm_mon + 1) / calendar.tm_mday};
    return std::int64_t{day.time_since_epoch().count()} * 86400 + calendar.tm_hour * 3600 +
           calendar.tm_min * 60 + calendar.tm_sec;
}

// Seconds east of UTC at that moment.
inline std::int64_t OffsetAt(std::time_t moment)
{
    return AsUtc(*std::localtime(&moment)) - moment;
}

inline std::int64_t OffsetNow()
{
    return OffsetAt(std::time(nullptr));
}

// Runs `action(offset)` once more where the clocks have changed meanwhile.
template<typename Action>
void WithOffsetNow(Action action)
{
    std::int64_t before = 0;
    do {
        before = OffsetNow();
        action(before);
    } while (OffsetNow() != before);
}
