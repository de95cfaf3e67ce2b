// The two readers of numbers in text. Both skip leading white space, take one sign and the digits behind it,
// stop at the first other character and give 0 when there is no digit; they know no locale and are the same
// on every system. They differ beyond 32 bits: one stops at the limits, the other counts on.
#pragma once

#include <cstdint>
#include <string_view>

namespace Quarn::detail {

// The runtime's string-to-long conversion with a 32-bit long: a number beyond the limits gives the nearest
// limit. `base` is 2 to 36; a text in base 16 may begin with 0x.
std::int32_t StringToLong(std::string_view text, int base = 10) noexcept;

// The runtime's ascii-to-long conversion with a 32-bit long: decimal, counted modulo 2^32, so that an
// unsigned number written in decimal comes back with the same bits.
std::int32_t AsciiToLong(std::string_view text) noexcept;

} // namespace Quarn::detail
