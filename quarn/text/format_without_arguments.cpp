#include "quarn/text/format_without_arguments.h"

#include "quarn/platform/formatter.h"

#include <algorithm>
#include <cstdarg>
#include <string>
#include <string_view>

#include <string.h>

namespace Quarn::detail {

namespace {

constexpr int LargestNumber = 4095;
// Around as many digits: sign, prefix, decimal point and exponent.
constexpr std::size_t ConversionRoom = LargestNumber + 64;

constexpr char ZeroByte = '\0';

struct BareConversion
{
    std::string_view flags;
    int width = 0;
    int precision = -1; // none
    char letter = '\0'; // the text's end

    bool Has(char flag) const { return flags.find(flag) != std::string_view::npos; }

    std::string Sign() const { return Has('+') ? "+" : Has(' ') ? " " : ""; }

    // What a text of that length lacks.
    std::string Padding(std::size_t length, char c) const
    {
        auto const whole = static_cast<std::size_t>(width);
        return std::string(whole - std::min(whole, length), c);
    }
};

// A star, or the decimal number at `p`, past which `p` is moved.
int TakeNumber(char const*& p)
{
    if (*p == '*') {
        ++p;
        return 0;
    }
    int number = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        number = std::min(number * 10 + (*p - '0'), LargestNumber);
    }
    return number;
}

// `p` stands behind the percent sign, and is moved behind the conversion.
BareConversion TakeConversion(char const*& p)
{
    BareConversion conversion;
    conversion.flags = {p, ::strspn(p, "-+ #0'")};
    p += conversion.flags.size();
    conversion.width = TakeNumber(p);
    if (*p == '.') {
        ++p;
        conversion.precision = TakeNumber(p);
    }
    for (std::string_view const size : {"hh", "h", "ll", "l", "j", "z", "t", "L", "I64", "I32", "I"}) {
        if (::strncmp(p, size.data(), size.size()) == 0) {
            p += size.size();
            break;
        }
    }
    conversion.letter = *p;
    p += *p != '\0' ? 1 : 0;
    return conversion;
}

int Print(char* buffer, char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    int const length = FormatBounded(buffer, ConversionRoom, format, args);
    va_end(args);
    return length;
}

class BareFormat
{
public:
    BareFormat(bool (*put)(void*, char const*, std::size_t), void* context) : m_put(put), m_context(context)
    {}

    bool Run(char const* p) const
    {
        while (*p != '\0') {
            char const* const start = p;
            p += ::strcspn(p, "%");
            if (p == start) {
                BareConversion const conversion = TakeConversion(++p);
                if (!Put(conversion, {start, static_cast<std::size_t>(p - start)})) {
                    return false;
                }
            } else if (!Put({start, static_cast<std::size_t>(p - start)})) {
                return false;
            }
        }
        return true;
    }

private:
    bool Put(std::string_view text) const
    {
        return text.empty() || m_put(m_context, text.data(), text.size());
    }

    // `text` is the conversion as it stands.
    bool Put(BareConversion const& conversion, std::string_view text) const
    {
        switch (conversion.letter) {
        case '%':
            return Put("%");
        case 'd':
        case 'i':
            return PutInteger(conversion, conversion.Sign());
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return PutInteger(conversion, {});
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            return PutFloating(conversion);
        case 'p':
            return PutPadded(conversion, "0000000000000000");
        case 'c':
        case 'C':
            return PutPadded(conversion, {&ZeroByte, 1});
        case 's':
        case 'S':
            return PutPadded(conversion, {});
        case 'n':
            return true;
        default:
            return Put(text);
        }
    }

    bool PutInteger(BareConversion const& conversion, std::string const& sign) const
    {
        std::string digits(conversion.precision < 0 ? 1 : static_cast<std::size_t>(conversion.precision),
                           '0');
        if (digits.empty() && conversion.letter == 'o' && conversion.Has('#')) {
            digits = "0";
        }
        return PutNumber(conversion, sign, digits, conversion.precision < 0);
    }

    // Layouts differ between C libraries, digits do not.
    bool PutFloating(BareConversion const& conversion) const
    {
        std::string format = conversion.Has('#') ? "%#.*" : "%.*";
        format += conversion.letter;
        char buffer[ConversionRoom];
        int const length = Print(buffer, format.c_str(), conversion.precision, 0.0);
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof buffer) {
            return false;
        }
        bool const isHexadecimal = conversion.letter == 'a' || conversion.letter == 'A';
        std::size_t const prefix = isHexadecimal ? 2 : 0; // 0x
        return PutNumber(conversion, conversion.Sign().append(buffer, prefix), buffer + prefix, true);
    }

    // `front` is what stands before the zeros of a width.
    bool PutNumber(BareConversion const& conversion, std::string const& front, std::string const& digits,
                   bool takesZeros) const
    {
        if (!takesZeros || !conversion.Has('0') || conversion.Has('-')) {
            return PutPadded(conversion, front + digits);
        }
        return Put(front + conversion.Padding(front.size() + digits.size(), '0') + digits);
    }

    bool PutPadded(BareConversion const& conversion, std::string_view text) const
    {
        std::string const blanks = conversion.Padding(text.size(), ' ');
        return conversion.Has('-') ? Put(text) && Put(blanks) : Put(blanks) && Put(text);
    }

    bool (*m_put)(void*, char const*, std::size_t);
    void* m_context;
};

} // namespace

bool FormatWithoutArguments(char const* format, bool (*put)(void*, char const*, std::size_t), void* context)
{
    return BareFormat(put, context).Run(format);
}

} // namespace Quarn::detail
