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

// The characters that the C library reads where the text that it makes of them may have so many bytes: the
// text need not be terminated behind them.
std::size_t WideLength(wchar_t const* text, std::size_t byteLimit)
{
    std::size_t length = 0;
    ::mbstate_t state = {};
    for (std::size_t bytes = 0; bytes < byteLimit && text[length] != L'\0'; ++length) {
        char character[MB_LEN_MAX];
        std::size_t const count = ::wcrtomb(character, text[length], &state);
        if (count > byteLimit - bytes) { // or no character of this locale
            break;
        }
        bytes += count;
    }
    return length;
}

std::int64_t ReportedLength(std::size_t length)
{
    if (length > INT_MAX) {
        ReportNarrowing();
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(length));
}

// One conversion, read up to its last character.
struct Conversion
{
    std::int64_t width = 0;
    std::int64_t precision = 0;
    bool hasPrecision = false;
    char prefix = '\0';
};

class Walk
{
public:
    Walk(char const* format, std::va_list args) : m_p(format), m_end(format + ::strlen(format))
    {
        va_copy(m_args, args);
    }
    Walk(Walk const&) = delete;
    Walk& operator=(Walk const&) = delete;
    ~Walk() { va_end(m_args); }

    std::uint64_t Run()
    {
        while (m_p != m_end) {
            if (*m_p != '%') {
                AddLiterals();
            } else if (m_p[1] == '%') {
                ++m_p;
                AddLiteral();
            } else {
                ++m_p;
                AddConversion();
            }
        }
        return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(m_total)});
    }

private:
    // What is known of the arguments that are left.
    enum class Arguments
    {
        InStep,  // the next one belongs to the next conversion
        Shifted, // the walk lags behind the C library: taken, but never followed
        Lost     // the walk may be ahead of the C library: not even taken
    };

    // The total is a 32-bit number that wraps.
    void Add(std::int64_t amount)
    {
        m_total += static_cast<std::uint32_t>(static_cast<std::uint64_t>(amount));
    }

    // A literal character counts with all that follows it in the format.
    void AddLiteral()
    {
        Add(ReportedLength(static_cast<std::size_t>(m_end - m_p)));
        ++m_p;
    }

    // The literal characters up to the next '%': r + (r - 1) + ... for the r characters that are left.
    void AddLiterals()
    {
        auto const* next =
            static_cast<char const*>(::memchr(m_p, '%', static_cast<std::size_t>(m_end - m_p)));
        next = next != nullptr ? next : m_end;
        while (m_p != next && m_end - m_p > INT_MAX) {
            AddLiteral();
        }
        std::int64_t const rest = m_end - m_p;
        std::int64_t const count = next - m_p;
        Add(count * rest - count * (count - 1) / 2);
        m_p = next;
    }

    Conversion ReadConversion()
    {
        Conversion conversion;
        for (;; ++m_p) {
            if (*m_p == '#') {
                Add(2);
            } else if (*m_p == '*') {
                conversion.width = TakeInt();
            } else if (*m_p != ' ' && *m_p != '+' && *m_p != '-' && *m_p != '0') {
                break;
            }
        }
        if (conversion.width == 0) {
            conversion.width = ReadNumber(m_p);
        }
        if (*m_p == '.') {
            ++m_p;
            conversion.hasPrecision = true;
            if (*m_p == '*') {
                conversion.precision = TakeInt();
                ++m_p;
            } else {
                conversion.precision = ReadNumber(m_p);
            }
        }
        if (*m_p == 'F' || *m_p == 'L' || *m_p == 'N' || *m_p == 'h' || *m_p == 'l') {
            conversion.prefix = *m_p;
            ++m_p;
        }
        return conversion;
    }

    void AddConversion()
    {
        Conversion const conversion = ReadConversion();
        if (m_p == m_end) {
            return;
        }
        // The C library knows no prefix N. And to it "%F%%" is a conversion and a percent sign, behind which
        // there is text where the walk finds a conversion.
        if (conversion.prefix == 'N' || (conversion.prefix == 'F' && *m_p == '%')) {
            m_arguments = Arguments::Lost;
        }
        std::int64_t const number = std::max<std::int64_t>(conversion.width, 32) + conversion.precision;
        switch (*m_p++) {
        case 'c':
        case 'C':
            SkipNumber(conversion.prefix == 'F' ? 'F' : '\0');
            Add(TextAmount(conversion, 2));
            break;
        case 's':
        case 'S':
            Add(TextAmount(conversion, std::max<std::int64_t>(TakeTextLength(conversion), 1)));
            break;
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            SkipNumber(conversion.prefix);
            Add(number);
            break;
        case 'e':
        case 'f':
        case 'g':
        case 'G':
            SkipFloating(conversion.prefix);
            Add(std::max<std::int64_t>(number, 128));
            break;
        case 'p':
            TakePointer(conversion.prefix);
            Add(std::max<std::int64_t>(conversion.width + conversion.precision, 32));
            break;
        case 'n':
            TakePointer(conversion.prefix);
            break;
        default:
            m_arguments = m_arguments == Arguments::InStep ? Arguments::Shifted : m_arguments;
            break;
        }
    }

    static std::int64_t TextAmount(Conversion const& conversion, std::int64_t itemLength)
    {
        std::int64_t const amount = std::max(itemLength, conversion.width);
        return conversion.precision != 0 ? std::min(amount, conversion.precision) : amount;
    }

    // Each Take and Skip moves past one argument of the type that the C library reads there. To it an F is no
    // prefix but a conversion of its own, of a double.
    int TakeInt() { return m_arguments != Arguments::Lost ? va_arg(m_args, int) : 0; }

    void SkipNumber(char prefix)
    {
        if (m_arguments == Arguments::Lost) {
            return;
        }
        switch (prefix) {
        case 'F':
            static_cast<void>(va_arg(m_args, double));
            break;
        case 'L':
            static_cast<void>(va_arg(m_args, long long));
            break;
        case 'l':
            static_cast<void>(va_arg(m_args, long));
            break;
        default:
            static_cast<void>(va_arg(m_args, int));
            break;
        }
    }

    void SkipFloating(char prefix)
    {
        if (m_arguments == Arguments::Lost) {
            return;
        }
        if (prefix == 'L') {
            static_cast<void>(va_arg(m_args, long double));
        } else {
            static_cast<void>(va_arg(m_args, double));
        }
    }

    void const* TakePointer(char prefix)
    {
        if (prefix == 'F') {
            SkipFloating(prefix);
            return nullptr;
        }
        return m_arguments != Arguments::Lost ? va_arg(m_args, void const*) : nullptr;
    }

    // In bytes or wide characters. A precision bounds what the conversion reads, so the text need not be
    // terminated behind it.
    std::int64_t TakeTextLength(Conversion const& conversion)
    {
        void const* const text = TakePointer(conversion.prefix);
        if (text == nullptr || m_arguments != Arguments::InStep) {
            return 0;
        }
        bool const isBounded = conversion.hasPrecision && conversion.precision >= 0;
        std::size_t const limit = isBounded ? static_cast<std::size_t>(conversion.precision) : SIZE_MAX;
        if (conversion.prefix == 'l') {
            auto const* const wide = static_cast<wchar_t const*>(text);
            return ReportedLength(isBounded ? WideLength(wide, limit) : ::wcslen(wide));
        }
        return ReportedLength(::strnlen(static_cast<char const*>(text), limit));
    }

    char const* m_p;
    char const* m_end;
    std::va_list m_args;
    Arguments m_arguments = Arguments::InStep;
    std::uint32_t m_total = 0;
};

} // namespace

std::uint64_t EstimateFormatLength(char const* format, std::va_list args)
{
    return Walk(format, args).Run();
}

} // namespace Quarn::detail
