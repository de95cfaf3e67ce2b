#include "quarn/text/format_estimate.h"

#include "quarn/text/narrowing.h"

#include <algorithm>
#include <climits>

#include <string.h>
#include <wchar.h>

namespace Quarn::detail {

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The decimal number at `p`, past which `p` is moved; larger numbers saturate.
int ReadNumber(char const*& p)
{
    std::int64_t number = 0;
    for (; IsDigit(*p); ++p) {
        number = std::min<std::int64_t>(number * 10 + (*p - '0'), INT_MAX);
    }
    return static_cast<int>(number);
}

std::size_t WideLength(wchar_t const* text, std::size_t limit)
{
    std::size_t length = 0;
    while (length < limit && text[length] != L'\0') {
        ++length;
    }
    return length;
}

// The walk's total: 32-bit and wrapping.
class Total
{
public:
    void Add(std::int64_t amount)
    {
        m_value += static_cast<std::uint32_t>(static_cast<std::uint64_t>(amount));
    }
    std::uint64_t SignExtended() const
    {
        return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(m_value)});
    }

private:
    std::uint32_t m_value = 0;
};

std::int64_t ReportedLength(std::size_t length)
{
    if (length > INT_MAX) {
        ReportNarrowing();
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(length));
}

// What is known of the arguments that are left.
enum class Arguments
{
    InStep,  // the next one belongs to the next conversion
    Shifted, // the walk lags behind the C library: taken, but never followed
    Lost     // the walk may be ahead of the C library: not even taken
};

struct Conversion
{
    std::int64_t width = 0;
    std::int64_t precision = 0;
    bool hasPrecision = false;
    bool isLong = false;
    bool isLongDouble = false;
};

// The length of a text argument, in bytes or wide characters. A precision bounds what the conversion reads,
// so the text need not be terminated behind it.
std::int64_t TextLength(Conversion const& conversion, void const* text)
{
    if (text == nullptr) {
        return 0;
    }
    bool const bounded = conversion.hasPrecision && conversion.precision >= 0;
    std::size_t const limit = bounded ? static_cast<std::size_t>(conversion.precision) : SIZE_MAX;
    return ReportedLength(conversion.isLong ? WideLength(static_cast<wchar_t const*>(text), limit)
                                            : ::strnlen(static_cast<char const*>(text), limit));
}

std::int64_t TextAmount(Conversion const& conversion, std::int64_t itemLength)
{
    std::int64_t const amount = std::max(itemLength, conversion.width);
    return conversion.precision != 0 ? std::min(amount, conversion.precision) : amount;
}

} // namespace

std::uint64_t EstimateFormatLength(char const* format, std::va_list args)
{
    Total total;
    char const* p = format;
    char const* const end = format + ::strlen(format);
    Arguments arguments = Arguments::InStep;

    while (*p != '\0') {
        if (*p != '%' || p[1] == '%') {
            p += *p == '%' ? 1 : 0;
            total.Add(ReportedLength(static_cast<std::size_t>(end - p)));
            ++p;
            continue;
        }
        ++p;

        Conversion conversion;
        for (;; ++p) {
            if (*p == '#') {
                total.Add(2);
            } else if (*p == '*') {
                conversion.width = arguments != Arguments::Lost ? va_arg(args, int) : 0;
            } else if (*p != ' ' && *p != '+' && *p != '-' && *p != '0') {
                break;
            }
        }
        if (conversion.width == 0) {
            conversion.width = ReadNumber(p);
        }
        if (*p == '.') {
            ++p;
            conversion.hasPrecision = true;
            if (*p == '*') {
                conversion.precision = arguments != Arguments::Lost ? va_arg(args, int) : 0;
                ++p;
            } else {
                conversion.precision = ReadNumber(p);
            }
        }
        switch (*p) {
        case 'F':
        case 'N':
            // No prefixes to the C library: F is a conversion of its own.
            arguments = Arguments::Lost;
            ++p;
            break;
        case 'L':
            conversion.isLongDouble = true;
            ++p;
            break;
        case 'h':
            ++p;
            break;
        case 'l':
            conversion.isLong = true;
            ++p;
            break;
        default:
            break;
        }
        if (*p == '\0') {
            break;
        }

        std::int64_t const number = std::max<std::int64_t>(conversion.width, 32) + conversion.precision;
        bool const take = arguments != Arguments::Lost;
        switch (*p) {
        case 'c':
        case 'C':
            if (take) {
                static_cast<void>(va_arg(args, int));
            }
            total.Add(TextAmount(conversion, 2));
            break;
        case 's':
        case 'S': {
            void const* const text = take ? va_arg(args, void const*) : nullptr;
            std::int64_t const length = arguments == Arguments::InStep ? TextLength(conversion, text) : 0;
            total.Add(TextAmount(conversion, std::max<std::int64_t>(length, 1)));
            break;
        }
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            if (take && conversion.isLongDouble) {
                static_cast<void>(va_arg(args, long long));
            } else if (take && conversion.isLong) {
                static_cast<void>(va_arg(args, long));
            } else if (take) {
                static_cast<void>(va_arg(args, int));
            }
            total.Add(number);
            break;
        case 'e':
        case 'f':
        case 'g':
        case 'G':
            if (take && conversion.isLongDouble) {
                static_cast<void>(va_arg(args, long double));
            } else if (take) {
                static_cast<void>(va_arg(args, double));
            }
            total.Add(std::max<std::int64_t>(number, 128));
            break;
        case 'p':
        case 'n':
            if (take) {
                static_cast<void>(va_arg(args, void*));
            }
            if (*p == 'p') {
                total.Add(std::max<std::int64_t>(conversion.width + conversion.precision, 32));
            }
            break;
        default:
            arguments = arguments == Arguments::InStep ? Arguments::Shifted : arguments;
            break;
        }
        ++p;
    }
    return total.SignExtended();
}

} // namespace Quarn::detail
