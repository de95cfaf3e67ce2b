// (private) A text read by the printf formatting rules although it comes without arguments: a text from
// outside that serves as a format. Nothing is read but the text, nothing is allocated in proportion to what
// it asks for, and the same comes out on every system. Any threads may call it at once.
//
//   %%                        one percent sign, as is every conversion that ends in a second one
//   d i o u x X               as for the number 0
//   e E f F g G a A           as for 0.0, with the locale's decimal point
//   c C                       a zero byte
//   s S                       an empty text
//   p                         as for a null pointer, sixteen zeros
//   n                         nothing, and nothing is stored anywhere
//
// Flags (- + space # 0 ') count for the conversions that the standard gives them to, and are passed over
// elsewhere. A width and a precision above 4095 count as 4095, the most that the standard promises of one
// conversion; a '*' is a 0. The sizes hh h l ll j z t L I I32 I64 are passed over. All else stands in the
// text as it is, from its percent sign to its letter: letters that are not listed (m, numbered arguments as
// in %1$s) and a conversion that the end of the text cuts off, a lone percent sign too.
#pragma once

#include <cstddef>

namespace Quarn::detail {

// Hands the text on in pieces that are not empty, from left to right: put(context, piece, size), whose false
// ends it. False when it was ended so.
bool FormatWithoutArguments(char const* format, bool (*put)(void*, char const*, std::size_t), void* context);

// put(piece, size)
template<typename Put>
bool FormatWithoutArguments(char const* format, Put put)
{
    return FormatWithoutArguments(
        format,
        [](void* context, char const* piece, std::size_t size) {
            return (*static_cast<Put*>(context))(piece, size);
        },
        &put);
}

} // namespace Quarn::detail
