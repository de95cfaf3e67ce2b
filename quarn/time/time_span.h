// Quarn::TimeSpan: a signed number of seconds, the difference of two times. A plain value; one object belongs
// to one thread at a time.
#pragma once

#include "quarn/export.h"

#include <cstdint>

namespace Quarn {

class QUARN_API TimeSpan
{
public:
    // 0 seconds.
    TimeSpan() { Set(0); }
    // So many seconds.
    TimeSpan(std::int64_t seconds) { Set(seconds); }

    // Replaces the seconds, which may be negative.
    void Set(std::int64_t seconds)
    {
        m_seconds = seconds;
        m_unused = 0;
    }
    // The seconds.
    std::int64_t Get_time_t() const { return m_seconds; }

private:
    std::int64_t m_seconds = 0;
    std::uint32_t m_unused = 0; // always 0; part of the layout
};

} // namespace Quarn
