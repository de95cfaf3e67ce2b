// (private) The record language of settings values and registry values: several items in one text, each
// followed by a comma. A format names the items, one letter each:
//
//   letter  argument of the writer    argument of the reader  text of the item
//   D, L    32-bit unsigned integer   pointer to it           decimal, unsigned
//   i       int                       pointer to it           decimal
//   b       bool                      pointer to it           0 or 1; reads true for any number but 0
//   d       double                    pointer to it           six decimals, of the number as a float
//   f       pointer to float          pointer to it           six decimals
//   T       64-bit integer            pointer to it           high half, colon, low half, both unsigned
//   v       64-bit integer            pointer to it           low half, colon, high half
//   t       pointer to string         pointer to it           in double quotes, as it stands up to its first
//                                                             zero byte; a comma before it as the first item
//   space   none                      none                    none
//
// The decimal point is a point in every locale. Integers read modulo 2^32, so that what was written comes
// back. Pointers to 64-bit integers need the alignment of their halves alone.
#pragma once

#include "quarn/text/string.h"

#include <cstdarg>

namespace Quarn::detail {

// The record. A character that is no letter of the language takes no argument and repeats, deliberately, the
// text of the item before it (the empty text at the beginning), with its comma.
string WritePackedRecord(char const* format, std::va_list args);

// How a text that begins like the path of a drive, C:\, is read.
enum class DrivePaths
{
    Escaped, // as every text: a backslash before a double quote stands for the quote
    Literal  // backslashes stand for themselves, so that the text may end in one
};

// Takes the record apart. False when it has no field left for a character of the format; the items before
// have been stored then. A last field without its comma serves every item that follows. A text is appended
// to its string; as the first item it is looked for behind the first comma, elsewhere it ends at the next
// comma, quoted or not. One without its closing quote is stored as far as it goes, and is no failure.
// Characters that are no letters of the language skip a field.
bool ReadPackedRecord(string const& record, DrivePaths drivePaths, char const* format, std::va_list args);

} // namespace Quarn::detail
