// string::Format: what it returns and what becomes of the contents.
#include "quarn/text/string.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

// Formats that the compiler would rightly warn about.
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-security"

namespace {

using Quarn::string;

TEST(Format, EmptyFormatGivesTheEmptyString)
{
    string text = "old";
    std::string const empty;
    EXPECT_EQ(text.Format(empty.c_str()), 0);
    EXPECT_EQ(text, "");
}

TEST(Format, ReplacesTheContentsAndReturnsTheLength)
{
    string text = "old";
    EXPECT_EQ(text.Format("abc"), 3);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(text.Format("%s=%d", "n", 5), 3);
    EXPECT_EQ(text, "n=5");
    EXPECT_EQ(text.Format("%d%%|%5.3f|%#x|%40d", 7, 3.14159, 255, -1), 54);
    EXPECT_EQ(text, "7%|3.142|0xff|" + std::string(38, ' ') + "-1");
    EXPECT_EQ(text.Format("%.2s|%c|%-4s|%04d", "hello", 'x', "ab", 7), 14);
    EXPECT_EQ(text, "he|x|ab  |0007");
    int const length = text.Format("%lld %zu %jd %hhd", INT64_MIN, sizeof text, std::intmax_t{-1}, 257);
    EXPECT_EQ(static_cast<std::size_t>(length), text.size());
    EXPECT_EQ(text, "-9223372036854775808 " + std::to_string(sizeof text) + " -1 1");
}

TEST(Format, WorksOnAnEmptyAndOnALongString)
{
    string text;
    EXPECT_EQ(text.Format("%d", 1), 1);
    text.assign(100'000, 'x');
    EXPECT_EQ(text.Format("%d", 2), 1);
    EXPECT_EQ(text, "2");
}

TEST(Format, TakesItsOwnStringAsFormat)
{
    string text = "<%d>";
    EXPECT_EQ(text.Format(text.c_str(), 5), 3);
    EXPECT_EQ(text, "<5>");
    text = string(3000, 'x') + "%d" + string(3000, 'y');
    EXPECT_EQ(text.Format(text.c_str(), 5), 6001);
    EXPECT_EQ(text, string(3000, 'x') + "5" + string(3000, 'y'));
}

TEST(Format, TakesItsOwnStringAsArgument)
{
    string text = "ab";
    EXPECT_EQ(text.Format("<%s|%s>", text.c_str(), text.c_str()), 7);
    EXPECT_EQ(text, "<ab|ab>");
    text.assign(20'000, 'x');
    EXPECT_EQ(text.Format("%s-%s", text.c_str(), text.c_str() + 19'999), 20'002);
    EXPECT_EQ(text, string(20'000, 'x') + "-x");
}

TEST(Format, TextDeliberatelyEndsAtItsFirstZeroByteWhileTheResultCountsAll)
{
    string text = "old";
    EXPECT_EQ(text.Format("ab%ccd", 0), 5);
    EXPECT_EQ(text, "ab");
    EXPECT_EQ(text.size(), 2U);
    EXPECT_EQ(text.Format("%c", 0), 1);
    EXPECT_EQ(text, "");
    EXPECT_EQ(text.Format("%600d%c%600d", 1, 0, 2), 1201);
    EXPECT_EQ(text, string(599, ' ') + "1");
}

TEST(Format, CountConversionStoresTheCountOnce)
{
    string text;
    int count = -1;
    EXPECT_EQ(text.Format("abc%n%s", &count, "def"), 6);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(text, "abcdef");
    EXPECT_EQ(text.Format("%s%n", string(5000, 'x').c_str(), &count), 5000);
    EXPECT_EQ(count, 5000);
}

TEST(Format, WideTextsAreConverted)
{
    string text;
    EXPECT_EQ(text.Format("%ls|%lc|%.2ls|%6ls", L"wide", static_cast<wint_t>(L'x'), L"abc", L"abc"), 16);
    EXPECT_EQ(text, "wide|x|ab|   abc");
}

TEST(Format, NullTextsAreNamed)
{
    string text;
    char const* const null = nullptr;
    wchar_t const* const wideNull = nullptr;
    EXPECT_EQ(text.Format("<%s>", null), 8);
    EXPECT_EQ(text, "<(null)>");
    EXPECT_EQ(text.Format("<%ls>", wideNull), 8);
    EXPECT_EQ(text, "<(null)>");
}

// What the C library reads of a text with a precision may be all there is.
TEST(Format, TextWithAPrecisionNeedNotBeTerminated)
{
    std::unique_ptr<char[]> const exact(new char[3]{'a', 'b', 'c'});
    std::unique_ptr<wchar_t[]> const wide(new wchar_t[3]{L'a', L'b', L'c'});
    string text;
    EXPECT_EQ(text.Format("%.3s", exact.get()), 3);
    EXPECT_EQ(text, "abc");
    // The address sanitizer's own check of printf takes a precision of 0 for none and wants a terminator.
    EXPECT_EQ(text.Format("%.*s|%.1s|%.0s", 3, exact.get(), exact.get(), "abcd"), 6);
    EXPECT_EQ(text, "abc|a|");
    EXPECT_EQ(text.Format("%.3ls", wide.get()), 3);
    EXPECT_EQ(text, "abc");
}

TEST(Format, WidthOrPrecisionAboveTheLargestIntIsRefusedAndTheContentsStay)
{
    for (char const* const format :
         {"%2147483648d", "%99999999999d", "%.2147483648d", "%.99999999999f", "abc%4294967296d",
          "%4294967301d", "%18446744073709551621d", "%18446744073709551617.3d", "%.18446744073709551618d"}) {
        string text = "old";
        EXPECT_LT(text.Format(format, 5), 0) << format;
        EXPECT_EQ(text, "old") << format;
    }
    string text = "old";
    EXPECT_LT(text.Format("%2147483648s", "x"), 0);
    EXPECT_LT(text.Format("%.2147483648s", "x"), 0);
    EXPECT_LT(text.Format("%2147483648f", 1.5), 0);
    EXPECT_LT(text.Format("%s%2147483648c", "x", 'x'), 0);
    EXPECT_EQ(text, "old");
}

// Formats that the C library need not know: no more than this is promised.
TEST(Format, FormatThatEndsInTheMiddleOfAConversionDoesNoHarm)
{
    for (char const* const format :
         {"%", "abc%", "%5", "%l", "%F%", "%.", "%.5", "%-", "%#", "%%%", "%ll", "%h"}) {
        std::string const old = "old";
        string text = old;
        int const result = text.Format(format, 1.5);
        if (result < 0) {
            EXPECT_EQ(text, old) << format;
        } else {
            EXPECT_EQ(text.size(), static_cast<std::size_t>(result)) << format;
        }
    }
}

} // namespace
