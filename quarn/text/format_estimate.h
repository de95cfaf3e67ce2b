// The length estimate behind string::Format: a walk over a printf-style format and its arguments that bounds
// the characters which the common conversions produce. Format makes the text in a bounded buffer and asks
// only for what fits in none; lengths above 2147483647 are reported here.
//
// Each literal character counts with the whole rest of the format (so a run of k characters counts
// k + (k-1) + ... + 1), an integer conversion at least 32, a floating one at least 128, a text its length.
// The total is a signed 32-bit number that wraps, sign-extended. Size prefixes are F, L, N (ignored), h and
// l; a conversion character that the walk does not know (E, a, a second l, z, ...) counts nothing and takes
// no argument, so the arguments behind it are shifted. From there on no argument is followed as a pointer
// (such a text counts as one character), and behind an N none is taken. A text with a precision is measured
// up to it, a wide one as far as the bytes made of it fit; a null text counts as one character, and so does
// the double of a %Fs.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace Quarn::detail {

// `args` is read from a copy and left as it is.
std::uint64_t EstimateFormatLength(char const* format, std::va_list args);

} // namespace Quarn::detail
