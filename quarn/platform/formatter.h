// The C library's bounded printf formatter, as every system must have it: a width or precision above INT_MAX
// is refused, and none is too large for the stack.
#pragma once

#include <cstdarg>
#include <cstddef>

#include <stdio.h>

namespace Quarn::detail {

// FormatBounded for a C library that computes widths without a check and lays numbers out on the stack:
// formats with a '*' or a number of five digits are taken apart, conversion by conversion.
int FormatInPieces(char* buffer, std::size_t capacity, char const* format, std::va_list args);

// Writes the text and its terminator, cut to `capacity` bytes, which is not 0. Returns the length of the
// whole text, or a negative number where the format or a conversion is refused.
inline int FormatBounded(char* buffer, std::size_t capacity, char const* format, std::va_list args)
{
#if defined(_WIN32)
    return FormatInPieces(buffer, capacity, format, args);
#else
    return ::vsnprintf(buffer, capacity, format, args);
#endif
}

} // namespace Quarn::detail
