// Makes formats with matching arguments out of a stream of choices and compares string::Format with the C
// library's own formatter on them. The tests draw the choices from a random engine, the fuzzer from its
// input.
#pragma once

#include "quarn/text/string.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <stdio.h>

namespace generated_format {

constexpr std::size_t MaxArguments = 3;

struct Argument
{
    enum class Kind
    {
        Int,
        LongLong,
        Double,
        Text
    };
    Kind kind = Kind::Int;
    int i = 0;
    long long l = 0;
    double d = 0;
    std::string text = {};
};

struct Format
{
    std::string text;
    std::vector<Argument> arguments;
};

// A number in [0, bound) at every call.
using Choose = std::function<unsigned(unsigned bound)>;

class Maker
{
public:
    explicit Maker(Choose choose) : m_choose(std::move(choose)) {}

    // Literal text and conversions with no more than MaxArguments arguments, those of '*' included.
    Format Make()
    {
        m_format = Format();
        unsigned const pieces = 1 + m_choose(5);
        for (unsigned i = 0; i < pieces; ++i) {
            if (m_choose(3) == 0) {
                AddLiteral();
            } else {
                AddConversion();
            }
        }
        return m_format;
    }

    Argument Value(Argument::Kind kind)
    {
        Argument value;
        value.kind = kind;
        switch (kind) {
        case Argument::Kind::Int:
            value.i = static_cast<int>(Integer());
            break;
        case Argument::Kind::LongLong:
            value.l = Integer();
            break;
        case Argument::Kind::Double:
            value.d = Floating();
            break;
        case Argument::Kind::Text: {
            unsigned const length = m_choose(6) == 0 ? m_choose(1500) : m_choose(20);
            for (unsigned i = 0; i < length; ++i) {
                value.text.push_back(Pick("abc%s\x01\x7f\xe4\xff"));
            }
            break;
        }
        }
        return value;
    }

    // The value of a '*'.
    Argument Star()
    {
        Argument argument;
        int const magnitude = static_cast<int>(m_choose(8) == 0 ? m_choose(1500) : m_choose(24));
        argument.i = m_choose(3) == 0 ? -magnitude : magnitude;
        return argument;
    }

private:
    char Pick(std::string const& from) { return from[m_choose(static_cast<unsigned>(from.size()))]; }

    bool HasRoom() const { return m_format.arguments.size() < MaxArguments; }

    void AddLiteral()
    {
        unsigned const length = m_choose(8) == 0 ? m_choose(700) : m_choose(12);
        for (unsigned i = 0; i < length; ++i) {
            char const c = Pick("abcdlhsn.*5 -#%\n\x7f\xe4\xff");
            m_format.text.append(c == '%' ? "%%" : std::string(1, c));
        }
    }

    void AddNumber()
    {
        unsigned const number = m_choose(16) == 0 ? m_choose(1500) : m_choose(24);
        m_format.text.append(std::to_string(number));
    }

    void AddStar()
    {
        m_format.text.push_back('*');
        m_format.arguments.push_back(Star());
    }

    void AddConversion()
    {
        if (!HasRoom()) {
            return;
        }
        auto const kind = static_cast<Argument::Kind>(m_choose(4));
        // A star must leave room for the value behind it.
        auto const starFits = [this] { return m_format.arguments.size() + 2 <= MaxArguments; };

        m_format.text.push_back('%');
        for (unsigned i = m_choose(4); i > 1; --i) {
            m_format.text.push_back(Pick(kind == Argument::Kind::Text ? "-" : "-+ #0"));
        }
        switch (m_choose(4)) {
        case 0:
            AddNumber();
            break;
        case 1:
            if (starFits()) {
                AddStar();
            }
            break;
        default:
            break;
        }
        unsigned const precision = m_choose(4);
        if (precision < 3) {
            m_format.text.push_back('.');
            if (precision == 1) {
                AddNumber();
            } else if (precision == 2 && starFits()) {
                AddStar();
            }
        }
        AddLetter(kind);
        m_format.arguments.push_back(Value(kind));
    }

    void AddLetter(Argument::Kind kind)
    {
        switch (kind) {
        case Argument::Kind::Int:
            if (m_choose(6) == 0) {
                m_format.text.push_back('c');
            } else {
                char const* const prefixes[] = {"", "h", "hh"};
                m_format.text.append(prefixes[m_choose(3)]).push_back(Pick("diouxX"));
            }
            break;
        case Argument::Kind::LongLong:
            m_format.text.append(m_choose(2) == 0 ? "ll" : "j").push_back(Pick("diouxX"));
            break;
        case Argument::Kind::Double:
            m_format.text.append(m_choose(3) == 0 ? "l" : "").push_back(Pick("eEfFgGaA"));
            break;
        case Argument::Kind::Text:
            m_format.text.push_back('s');
            break;
        }
    }

    long long Integer()
    {
        long long const limits[] = {0, 1, -1, INT32_MAX, INT32_MIN, INT64_MAX, INT64_MIN, 255, -128, 1000};
        if (m_choose(2) == 0) {
            return limits[m_choose(10)];
        }
        std::uint64_t bits = 0;
        for (unsigned i = m_choose(9); i > 0; --i) {
            bits = bits << 8 | m_choose(256);
        }
        return static_cast<long long>(bits);
    }

    double Floating()
    {
        using Limits = std::numeric_limits<double>;
        double const special[] = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.5,
                                  0.1,
                                  9.9999999,
                                  1e15,
                                  123456789.123456789,
                                  Limits::max(),
                                  Limits::min(),
                                  -Limits::max(),
                                  Limits::denorm_min(),
                                  5e-5,
                                  0.5,
                                  Limits::infinity(),
                                  -Limits::infinity(),
                                  Limits::quiet_NaN()};
        if (m_choose(2) == 0) {
            return special[m_choose(17)];
        }
        double const numerator = static_cast<double>(Integer());
        return numerator / static_cast<double>(1 + m_choose(1'000'000));
    }

    Choose m_choose;
    Format m_format;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security" // the formats are not literals: that is the point

// A formatter for Difference: string::Format itself.
struct StringFormat
{
    template<typename... Args>
    int operator()(std::string& text, char const* format, Args... args) const
    {
        Quarn::string formatted = text;
        int const result = formatted.Format(format, args...);
        text = formatted;
        return result;
    }
};

// Empty when the formatter gives the text and the result of the C library's own.
template<typename Formatter, typename... Args>
std::string Difference(Formatter formatter, char const* format, Args... args)
{
    int const expectedResult = ::snprintf(nullptr, 0, format, args...);
    std::string text = "old contents";
    std::string expected = text;
    if (expectedResult >= 0) {
        std::size_t const size = static_cast<std::size_t>(expectedResult) + 1;
        std::unique_ptr<char[]> const exact(new char[size]);
        ::snprintf(exact.get(), size, format, args...);
        expected = exact.get();
    }
    int const result = formatter(text, format, args...);
    if (result == expectedResult && text == expected) {
        return {};
    }
    return std::string(format) + "\nexpected " + std::to_string(expectedResult) + " <" + expected +
           ">\ngot " + std::to_string(result) + " <" + text + ">";
}

#pragma GCC diagnostic pop

// The same for a format and arguments whose number and types are known at run time only.
template<typename Formatter, typename... Args>
std::string Difference(Formatter formatter, Format const& format, Args... args)
{
    if (format.arguments.size() == sizeof...(args)) {
        return Difference(formatter, format.text.c_str(), args...);
    }
    if constexpr (sizeof...(args) < MaxArguments) {
        Argument const& next = format.arguments[sizeof...(args)];
        switch (next.kind) {
        case Argument::Kind::Int:
            return Difference(formatter, format, args..., next.i);
        case Argument::Kind::LongLong:
            return Difference(formatter, format, args..., next.l);
        case Argument::Kind::Double:
            return Difference(formatter, format, args..., next.d);
        case Argument::Kind::Text:
            return Difference(formatter, format, args..., next.text.c_str());
        }
    }
    return "too many arguments";
}

} // namespace generated_format
