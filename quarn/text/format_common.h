// The conversions that nearly every format is made of, without the C library's formatter.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace Quarn::detail {

// Writes the text of a format that holds no other conversions than %d %i %u %x %X %c %s %f and %%, with the
// flags '-' and '0', numbers for width and precision and the lengths hh, h, l, ll and z, exactly as the C
// library does, and its terminator. Returns the text's length; -1 where the format or a value asks for
// anything else (the flags left, no number, no text, another decimal sign than the point), or where the text
// does not fit into `capacity` bytes. Then FormatBounded is to make the text. `args` stays as it was.
int FormatCommon(char* buffer, std::size_t capacity, char const* format, std::va_list args);

} // namespace Quarn::detail
