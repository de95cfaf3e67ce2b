// Quarn::Time: a calendar date and time of day, packed into two 32-bit words, High and Low. On a stream:
// High, then Low, 32 bits each, little-endian. A plain value; one object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"

#include <cstdint>

namespace Quarn {

// The plain form of a Time.
struct TIME
{
    std::uint32_t High; // year 16-31, month 12-15, date 7-11, hour 2-6; bits 0 and 1 are reserved
    std::uint32_t Low;  // minute 26-31, second 20-25, millisecond 10-19, microsecond 0-9
};

class QUARN_API Time
{
public:
    // Year 0, month 1, date 1, 00:00:00.
    Time() = default;
    // Both words as they are.
    Time(TIME const& time) : m_data{time.High, time.Low} {}

    operator TIME() const { return {m_data.High, m_data.Low}; }

private:
    struct TimeData
    {
        std::uint32_t High;
        std::uint32_t Low;
    };

    TimeData m_data = {4224, 0};
};

} // namespace Quarn
