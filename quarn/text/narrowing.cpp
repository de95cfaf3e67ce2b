#include "quarn/text/narrowing.h"

#include "quarn/platform/message.h"

#include <stdio.h>

namespace Quarn {

namespace detail {

void ReportNarrowing() noexcept
{
    char text[256];
    ::snprintf(text, sizeof text, "Int64 Conversion Error, %s: %d", "quarn/text/narrowing.h", 488);
    ShowBlockingMessage(text, text);
}

} // namespace detail

unsigned int Int64ToUInt32(std::int64_t value, char const* /*file*/, int /*line*/) noexcept
{
    if (value > std::int64_t{UINT32_MAX}) {
        detail::ReportNarrowing();
    }
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(value));
}

} // namespace Quarn
