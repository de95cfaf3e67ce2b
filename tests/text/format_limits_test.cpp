// string::Format where its buffers end: outputs around their sizes, and formats whose estimate says too
// little or far too much.
#include "quarn/text/string.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#pragma GCC diagnostic ignored "-Wformat-security"

namespace {

using Quarn::string;

void ExpectText(string const& text, int result, std::string const& expected)
{
    EXPECT_EQ(result, static_cast<int>(expected.size()));
    ASSERT_EQ(text.size(), expected.size());
    EXPECT_TRUE(text == expected); // short on failure: the texts are long
}

std::string Join(char const* front, std::size_t count, char c)
{
    return std::string(front).append(count, c);
}

TEST(FormatLimits, OutputsAroundTheBufferSizesAreWhole)
{
    for (int const size : {511, 512, 4096, 8192, 16'384, 65'536}) {
        for (int length = size - 3; length <= size + 3; ++length) {
            SCOPED_TRACE(length);
            std::size_t const count = static_cast<std::size_t>(length);
            std::string const letters(count, 'x');
            string text = "old";
            ExpectText(text, text.Format("%s", letters.c_str()), letters);           // estimated exactly
            ExpectText(text, text.Format(letters.c_str()), letters);                 // far too much
            ExpectText(text, text.Format("%.*s", length, letters.c_str()), letters); // exactly
            ExpectText(text, text.Format("%*.1s", length, "x"), std::string(count - 1, ' ') + "x"); // as 1
            ExpectText(text, text.Format("%-*E", length, 1.0),
                       Join("1.000000E+00", count - 12, ' ')); // as nothing
            ExpectText(text, text.Format("%0*lld", length, 5LL), std::string(count - 1, '0') + "5"); // as 1
            ExpectText(text, text.Format("%0*d", length, 5), std::string(count - 1, '0') + "5");
            ExpectText(text, text.Format("%.*f", length - 2, 0.5), Join("0.5", count - 3, '0'));
        }
    }
}

TEST(FormatLimits, ConversionsUnknownToTheEstimateMayBeLong)
{
    string text;
    ExpectText(text, text.Format("%.5000E", 0.0), Join("0.", 5000, '0') + "E+00");
    ExpectText(text, text.Format("%3000a", 1.0), std::string(2994, ' ') + "0x1p+0");
    ExpectText(text, text.Format("%-3000A|", 1.0), Join("0X1P+0", 2994, ' ') + "|");
    ExpectText(text, text.Format("%.5000F", 0.5), Join("0.5", 4999, '0'));
    ExpectText(text, text.Format("%030000lld", -5LL), Join("-", 29'998, '0') + "5");
    ExpectText(text, text.Format("%030000zu", std::size_t{5}), std::string(29'999, '0') + "5");
    std::string const letters(20'000, 'x');
    ExpectText(text, text.Format("%lld%s", 7LL, letters.c_str()), std::string("7") + letters);
    ExpectText(text, text.Format("%E%s%s", 0.0, letters.c_str(), letters.c_str()),
               std::string("0.000000E+00") + letters + letters);
}

TEST(FormatLimits, LargestNumbersAreLongerThanTheirEstimate)
{
    string text;
    EXPECT_EQ(text.Format("%f", 1.7976931348623157e308), 316);
    EXPECT_EQ(text.substr(0, 10), "1797693134");
    EXPECT_EQ(text.Format("%f %f", -1.7976931348623157e308, 1.7976931348623157e308), 634);
    EXPECT_EQ(text.substr(317, 11), " 1797693134");
    EXPECT_GT(text.Format("%Lf", std::numeric_limits<long double>::max()), 308);
}

// The estimate of such a run has wrapped past 32 bits: below zero, around zero, and far too small.
TEST(FormatLimits, LongLiteralRunsAreWhole)
{
    for (std::size_t const length : {65'535U, 65'536U, 70'000U, 92'681U, 92'682U, 131'072U, 1'000'000U}) {
        SCOPED_TRACE(length);
        std::string const letters(length, 'x');
        string text;
        ExpectText(text, text.Format(letters.c_str()), letters);
        ExpectText(text, text.Format((letters + "%d").c_str(), 5), letters + "5");
        ExpectText(text, text.Format(("%s" + letters).c_str(), "y"), std::string("y") + letters);
    }
}

TEST(FormatLimits, WidthsAndPrecisionsOfAHundredThousand)
{
    string text;
    std::size_t const count = 100'000;
    ExpectText(text, text.Format("%100000d", 5), std::string(count - 1, ' ') + "5");
    ExpectText(text, text.Format("%-100000d", 5), Join("5", count - 1, ' '));
    ExpectText(text, text.Format("%.100000d", -5), Join("-", count - 1, '0') + "5");
    ExpectText(text, text.Format("%100002.100000x", 5U), Join("  ", count - 1, '0') + "5");
    ExpectText(text, text.Format("%.100000f", 0.5), Join("0.5", count - 1, '0'));
    ExpectText(text, text.Format("%100000s", "x"), std::string(count - 1, ' ') + "x");
    ExpectText(text, text.Format("%100000.2s", "xyz"), std::string(count - 2, ' ') + "xy");
    ExpectText(text, text.Format("%100000c", 'x'), std::string(count - 1, ' ') + "x");
    ExpectText(text, text.Format("%*.*E", -100'000, 2, 0.0), Join("0.00E+00", count - 8, ' '));
    ExpectText(text, text.Format("%100000lld|%100000lld", 1LL, 2LL),
               std::string(count - 1, ' ') + Join("1|", count - 1, ' ') + "2");
}

TEST(FormatLimits, WidthsAndPrecisionsOfMillions)
{
    string text;
    std::size_t const count = 5'000'000;
    ExpectText(text, text.Format("%5000000d", 5), std::string(count - 1, ' ') + "5");
    ExpectText(text, text.Format("%-*d|", 5'000'000, 5), Join("5", count - 1, ' ') + "|");
    ExpectText(text, text.Format("%05000000d", -5), Join("-", count - 2, '0') + "5");
    ExpectText(text, text.Format("%+.*lld", 5'000'000, 5LL), Join("+", count - 1, '0') + "5");
    ExpectText(text, text.Format("%#.*x", 5'000'000, 5U), Join("0x", count - 1, '0') + "5");
    ExpectText(text, text.Format("%5000000s", "x"), std::string(count - 1, ' ') + "x");
    ExpectText(text, text.Format("%.*f", 5'000'000, 0.5), Join("0.5", count - 1, '0'));
}

TEST(FormatLimits, LongTextsAreWhole)
{
    std::string const letters(5'000'000, 'x');
    string text;
    ExpectText(text, text.Format("%s", letters.c_str()), letters);
    ExpectText(text, text.Format("%s%s", letters.c_str(), letters.c_str()), letters + letters);
}

} // namespace
