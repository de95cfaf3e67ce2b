#include "quarn/text/number_text.h"

#include "quarn/text/ascii.h"

#include <algorithm>

namespace Quarn::detail {

namespace {

// Removes white space and a sign from the front; true for a minus.
bool TakeSign(std::string_view& text)
{
    text.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsSpace) - text.begin()));
    bool const negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    return negative;
}

// The value of a digit or letter as a digit; 36 for any other character.
int DigitValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    char const lower = LowerAscii(c);
    return lower >= 'a' && lower <= 'z' ? lower - 'a' + 10 : 36;
}

} // namespace

std::int32_t StringToLong(std::string_view text, int base) noexcept
{
    bool const negative = TakeSign(text);
    if (base == 16 && text.size() > 2 && text[0] == '0' && LowerAscii(text[1]) == 'x' &&
        DigitValue(text[2]) < 16) {
        text.remove_prefix(2);
    }
    std::int64_t const limit = negative ? std::int64_t{INT32_MAX} + 1 : INT32_MAX;
    std::int64_t magnitude = 0;
    for (char const c : text) {
        int const digit = DigitValue(c);
        if (digit >= base) {
            break;
        }
        magnitude = std::min(magnitude * base + digit, limit);
    }
    return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
}

std::int32_t AsciiToLong(std::string_view text) noexcept
{
    bool const negative = TakeSign(text);
    std::uint32_t magnitude = 0;
    for (char const c : text) {
        int const digit = DigitValue(c);
        if (digit >= 10) {
            break;
        }
        magnitude = magnitude * 10 + static_cast<std::uint32_t>(digit);
    }
    return static_cast<std::int32_t>(negative ? 0 - magnitude : magnitude);
}

} // namespace Quarn::detail
