#include "quarn/platform/formatter.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <optional>
#include <string>

#include <string.h>
#include <wchar.h>

namespace Quarn::detail {

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// A conversion between its '%' and its letter, with the values of its stars.
struct Conversion
{
    std::string flags;
    int width = 0;
    int precision = -1; // none
    std::string size;
    char letter = '\0';

    bool Has(char flag) const { return flags.find(flag) != std::string::npos; }

    // The same conversion as a format of its own.
    std::string Text() const
    {
        std::string text(1, '%');
        text.append(flags);
        if (width > 0) {
            text.append(std::to_string(width));
        }
        if (precision >= 0) {
            text.append(1, '.').append(std::to_string(precision));
        }
        text.append(size).push_back(letter);
        return text;
    }
};

// The C library lays integers and pointers out on the stack, as wide as they are asked for.
constexpr int LargestOnStack = 4096;

class Pieces
{
public:
    Pieces(char* buffer, std::size_t capacity, std::va_list args) : m_buffer(buffer), m_capacity(capacity)
    {
        va_copy(m_args, args);
        m_buffer[0] = '\0';
    }
    Pieces(Pieces const&) = delete;
    Pieces& operator=(Pieces const&) = delete;
    ~Pieces() { va_end(m_args); }

    int Run(char const* format)
    {
        char const* p = format;
        while (*p != '\0' && m_length <= INT_MAX) {
            if (*p != '%') {
                char const* const start = p;
                p += ::strcspn(p, "%");
                Put(start, static_cast<std::size_t>(p - start));
            } else if (p[1] == '%') {
                Fill('%', 1);
                p += 2;
            } else {
                char const* const start = p;
                Conversion conversion;
                if (!Read(++p, conversion) || !Convert(conversion, start, p)) {
                    return -1;
                }
            }
        }
        return m_length <= INT_MAX ? static_cast<int>(m_length) : -1;
    }

private:
    void Put(char const* text, std::size_t count)
    {
        std::size_t const room = m_length < m_capacity ? m_capacity - 1 - m_length : 0;
        std::size_t const written = std::min(count, room);
        if (written > 0) {
            ::memcpy(m_buffer + m_length, text, written);
            m_buffer[m_length + written] = '\0';
        }
        m_length += count;
    }

    void Fill(char c, std::size_t count)
    {
        std::size_t const room = m_length < m_capacity ? m_capacity - 1 - m_length : 0;
        std::size_t const written = std::min(count, room);
        if (written > 0) {
            ::memset(m_buffer + m_length, c, written);
            m_buffer[m_length + written] = '\0';
        }
        m_length += count;
    }

    static std::optional<int> ReadNumber(char const*& p)
    {
        std::int64_t number = 0;
        for (; IsDigit(*p); ++p) {
            number = std::min<std::int64_t>(number * 10 + (*p - '0'), std::int64_t{INT_MAX} + 1);
        }
        return number <= INT_MAX ? std::optional(static_cast<int>(number)) : std::nullopt;
    }

    // Moves `p` past the conversion; false where a number is out of range.
    bool Read(char const*& p, Conversion& conversion)
    {
        for (; *p != '\0' && ::strchr("-+ #0'", *p) != nullptr; ++p) {
            if (!conversion.Has(*p)) {
                conversion.flags.push_back(*p);
            }
        }
        std::optional<int> number;
        if (*p == '*') {
            ++p;
            number = va_arg(m_args, int);
            if (*number < 0 && !conversion.Has('-')) {
                conversion.flags.push_back('-');
            }
            number = *number == INT_MIN ? std::nullopt : std::optional(std::max(*number, -*number));
        } else {
            number = ReadNumber(p);
        }
        if (!number) {
            return false;
        }
        conversion.width = *number;
        if (*p == '.') {
            ++p;
            if (*p == '*') {
                ++p;
                number = std::max(va_arg(m_args, int), -1);
            } else {
                number = ReadNumber(p);
            }
            if (!number) {
                return false;
            }
            conversion.precision = *number;
        }
        char const* const size = p;
        if (::strncmp(p, "I64", 3) == 0 || ::strncmp(p, "I32", 3) == 0) {
            p += 3;
        } else if (::strncmp(p, "hh", 2) == 0 || ::strncmp(p, "ll", 2) == 0) {
            p += 2;
        } else if (*p != '\0' && ::strchr("hlLjztI", *p) != nullptr) {
            p += 1;
        }
        conversion.size.assign(size, p);
        conversion.letter = *p;
        p += *p != '\0' ? 1 : 0;
        return true;
    }

    // Writes one conversion, which stands at [start, end) of the format.
    bool Convert(Conversion const& conversion, char const* start, char const* end)
    {
        std::string const& size = conversion.size;
        switch (conversion.letter) {
        case '\0':
            return true;
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            if (size == "ll" || size == "j" || size == "z" || size == "t" || size == "I64" || size == "I" ||
                size == "L") {
                return ConvertInteger(conversion, va_arg(m_args, std::int64_t));
            }
            return size == "l" ? ConvertInteger(conversion, va_arg(m_args, long))
                               : ConvertInteger(conversion, va_arg(m_args, int));
        case 'p':
            return ConvertInteger(conversion, va_arg(m_args, void*));
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            return size == "L" ? Print(conversion, va_arg(m_args, long double))
                               : Print(conversion, va_arg(m_args, double));
        case 'c':
        case 'C':
            return Print(conversion, va_arg(m_args, int));
        case 's':
        case 'S':
            return Print(conversion, va_arg(m_args, void const*));
        case 'm':
            return Print(conversion, 0);
        case '%':
            Fill('%', 1);
            return true;
        case 'n':
            Count(size, va_arg(m_args, void*));
            return true;
        default:
            Put(start, static_cast<std::size_t>(end - start)); // as the C library shows what it does not know
            return true;
        }
    }

    // Lets the C library write the value into what is left of the buffer.
    template<typename T>
    bool Print(Conversion const& conversion, T value)
    {
        std::size_t const offset = std::min(m_length, m_capacity - 1);
        int const count =
            ::snprintf(m_buffer + offset, m_capacity - offset, conversion.Text().c_str(), value);
        m_length += count > 0 ? static_cast<std::size_t>(count) : 0;
        return count >= 0;
    }

    // The layout of large integers: sign or 0x, zeros up to the precision, blanks or zeros up to the width.
    template<typename T>
    bool ConvertInteger(Conversion const& conversion, T value)
    {
        if (conversion.width <= LargestOnStack && conversion.precision <= LargestOnStack) {
            return Print(conversion, value);
        }
        Conversion bare = conversion;
        std::erase(bare.flags, '-');
        std::erase(bare.flags, '0');
        bare.width = 0;
        bare.precision = std::min(conversion.precision, 0); // no digits for a zero there
        char text[64];
        int const count = ::snprintf(text, sizeof text, bare.Text().c_str(), value);
        if (count < 0 || count >= static_cast<int>(sizeof text)) {
            return false;
        }
        std::size_t const length = static_cast<std::size_t>(count);
        std::size_t sign = ::strspn(text, "-+ ");
        if (text[sign] == '0' && (text[sign + 1] == 'x' || text[sign + 1] == 'X')) {
            sign += 2;
        }
        std::size_t const digits = length - sign;
        std::size_t const width = static_cast<std::size_t>(conversion.width);
        std::size_t zeros = 0;
        if (conversion.precision >= 0) {
            std::size_t const precision = static_cast<std::size_t>(conversion.precision);
            zeros = precision - std::min(precision, digits);
        } else if (conversion.Has('0') && !conversion.Has('-')) {
            zeros = width - std::min(width, length);
        }
        std::size_t const blanks = width - std::min(width, length + zeros);
        Fill(' ', conversion.Has('-') ? 0 : blanks);
        Put(text, sign);
        Fill('0', zeros);
        Put(text + sign, digits);
        Fill(' ', conversion.Has('-') ? blanks : 0);
        return true;
    }

    void Count(std::string const& size, void* target) const
    {
        if (size == "hh") {
            *static_cast<signed char*>(target) = static_cast<signed char>(m_length);
        } else if (size == "h") {
            *static_cast<short*>(target) = static_cast<short>(m_length);
        } else if (size == "l") {
            *static_cast<long*>(target) = static_cast<long>(m_length);
        } else if (size.empty() || size == "I32") {
            *static_cast<int*>(target) = static_cast<int>(m_length);
        } else {
            *static_cast<std::int64_t*>(target) = static_cast<std::int64_t>(m_length);
        }
    }

    char* m_buffer;
    std::size_t m_capacity;
    std::size_t m_length = 0;
    std::va_list m_args;
};

// Only such conversions can ask for more than the C library bears.
bool NeedsPieces(char const* format)
{
    for (char const* p = ::strchr(format, '%'); p != nullptr; p = ::strchr(p, '%')) {
        int digits = 0;
        for (++p; *p != '\0' && ::strchr("-+ #'.*0123456789", *p) != nullptr; ++p) {
            digits = IsDigit(*p) ? digits + 1 : 0;
            if (*p == '*' || digits >= 5) {
                return true;
            }
        }
        p += *p == '%' ? 1 : 0;
    }
    return false;
}

} // namespace

int FormatInPieces(char* buffer, std::size_t capacity, char const* format, std::va_list args)
{
    if (!NeedsPieces(format)) {
        return ::vsnprintf(buffer, capacity, format, args);
    }
    return Pieces(buffer, capacity, args).Run(format);
}

} // namespace Quarn::detail
