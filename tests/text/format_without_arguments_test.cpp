// Texts from outside read as formats: what comes out for every conversion, and that nothing else happens.
#include "quarn/stream/crc32.h"
#include "quarn/text/format_without_arguments.h"

#include "generated_format.h"
#include "tests/german_locale.h"

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

// From a block of exactly the format's size.
std::string Rendered(std::string_view format)
{
    std::unique_ptr<char[]> const exact(new char[format.size() + 1]);
    std::memcpy(exact.get(), format.data(), format.size());
    exact[format.size()] = '\0';
    std::string text;
    EXPECT_TRUE(
        Quarn::detail::FormatWithoutArguments(exact.get(), [&text](char const* piece, std::size_t size) {
            EXPECT_GT(size, 0U);
            text.append(piece, size);
            return true;
        }));
    return text;
}

TEST(FormatWithoutArguments, LiteralTextStaysAsItIs)
{
    for (std::string const text : {"", "a", "a text", "\x01\t\n\xe4\xff", "no conversion: d s n"}) {
        EXPECT_EQ(Rendered(text), text);
    }
    std::string const large(1'000'000, 'x');
    EXPECT_EQ(Rendered(large), large);
}

TEST(FormatWithoutArguments, ADoubledPercentSignGivesOne)
{
    EXPECT_EQ(Rendered("%%"), "%");
    EXPECT_EQ(Rendered("100%% of %%s"), "100% of %s");
    EXPECT_EQ(Rendered("%%%%n"), "%%n");
    // As the C library reads it.
    EXPECT_EQ(Rendered("<%5%>"), "<%>");
    EXPECT_EQ(Rendered("100% of 20%"), "1000f 20%");
}

TEST(FormatWithoutArguments, AConversionIsThatOfAZeroOrAnEmptyText)
{
    struct Case
    {
        char const* format;
        std::string text;
    };
    std::string const zero(1, '\0');
    for (Case const& c : {Case{"%d|%i|%u|%o|%x|%X", "0|0|0|0|0|0"},
                          {"%f|%F|%e|%E", "0.000000|0.000000|0.000000e+00|0.000000E+00"},
                          {"%g|%G|%a|%A", "0|0|0x0p+0|0X0P+0"},
                          {"<%s|%S|%ls>", "<||>"},
                          {"<%c|%C|%lc>", "<" + zero + "|" + zero + "|" + zero + ">"},
                          {"<%3c|%-3c>", "<  " + zero + "|" + zero + "  >"},
                          {"%p|%20p|%-20p|", "0000000000000000|    0000000000000000|0000000000000000    |"},
                          {"%5d|%-5d|%05d|%+d|% d", "    0|0    |00000|+0| 0"},
                          {"%.3d|%8.3d|%.0d|%#.0o|%#x", "000|     000||0|0"},
                          {"%.2f|%8.1f|%08.1f|%+.0f|%#.0f", "0.00|     0.0|000000.0|+0|0."},
                          {"<%5s|%-5s|%5.3s>", "<     |     |     >"}}) {
        EXPECT_EQ(Rendered(c.format), c.text) << c.format;
    }
}

TEST(FormatWithoutArguments, EverySizeIsPassedOver)
{
    for (char const* const size : {"hh", "h", "l", "ll", "j", "z", "t", "L", "I", "I32", "I64"}) {
        for (char const* const letter : {"d", "i", "u", "o", "x", "X", "g", "G"}) {
            EXPECT_EQ(Rendered(std::string("%") + size + letter), "0") << size << letter;
        }
        EXPECT_EQ(Rendered(std::string("<%") + size + "s%" + size + "n>"), "<>") << size;
    }
}

TEST(FormatWithoutArguments, CountsAreStoredNowhere)
{
    EXPECT_EQ(Rendered("a%nb%hhnc%hnd%lne%llnf%jng%znh%tni%5n%*n%1$n"), "abcdefghi%1$n");
}

TEST(FormatWithoutArguments, AStarIsAZero)
{
    EXPECT_EQ(Rendered("%*d|%-*d|%.*f|%*.*e|<%*s|%.*s>"), "0|0|0|0e+00|<|>");
}

TEST(FormatWithoutArguments, WidthsAndPrecisionsEndAt4095)
{
    for (std::string const number : {"4095", "4096", "65536", "999999999", "2147483647", "2147483648",
                                     "18446744073709551617", "99999999999999999999999999999999"}) {
        EXPECT_EQ(Rendered("%" + number + "d"), std::string(4094, ' ') + "0") << number;
        EXPECT_EQ(Rendered("%-" + number + "d"), "0" + std::string(4094, ' ')) << number;
        EXPECT_EQ(Rendered("%0" + number + "d"), std::string(4095, '0')) << number;
        EXPECT_EQ(Rendered("%." + number + "d"), std::string(4095, '0')) << number;
        EXPECT_EQ(Rendered("%." + number + "f"), "0." + std::string(4095, '0')) << number;
        EXPECT_EQ(Rendered("%+." + number + "a"), "+0x0." + std::string(4095, '0') + "p+0") << number;
        EXPECT_EQ(Rendered("%#." + number + "g"), "0." + std::string(4094, '0')) << number;
        EXPECT_EQ(Rendered("%" + number + "s"), std::string(4095, ' ')) << number;
        EXPECT_EQ(Rendered("%" + number + "c").size(), 4095U) << number;
        EXPECT_EQ(Rendered("%" + number + "p").size(), 4095U) << number;
        EXPECT_EQ(Rendered("%" + number + "n"), "") << number;
        EXPECT_EQ(Rendered("%" + number + "y"), "%" + number + "y");
    }
    EXPECT_EQ(Rendered("%4094d").size(), 4094U);
    EXPECT_EQ(Rendered("%.4094d").size(), 4094U);
}

TEST(FormatWithoutArguments, WhatIsNoConversionOfTheStandardStandsAsItIs)
{
    for (std::string const text : {"%y",
                                   "%m",
                                   "%b",
                                   "%D",
                                   "%r",
                                   "%1$s",
                                   "%2$*1$d",
                                   "%ws",
                                   "%qd",
                                   "%5.2y",
                                   "%-+ #0'8.3hhk",
                                   "%*y",
                                   "%.y",
                                   "%I64y",
                                   "%hhhd",
                                   "%llld",
                                   "%$",
                                   "%\xe4",
                                   "%\n",
                                   "50% yes",
                                   "%(",
                                   "%-*.*~"}) {
        EXPECT_EQ(Rendered(text), text);
    }
}

TEST(FormatWithoutArguments, AConversionCutOffByTheEndStandsAsItIs)
{
    for (std::string const text : {"%", "100%", "100 %", "%5", "%-", "%.", "%.5", "%*", "%l", "%hh", "%I",
                                   "%I6", "%I64", "%+08.3ll", "%1$"}) {
        EXPECT_EQ(Rendered(text), text);
        EXPECT_EQ(Rendered("%d" + text), "0" + text);
    }
    EXPECT_EQ(Rendered("%%%"), "%%");
}

TEST(FormatWithoutArguments, FlagsCountOnlyWhereTheStandardHasThem)
{
    EXPECT_EQ(Rendered("%'d|%'f"), "0|0.000000");
    EXPECT_EQ(Rendered("%+u|% x|%#d|%#u"), "0|0|0|0");
    EXPECT_EQ(Rendered("<%05s|%+3s|%#s>"), "<     |   |>");
    EXPECT_EQ(Rendered("<%020p>"), "<    0000000000000000>");
    EXPECT_EQ(Rendered("%-05d|%+ d|%---3d|%00003d"), "0    |+0|0  |000");
}

// A formatter for generated_format::Difference, to which the arguments do not matter.
struct WithoutArguments
{
    template<typename... Args>
    int operator()(std::string& text, char const* format, Args... /*args*/) const
    {
        std::string const whole = Rendered(format);
        text = whole.c_str(); // as the other side is seen up to a zero byte
        return static_cast<int>(whole.size());
    }
};

TEST(FormatWithoutArguments, GeneratedFormatsGiveWhatTheCLibraryMakesOfZerosOnEverySystem)
{
    std::mt19937 engine(20'071);
    generated_format::Maker maker([&](unsigned bound) { return static_cast<unsigned>(engine() % bound); });
    Quarn::CRC32 checksum;
    for (int i = 0; i < 4000; ++i) {
        generated_format::Format format = maker.Make();
        for (generated_format::Argument& argument : format.arguments) {
            argument = {.kind = argument.kind};
        }
        std::string const text = Rendered(format.text);
        checksum.Add(text.data(), static_cast<unsigned long>(text.size()));
#if !defined(_WIN32) // whose C library lays zeros out in ways of its own
        ASSERT_EQ(generated_format::Difference(WithoutArguments(), format), "");
#endif
    }
    EXPECT_EQ(checksum.GetValue(), 2741438073U); // of the texts that were compared
}

TEST(FormatWithoutArguments, TheDecimalPointIsTheLocales)
{
    GermanLocale const german;
    ASSERT_TRUE(german.Found());
    EXPECT_EQ(Rendered("%f|%09.2f|%#.0f|%e|%#g|%d"), "0,000000|000000,00|0,|0,000000e+00|0,00000|0");
}

TEST(FormatWithoutArguments, TextOfDoubledPercentSignsIsAnyText)
{
    std::mt19937 engine(7);
    for (int i = 0; i < 5'000; ++i) {
        std::string text;
        std::string doubled;
        for (unsigned length = engine() % 30; length > 0; --length) {
            char const c = "%%%dsn5*.lhI$ \xe4"[engine() % 15];
            text += c;
            doubled.append(c == '%' ? 2 : 1, c);
        }
        ASSERT_EQ(Rendered(doubled), text);
    }
}

TEST(FormatWithoutArguments, EndsWhereAPieceIsRefused)
{
    for (std::string const format : {"abc%dxyz%5s%-5s|%%|%c%y", "%5d", "%s", "%%", "%", "a", "%p%n"}) {
        int pieces = 0;
        Quarn::detail::FormatWithoutArguments(format.c_str(), [&pieces](char const*, std::size_t) {
            ++pieces;
            return true;
        });
        for (int last = 0; last < pieces; ++last) {
            int count = 0;
            EXPECT_FALSE(Quarn::detail::FormatWithoutArguments(
                format.c_str(), [&](char const*, std::size_t) { return count++ < last; }));
            EXPECT_EQ(count, last + 1) << format;
        }
    }
}

} // namespace
