// Win32Quarn::Time: a Quarn::Time that comes from the system's broken-down time and goes to it. A plain value
// with nothing of its own; one object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"
#include "quarn/time/time.h"

namespace Win32Quarn {

class QUARN_API Time : public Quarn::Time
{
public:
    // As Quarn::Time.
    Time() = default;
    Time(std::tm const* calendar) : Quarn::Time(calendar) {}
    Time(std::int64_t seconds, bool utc) : Quarn::Time(seconds, utc) {}
    Time(Quarn::Time const& time) : Quarn::Time(time) {}
    // As Set().
    Time(SYSTEMTIME const& systemTime) { Set(systemTime); }

    using Quarn::Time::Set;
    // Takes all but the day of the week; microsecond 0, and the reserved bits stay. Values are not checked.
    static void Set(SYSTEMTIME const& systemTime, Quarn::Time& time);
    Time& Set(SYSTEMTIME const& systemTime);
    // As Set().
    Time& operator=(SYSTEMTIME const& systemTime) { return Set(systemTime); }

    // Fills all but the day of the week, which stays as it is.
    static void Get(SYSTEMTIME& systemTime, Quarn::Time const& time);
    // The same with 0 for the day of the week.
    SYSTEMTIME GetSYSTEMTIME() const;
    // As GetSYSTEMTIME().
    operator SYSTEMTIME() const;
};

} // namespace Win32Quarn
