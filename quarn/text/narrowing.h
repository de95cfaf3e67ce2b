// The checked narrowing of 64-bit sizes to the 32 bits of the record format and of older interfaces. A size
// that does not fit is no error: it is reported in a blocking message, and the work goes on with the low
// bits.
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
    return Int64ToUInt32(static_cast<std::int64_t>(count), "", 0);
}

} // namespace detail

} // namespace Quarn
