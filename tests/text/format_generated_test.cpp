// string::Format against the C library's own formatter over generated formats and arguments.
#include "generated_format.h"
#include "tests/scale.h"

#include <bit>
#include <cfenv>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using generated_format::Difference;
using generated_format::StringFormat;

TEST(FormatGenerated, MixedConversionsGiveTheTextOfTheCLibrary)
{
    std::mt19937 engine(20240501);
    generated_format::Maker maker([&](unsigned bound) { return static_cast<unsigned>(engine() % bound); });
    std::set<std::string> formats;
    for (int i = 0; i < 20'000; ++i) {
        generated_format::Format const format = maker.Make();
        formats.insert(format.text);
        ASSERT_EQ(Difference(StringFormat(), format), "");
    }
    EXPECT_GT(formats.size(), 15'000U);
}

// Every combination of flags, width, precision and conversion letter for one value.
template<typename T>
void CompareAll(std::string const& prefix, std::string const& letters, std::vector<T> const& values,
                std::vector<std::string> const& flags)
{
    for (char const letter : letters) {
        for (std::string const& flag : flags) {
            for (char const* const width : {"", "1", "7", "40", "600"}) {
                for (char const* const precision : {"", ".", ".0", ".1", ".5", ".40", ".600"}) {
                    std::string const format = "<%" + flag + width + precision + prefix + letter + ">";
                    for (T const value : values) {
                        ASSERT_EQ(Difference(StringFormat(), format.c_str(), value), "");
                    }
                }
            }
            for (int const width : {-600, -7, 0, 1, 40, 600}) {
                std::string const format = "<%" + flag + "*" + prefix + letter + ">";
                ASSERT_EQ(Difference(StringFormat(), format.c_str(), width, values.front()), "");
                for (int const precision : {-600, -1, 0, 1, 40, 600}) {
                    std::string const both = "<%" + flag + "*.*" + prefix + letter + ">";
                    ASSERT_EQ(Difference(StringFormat(), both.c_str(), width, precision, values.front()), "");
                }
            }
        }
    }
}

std::vector<std::string> const NumberFlags = {"",   "-",  "+",  " ",  "#",  "0",    "-+",
                                              "-0", "+0", "#0", "-#", "+ ", "-+ #0"};

template<typename T>
std::vector<T> Limits()
{
    return {T{42}, T{0}, static_cast<T>(-1), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
}

TEST(FormatGenerated, IntegersOfEverySize)
{
    std::string const letters = "diouxX";
    CompareAll<int>("", letters, Limits<int>(), NumberFlags);
    CompareAll<int>("h", letters, Limits<int>(), NumberFlags);
    CompareAll<int>("hh", letters, Limits<int>(), NumberFlags);
    CompareAll<long>("l", letters, Limits<long>(), NumberFlags);
    CompareAll<long long>("ll", letters, Limits<long long>(), NumberFlags);
    CompareAll<std::size_t>("z", letters, Limits<std::size_t>(), NumberFlags);
    CompareAll<std::intmax_t>("j", letters, Limits<std::intmax_t>(), NumberFlags);
    CompareAll<std::ptrdiff_t>("t", letters, Limits<std::ptrdiff_t>(), NumberFlags);
}

template<typename T>
std::vector<T> FloatingValues()
{
    using L = std::numeric_limits<T>;
    return {T{1.5},   T{0},     -T{0},     T{-0.1}, T{9.9999995},  T{1e15},        T{123456789.125L},
            L::max(), L::min(), -L::max(), T{5e-5}, L::infinity(), -L::infinity(), L::quiet_NaN()};
}

TEST(FormatGenerated, FloatingNumbers)
{
    CompareAll<double>("", "eEfFgGaA", FloatingValues<double>(), {"", "-", "+", " ", "#", "0", "-+ #0"});
    CompareAll<double>("l", "fge", FloatingValues<double>(), {"", "-", "#0"});
    CompareAll<long double>("L", "eEfFgGaA", {1.5L, -0.1L, 1e4000L, 1e-4000L}, {"", "-", "#0"});
}

TEST(FormatGenerated, RealsOfAnyBits)
{
    std::mt19937_64 engine(20261121);
    int const count = Times("QUARN_DOUBLES", 20'000);
    for (int i = 0; i < count; i += 2) {
        auto const value = std::bit_cast<double>(engine());
        double const nearer =
            std::ldexp(static_cast<double>(engine() >> 11), static_cast<int>(engine() % 80) - 73);
        for (char const* const format : {"%f", "%.3f", "%-30.0f|", "%020.9f", "%lf", "%.17f"}) {
            ASSERT_EQ(Difference(StringFormat(), format, value), "");
            ASSERT_EQ(Difference(StringFormat(), format, nearer), "");
        }
    }
    ShowFigure(count, " doubles in 6 formats, 0 unlike the C library's");
}

TEST(FormatGenerated, RealsAreRoundedAsTheProgramAsksFor)
{
    for (int const direction : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST}) {
        std::fesetround(direction);
        for (double const value : {0.15, -0.15, 0.25, -0.25, 1e22, 9.999999999}) {
            EXPECT_EQ(Difference(StringFormat(), "%.1f", value), "") << direction;
        }
    }
}

TEST(FormatGenerated, TextsCharactersAndPointers)
{
    std::string const longText(3000, 'x');
    CompareAll<char const*>("", "s", {"hello", "", "%s%d", "\xe4\xff", longText.c_str()}, {"", "-"});
    CompareAll<int>("", "c", {'x', '%', 0xe4, '\0'}, {"", "-"});
    CompareAll<wchar_t const*>("l", "s", {L"hello", L"", L"%s%d"}, {"", "-"});
    CompareAll<wint_t>("l", "c", {L'x', L'%'}, {"", "-"});
    int number = 0;
    for (char const* const format : {"%p", "<%40p>", "%-40p|", "%600p"}) {
        EXPECT_EQ(Difference(StringFormat(), format, static_cast<void*>(&number)), "");
        EXPECT_EQ(Difference(StringFormat(), format, static_cast<void*>(nullptr)), "");
    }
    EXPECT_EQ(Difference(StringFormat(), "%*p", -60, static_cast<void*>(&number)), "");
}

// More arguments than travel in registers, in the order of each kind.
TEST(FormatGenerated, ManyArgumentsOfOneCall)
{
    std::mt19937 engine(77);
    auto const pick = [&](char const* from) { return from[engine() % std::char_traits<char>::length(from)]; };
    for (int i = 0; i < 2000; ++i) {
        std::string format;
        for (int pair = 0; pair < 10; ++pair) {
            format.append("%").append(std::to_string(engine() % 30)).push_back(pick("dixXuc"));
            format.append(" %.").append(std::to_string(engine() % 30)).push_back(pick("eEfFgGaA"));
            format.append(" %").append(pick("-0") == '-' ? "-" : "").append("ll").push_back(pick("dixXuo"));
            format.append("%.").append(std::to_string(engine() % 9)).append("s");
        }
        ASSERT_EQ(Difference(StringFormat(), format.c_str(), 1, 1.5, 1LL, "a", 2, 2.5, -2LL, "bc", 3, -3.5,
                             3LL, "def", 4, 4e40, 4LL, "ghij", 5, 5e-9, 5LL, "klmno", -6, 6.0, 6LL, "p", 77,
                             7.0, INT64_MIN, "q", 8, 8.0, 8LL, "", 9, 9.0, 9LL, "r", INT_MAX, 1e300,
                             INT64_MAX, "stu"),
                  "");
    }
}

} // namespace
