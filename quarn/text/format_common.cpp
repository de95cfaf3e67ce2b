#include "quarn/text/format_common.h"

#include "quarn/text/ascii.h"

#include <cfenv>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace Quarn::detail {

namespace {

struct CommonConversion
{
    bool isLeft = false;
    bool hasZeros = false;
    bool hasPrecision = false;
    unsigned int width = 0;
    unsigned int precision = 0;
    enum Size
    {
        Char,
        Short,
        Int,
        Long,
        LongLong,
        SizeT
    } size = Int;
    char letter = 0;
};

// Reads a number of at most three digits.
char const* ReadShortNumber(char const* at, unsigned int& number)
{
    for (int digits = 0; digits < 3 && *at >= '0' && *at <= '9'; ++digits) {
        number = number * 10 + static_cast<unsigned int>(*at++ - '0');
    }
    return at;
}

// Reads what follows the percent sign; the letter is whatever stands where one should.
char const* ReadConversion(char const* at, CommonConversion& conversion)
{
    for (;; ++at) {
        if (*at == '-') {
            conversion.isLeft = true;
        } else if (*at == '0') {
            conversion.hasZeros = true;
        } else {
            break;
        }
    }
    at = ReadShortNumber(at, conversion.width);
    if (*at == '.') {
        conversion.hasPrecision = true;
        at = ReadShortNumber(at + 1, conversion.precision);
    }
    switch (*at) {
    case 'h':
        conversion.size = at[1] == 'h' ? CommonConversion::Char : CommonConversion::Short;
        at += at[1] == 'h' ? 2 : 1;
        break;
    case 'l':
        conversion.size = at[1] == 'l' ? CommonConversion::LongLong : CommonConversion::Long;
        at += at[1] == 'l' ? 2 : 1;
        break;
    case 'z':
        conversion.size = CommonConversion::SizeT;
        ++at;
        break;
    default:
        break;
    }
    conversion.letter = *at;
    return *at == '\0' ? at : at + 1;
}

// Passed on by reference, which a std::va_list by itself is not everywhere.
struct Arguments
{
    std::va_list list;
};

std::int64_t NextSigned(Arguments& arguments, CommonConversion::Size size)
{
    switch (size) {
    case CommonConversion::Char:
        return static_cast<signed char>(va_arg(arguments.list, int));
    case CommonConversion::Short:
        return static_cast<short>(va_arg(arguments.list, int));
    case CommonConversion::Long:
        return va_arg(arguments.list, long);
    case CommonConversion::LongLong:
        return va_arg(arguments.list, long long);
    case CommonConversion::SizeT:
        return va_arg(arguments.list, std::ptrdiff_t);
    default:
        return va_arg(arguments.list, int);
    }
}

std::uint64_t NextUnsigned(Arguments& arguments, CommonConversion::Size size)
{
    switch (size) {
    case CommonConversion::Char:
        return static_cast<unsigned char>(va_arg(arguments.list, unsigned int));
    case CommonConversion::Short:
        return static_cast<unsigned short>(va_arg(arguments.list, unsigned int));
    case CommonConversion::Long:
        return va_arg(arguments.list, unsigned long);
    case CommonConversion::LongLong:
        return va_arg(arguments.list, unsigned long long);
    case CommonConversion::SizeT:
        return va_arg(arguments.list, std::size_t);
    default:
        return va_arg(arguments.list, unsigned int);
    }
}

// Whether the runtime library writes reals as std::to_chars does: with a point, rounded to nearest.
bool WritesRealsPlainly()
{
    char const* const point = std::localeconv()->decimal_point;
    return point[0] == '.' && point[1] == '\0' && std::fegetround() == FE_TONEAREST;
}

// The room for the text; every Put returns false where it does not suffice.
class Room
{
public:
    Room(char* begin, std::size_t size) : m_at(begin), m_end(begin + size) {}

    char* At() const { return m_at; }

    bool Put(char c)
    {
        if (m_at == m_end) {
            return false;
        }
        *m_at++ = c;
        return true;
    }

    // The text, with what fills it up to the width: zeros behind the sign, blanks on the other side.
    bool Put(std::string_view text, CommonConversion const& conversion)
    {
        std::size_t const fill = conversion.width > text.size() ? conversion.width - text.size() : 0;
        if (fill + text.size() > static_cast<std::size_t>(m_end - m_at)) {
            return false;
        }
        if (fill > 0 && !conversion.isLeft) {
            if (conversion.hasZeros && text.front() == '-') {
                *m_at++ = '-';
                text.remove_prefix(1);
            }
            Fill(conversion.hasZeros ? '0' : ' ', fill);
        }
        std::memcpy(m_at, text.data(), text.size());
        m_at += text.size();
        if (conversion.isLeft) {
            Fill(' ', fill);
        }
        return true;
    }

    template<typename Integer>
    bool PutInteger(Integer value, CommonConversion const& conversion)
    {
        if (conversion.hasPrecision) {
            return false;
        }
        char digits[std::numeric_limits<std::uint64_t>::digits10 + 3];
        bool const isHexadecimal = conversion.letter == 'x' || conversion.letter == 'X';
        char* const end = std::to_chars(digits, std::end(digits), value, isHexadecimal ? 16 : 10).ptr;
        if (conversion.letter == 'X') {
            for (char* digit = digits; digit != end; ++digit) {
                *digit = UpperAscii(*digit);
            }
        }
        return Put({digits, static_cast<std::size_t>(end - digits)}, conversion);
    }

    bool PutReal(double value, CommonConversion const& conversion)
    {
        char digits[400]; // the largest double has 309 digits before the point
        int const precision = conversion.hasPrecision ? static_cast<int>(conversion.precision) : 6;
        if (!std::isfinite(value) || !WritesRealsPlainly()) {
            return false;
        }
        auto const [end, error] =
            std::to_chars(digits, std::end(digits), value, std::chars_format::fixed, precision);
        return error == std::errc() && Put({digits, static_cast<std::size_t>(end - digits)}, conversion);
    }

    bool PutText(char const* text, CommonConversion const& conversion)
    {
        if (text == nullptr || conversion.hasZeros || conversion.size != CommonConversion::Int) {
            return false;
        }
        std::size_t length = 0;
        if (conversion.hasPrecision) {
            void const* const end = std::memchr(text, 0, conversion.precision);
            length = end == nullptr ? conversion.precision
                                    : static_cast<std::size_t>(static_cast<char const*>(end) - text);
        } else {
            length = std::strlen(text);
        }
        return Put({text, length}, conversion);
    }

    bool PutCharacter(char c, CommonConversion const& conversion)
    {
        return !conversion.hasZeros && !conversion.hasPrecision && conversion.size == CommonConversion::Int &&
               Put({&c, 1}, conversion);
    }

private:
    void Fill(char c, std::size_t count)
    {
        std::memset(m_at, c, count);
        m_at += count;
    }

    char* m_at;
    char* const m_end;
};

bool PutConversion(Room& room, CommonConversion const& conversion, Arguments& arguments)
{
    switch (conversion.letter) {
    case 'd':
    case 'i':
        return room.PutInteger(NextSigned(arguments, conversion.size), conversion);
    case 'u':
    case 'x':
    case 'X':
        return room.PutInteger(NextUnsigned(arguments, conversion.size), conversion);
    case 'f':
        return (conversion.size == CommonConversion::Int || conversion.size == CommonConversion::Long) &&
               room.PutReal(va_arg(arguments.list, double), conversion);
    case 's':
        return room.PutText(va_arg(arguments.list, char const*), conversion);
    case 'c':
        return room.PutCharacter(static_cast<char>(va_arg(arguments.list, int)), conversion);
    default:
        return false;
    }
}

bool PutAll(Room& room, char const* format, Arguments& arguments)
{
    while (*format != '\0') {
        if (*format != '%' || format[1] == '%') {
            if (!room.Put(*format)) {
                return false;
            }
            format += *format == '%' ? 2 : 1;
            continue;
        }
        CommonConversion conversion;
        format = ReadConversion(format + 1, conversion);
        if (!PutConversion(room, conversion, arguments)) {
            return false;
        }
    }
    return true;
}

} // namespace

int FormatCommon(char* buffer, std::size_t capacity, char const* format, std::va_list args)
{
    Room room(buffer, capacity);
    Arguments arguments;
    va_copy(arguments.list, args);
    bool const isWhole = PutAll(room, format, arguments) && room.Put('\0');
    va_end(arguments.list);
    return isWhole ? static_cast<int>(room.At() - buffer) - 1 : -1;
}

} // namespace Quarn::detail
