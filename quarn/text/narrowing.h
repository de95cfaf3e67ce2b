// The checked narrowing of 64-bit sizes to the 32 bits of the record format and of older interfaces. A size
// that does not fit is no error: it is reported in a blocking message, and the work goes on with the low
// bits. Any thread may call it.
#pragma once

#include "quarn/export.h"

#include <cstdint>

namespace Quarn {

// The low 32 bits of `value`. A value above 4294967295 (compared as a signed number, so a negative one never)
// first shows the message "Int64 Conversion Error, %s: %d" through ShowBlockingMessage (platform/message.h),
// with this header's path and the number 488 whichever caller failed; `file` and `line` are not shown. Never
// throws. Any thread may call it; the message blocks the calling thread alone.
QUARN_API unsigned int Int64ToUInt32(std::int64_t value, char const* file, int line) noexcept;

namespace detail {

// The message of Int64ToUInt32 by itself, for checks against other limits.
void ReportNarrowing() noexcept;

// A count or length in memory, narrowed as above.
inline std::uint32_t NarrowCount(std::size_t count) noexcept
{
    if (count > UINT32_MAX) {
        return Int64ToUInt32(static_cast<std::int64_t>(count), "", 0);
    }
    return static_cast<std::uint32_t>(count);
}

// A number for a 32-bit field: its low 32 bits, with the same message where they are not the whole of it.
inline std::int32_t NarrowLong(long value) noexcept
{
    auto const low = static_cast<std::int32_t>(value);
    if (low != value) {
        ReportNarrowing();
    }
    return low;
}

// The same for an unsigned number. One with all upper bits set, as a negative number becomes, is not
// reported.
inline std::uint32_t NarrowLong(unsigned long value) noexcept
{
    return NarrowCount(value);
}

} // namespace detail

} // namespace Quarn
