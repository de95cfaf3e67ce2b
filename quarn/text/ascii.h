// ASCII characters by themselves, whatever the locale.
#pragma once

namespace Quarn::detail {

// Space, tab, line feed, vertical tab, form feed or carriage return.
inline bool IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline char UpperAscii(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

inline char LowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

inline bool IsLetter(char c)
{
    return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z';
}

} // namespace Quarn::detail
