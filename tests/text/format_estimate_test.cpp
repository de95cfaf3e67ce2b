// The length estimate against values worked out by hand. The formats are no constant expressions to the
// compiler, so that wrong ones and foreign prefixes get through.
#include "quarn/platform/message.h"
#include "quarn/text/format_estimate.h"

#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

std::uint64_t Estimate(char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::uint64_t const result = Quarn::detail::EstimateFormatLength(format, args);
    va_end(args);
    return result;
}

// The sign-extended form of a 32-bit total.
constexpr std::uint64_t Extended(std::int32_t total)
{
    return static_cast<std::uint64_t>(std::int64_t{total});
}

TEST(FormatEstimate, LiteralTextCountsWithAllThatFollows)
{
    EXPECT_EQ(Estimate(""), 0U);
    EXPECT_EQ(Estimate("a"), 1U);
    EXPECT_EQ(Estimate("abc"), 6U);
    EXPECT_EQ(Estimate(std::string(100, 'x').c_str()), 5050U);
    EXPECT_EQ(Estimate("a%d", 1), 3U + 32U);
    EXPECT_EQ(Estimate("%da", 1), 32U + 1U);
    EXPECT_EQ(Estimate("ab%dcd", 1), 6U + 5U + 32U + 2U + 1U);
    EXPECT_EQ(Estimate("%d, %d\n", 1, 2), 32U + 5U + 4U + 32U + 1U);
}

TEST(FormatEstimate, DoubledPercentSignIsOneLiteral)
{
    EXPECT_EQ(Estimate("%%"), 1U);
    EXPECT_EQ(Estimate("a%%b"), 4U + 2U + 1U);
    EXPECT_EQ(Estimate("%%%%"), 3U + 1U);
    EXPECT_EQ(Estimate("%%%d", 1), 3U + 32U);
    EXPECT_EQ(Estimate("%d%%", 1), 32U + 1U);
    EXPECT_EQ(Estimate("%%d"), 2U + 1U);
}

TEST(FormatEstimate, TotalWrapsAt32BitsAndKeepsItsSign)
{
    // k (k + 1) / 2 passes 2^31 at 65,536 characters and 2^32 at 92,682.
    EXPECT_EQ(Estimate(std::string(65'535, 'x').c_str()), 2'147'450'880U);
    EXPECT_EQ(Estimate(std::string(65'536, 'x').c_str()), Extended(-2'147'450'880));
    EXPECT_EQ(Estimate(std::string(70'000, 'x').c_str()), Extended(-1'844'932'296));
    EXPECT_EQ(Estimate(std::string(92'682, 'x').c_str()), 55'607U);
    EXPECT_EQ(Estimate("%2147483647d%2147483647d%d", 1, 2, 3), 30U);
    EXPECT_EQ(Estimate("%.2147483647d", 1), Extended(-2'147'483'617));
}

TEST(FormatEstimate, Integers)
{
    for (char const* const conversion : {"d", "i", "o", "u", "x", "X"}) {
        auto const estimate = [&](char const* front) {
            return Estimate((std::string("%") + front + conversion).c_str(), 1);
        };
        SCOPED_TRACE(conversion);
        EXPECT_EQ(estimate(""), 32U);
        EXPECT_EQ(estimate("h"), 32U);
        EXPECT_EQ(estimate("5"), 32U);
        EXPECT_EQ(estimate("32"), 32U);
        EXPECT_EQ(estimate("33"), 33U);
        EXPECT_EQ(estimate("40"), 40U);
        EXPECT_EQ(estimate("#"), 2U + 32U);
        EXPECT_EQ(estimate("##"), 4U + 32U);
        EXPECT_EQ(estimate("-+ 0"), 32U);
        EXPECT_EQ(estimate("-040"), 40U);
        EXPECT_EQ(estimate("."), 32U);
        EXPECT_EQ(estimate(".0"), 32U);
        EXPECT_EQ(estimate(".10"), 42U);
        EXPECT_EQ(estimate("#40.10"), 52U);
        EXPECT_EQ(estimate("100000.100000"), 200'000U);
        EXPECT_EQ(estimate("99999999999"), 2'147'483'647U); // numbers saturate
        EXPECT_EQ(Estimate((std::string("%l") + conversion).c_str(), 1L), 32U);
    }
}

TEST(FormatEstimate, FloatingNumbers)
{
    for (char const* const conversion : {"e", "f", "g", "G"}) {
        auto const estimate = [&](char const* front) {
            return Estimate((std::string("%") + front + conversion).c_str(), 1.5);
        };
        SCOPED_TRACE(conversion);
        EXPECT_EQ(estimate(""), 128U);
        EXPECT_EQ(estimate("l"), 128U);
        EXPECT_EQ(estimate("5.3"), 128U);
        EXPECT_EQ(estimate("128"), 128U);
        EXPECT_EQ(estimate("129"), 129U);
        EXPECT_EQ(estimate(".96"), 128U);
        EXPECT_EQ(estimate(".97"), 129U);
        EXPECT_EQ(estimate("100.50"), 150U);
        EXPECT_EQ(estimate("#"), 2U + 128U);
        EXPECT_EQ(estimate("100000.100000"), 200'000U);
        EXPECT_EQ(Estimate((std::string("%L") + conversion + "%s").c_str(), 1.5L, "hello"), 133U);
    }
}

TEST(FormatEstimate, Characters)
{
    for (char const* const conversion : {"c", "C", "hc", "hC", "lc", "lC"}) {
        auto const estimate = [&](char const* front) {
            return Estimate((std::string("%") + front + conversion).c_str(), 'x');
        };
        SCOPED_TRACE(conversion);
        EXPECT_EQ(estimate(""), 2U);
        EXPECT_EQ(estimate("1"), 2U);
        EXPECT_EQ(estimate("10"), 10U);
        EXPECT_EQ(estimate("-10"), 10U);
        EXPECT_EQ(estimate(".0"), 2U);
        EXPECT_EQ(estimate(".1"), 1U);
        EXPECT_EQ(estimate("10.5"), 5U);
        EXPECT_EQ(estimate("#"), 2U + 2U);
    }
}

TEST(FormatEstimate, Texts)
{
    for (char const* const conversion : {"s", "S", "hs", "hS"}) {
        auto const estimate = [&](char const* front, char const* text) {
            return Estimate((std::string("%") + front + conversion).c_str(), text);
        };
        SCOPED_TRACE(conversion);
        EXPECT_EQ(estimate("", "hello"), 5U);
        EXPECT_EQ(estimate("", ""), 1U);
        EXPECT_EQ(estimate("3", "hello"), 5U);
        EXPECT_EQ(estimate("8", "hello"), 8U);
        EXPECT_EQ(estimate("-8", "hello"), 8U);
        EXPECT_EQ(estimate(".2", "hello"), 2U);
        EXPECT_EQ(estimate(".5", "hello"), 5U);
        EXPECT_EQ(estimate(".9", "hello"), 5U);
        EXPECT_EQ(estimate("8.2", "hello"), 2U);
        EXPECT_EQ(estimate("#", "hello"), 2U + 5U);
        EXPECT_EQ(estimate("", std::string(100'000, 'x').c_str()), 100'000U);
    }
}

TEST(FormatEstimate, WideTextsCountTheirUnits)
{
    EXPECT_EQ(Estimate("%ls", L"hello"), 5U);
    EXPECT_EQ(Estimate("%lS", L"hello"), 5U);
    EXPECT_EQ(Estimate("%ls", L""), 1U);
    EXPECT_EQ(Estimate("%8ls", L"hello"), 8U);
    EXPECT_EQ(Estimate("%.2ls", L"hello"), 2U);
    EXPECT_EQ(Estimate("%.9ls", L"hello"), 5U);
    EXPECT_EQ(Estimate("%.2lS", L"hello"), 2U);
    EXPECT_EQ(Estimate("%ls", L"\x20AC\x20AC"), 2U);
}

TEST(FormatEstimate, PointersAndCounts)
{
    int count = 0;
    EXPECT_EQ(Estimate("%p", static_cast<void*>(&count)), 32U);
    EXPECT_EQ(Estimate("%40p", static_cast<void*>(&count)), 40U);
    EXPECT_EQ(Estimate("%20.20p", static_cast<void*>(&count)), 40U);
    EXPECT_EQ(Estimate("%.8p", static_cast<void*>(&count)), 32U);
    EXPECT_EQ(Estimate("%n", &count), 0U);
    EXPECT_EQ(Estimate("%40n", &count), 0U);
    EXPECT_EQ(Estimate("%n%s", &count, "hello"), 5U);
    EXPECT_EQ(Estimate("%p%s", static_cast<void*>(&count), "hello"), 37U);
}

TEST(FormatEstimate, StarsTakeTheirArguments)
{
    EXPECT_EQ(Estimate("%*d", 40, 1), 40U);
    EXPECT_EQ(Estimate("%*d", 0, 1), 32U);
    EXPECT_EQ(Estimate("%.*d", 8, 1), 40U);
    EXPECT_EQ(Estimate("%*.*d", 40, 8, 1), 48U);
    EXPECT_EQ(Estimate("%*s%s", 8, "hello", "you"), 11U);
    EXPECT_EQ(Estimate("%.*s", 2, "hello"), 2U);
    EXPECT_EQ(Estimate("%.*f%s", 100, 1.5, "you"), 135U);
    EXPECT_EQ(Estimate("%-*d", 50, 1), 50U);
    EXPECT_EQ(Estimate("%*c", 9, 'x'), 9U);
}

TEST(FormatEstimate, NegativeStarsDeliberatelyCountAsTheyAre)
{
    EXPECT_EQ(Estimate("%*d", -40, 1), 32U);
    EXPECT_EQ(Estimate("%*s", -40, "hello"), 5U);
    EXPECT_EQ(Estimate("%.*d", -3, 1), 29U);
    EXPECT_EQ(Estimate("%.*s", -3, "hello"), Extended(-3));
    EXPECT_EQ(Estimate("%.*f", -3, 1.5), 128U);
    EXPECT_EQ(Estimate("%*p", INT32_MIN, nullptr), 32U);
}

TEST(FormatEstimate, UnknownConversionsCountNothing)
{
    EXPECT_EQ(Estimate("%E", 1.5), 0U);
    EXPECT_EQ(Estimate("%a", 1.5), 0U);
    EXPECT_EQ(Estimate("%A", 1.5), 0U);
    EXPECT_EQ(Estimate("%#40.3E", 1.5), 2U);
    EXPECT_EQ(Estimate("%y"), 0U);
    EXPECT_EQ(Estimate("%F", 1.5), 0U);
    EXPECT_EQ(Estimate("%LE", 1.5L), 0U);
}

// The unknown letter ends the conversion; what stands behind it is ordinary text.
TEST(FormatEstimate, UnknownPrefixesAreTakenAsTheConversion)
{
    EXPECT_EQ(Estimate("%lld", 1LL), 1U);
    EXPECT_EQ(Estimate("%hhd", 1), 1U);
    EXPECT_EQ(Estimate("%zu", std::size_t{1}), 1U);
    EXPECT_EQ(Estimate("%jd", std::intmax_t{1}), 1U);
    EXPECT_EQ(Estimate("%td", std::ptrdiff_t{1}), 1U);
    EXPECT_EQ(Estimate("%I64d", 1LL), 3U + 2U + 1U);
    EXPECT_EQ(Estimate("%1$d", 1), 1U);
    EXPECT_EQ(Estimate("%.-5d", 1), 2U + 1U); // the sign is the conversion
}

// An argument behind an unknown conversion is not the one that the walk thinks: never followed.
TEST(FormatEstimate, TextsBehindAnUnknownConversionAreNotFollowed)
{
    EXPECT_EQ(Estimate("%lld %s", 1LL, "hello"), 4U + 3U + 1U);
    EXPECT_EQ(Estimate("%zu %s", std::size_t{7}, "hello"), 4U + 3U + 1U);
    EXPECT_EQ(Estimate("%E %s", 1.5, "hello"), 3U + 1U);
    EXPECT_EQ(Estimate("%a%s%ls", 1.5, "hello", L"wide"), 2U);
    EXPECT_EQ(Estimate("%E%8s%.3s", 1.5, "hello", "you"), 9U);
    EXPECT_EQ(Estimate("%E%d%p%f%n%c", 1.5, 1, nullptr, 1.5, nullptr, 'x'), 32U + 32U + 128U + 2U);
    EXPECT_EQ(Estimate("%lld %s %s %s", 0x10LL, "a", "b", "c"), 10U + 9U + 1U + 6U + 1U + 3U + 1U);
}

TEST(FormatEstimate, PrefixFIsADoubleToTheCLibraryAndKeepsTheArgumentsInStep)
{
    EXPECT_EQ(Estimate("%Fd %s", 1.5, "hello"), 32U + 3U + 5U);
    EXPECT_EQ(Estimate("%Ff%s", 1.5, "hello"), 128U + 5U);
    EXPECT_EQ(Estimate("%Fc%s", 1.5, "hello"), 2U + 5U);
    EXPECT_EQ(Estimate("%Fs%s", 1.5, "hello"), 1U + 5U);
    EXPECT_EQ(Estimate("%Fp%Fn%s", 1.5, 1.5, "hello"), 32U + 5U);
    EXPECT_EQ(Estimate("%F %s", 1.5, "hello"), 1U); // the blank is the conversion
}

TEST(FormatEstimate, BehindAPrefixNNoArgumentIsTaken)
{
    EXPECT_EQ(Estimate("%Nd %s"), 32U + 3U + 1U);
    EXPECT_EQ(Estimate("%Ns%*d%.*f%p"), 1U + 32U + 128U + 32U);
}

// To the C library the second and the third percent sign are one of text.
TEST(FormatEstimate, BehindAPrefixFAndAPercentSignNoArgumentIsTaken)
{
    EXPECT_EQ(Estimate("%F%%*d", 1.5, 1000), 32U);
    EXPECT_EQ(Estimate("%.2F%%s%.*s", 1.5, 1000, "hello"), 2U);
}

TEST(FormatEstimate, PrefixesAreSkipped)
{
    EXPECT_EQ(Estimate("%Ld%s", 1LL, "hello"), 37U);
    EXPECT_EQ(Estimate("%ld%s", 1L, "hello"), 37U);
    EXPECT_EQ(Estimate("%hd%s", 1, "hello"), 37U);
    EXPECT_EQ(Estimate("%lf%s", 1.5, "hello"), 133U);
}

TEST(FormatEstimate, StopsAtTheFormatsEndWhereverThatStands)
{
    // In exactly sized blocks, so that a step too far is seen by the address sanitizer.
    for (char const* const format : {"%", "a%", "%5", "%-", "%#", "%.", "%.5", "%5.5", "%l", "%h", "%F", "%L",
                                     "%N", "%5l", "%.3F", "%%%", "%d%"}) {
        std::size_t const size = std::strlen(format) + 1;
        std::unique_ptr<char[]> const exact(new char[size]);
        std::memcpy(exact.get(), format, size);
        std::uint64_t const literals = format[0] == 'a' ? 2 : format[1] == '%' ? 2 : 0;
        std::uint64_t const flags = format[1] == '#' ? 2 : 0;
        std::uint64_t const numbers = format[1] == 'd' ? 32 : 0;
        EXPECT_EQ(Estimate(exact.get(), 1), literals + flags + numbers) << format;
    }
    EXPECT_EQ(Estimate("%*", 40), 0U);
    EXPECT_EQ(Estimate("%.*", 40), 0U);
    EXPECT_EQ(Estimate("%*.*", 40, 40), 0U);
}

TEST(FormatEstimate, TextWithAPrecisionNeedNotBeTerminated)
{
    std::unique_ptr<char[]> const exact(new char[3]{'a', 'b', 'c'});
    EXPECT_EQ(Estimate("%.3s", exact.get()), 3U);
    EXPECT_EQ(Estimate("%.2s", exact.get()), 2U);
    EXPECT_EQ(Estimate("%.*s", 3, exact.get()), 3U);
    EXPECT_EQ(Estimate("%.0s", exact.get()), 1U);
    EXPECT_EQ(Estimate("%.s", exact.get()), 1U);
    EXPECT_EQ(Estimate("%10.3s", exact.get()), 3U);

    std::unique_ptr<wchar_t[]> const wide(new wchar_t[3]{L'a', L'b', L'c'});
    EXPECT_EQ(Estimate("%.3ls", wide.get()), 3U);
    EXPECT_EQ(Estimate("%.*ls", 3, wide.get()), 3U);
}

TEST(FormatEstimate, NullTextCountsAsOneCharacter)
{
    EXPECT_EQ(Estimate("%s", static_cast<char const*>(nullptr)), 1U);
    EXPECT_EQ(Estimate("%ls", static_cast<wchar_t const*>(nullptr)), 1U);
    EXPECT_EQ(Estimate("%.3s", static_cast<char const*>(nullptr)), 1U);
    EXPECT_EQ(Estimate("%8s", static_cast<char const*>(nullptr)), 8U);
}

TEST(FormatEstimate, LeavesTheCallersArgumentsWhereTheyWere)
{
    auto const twice = [](char const* format, ...) {
        std::va_list args;
        va_start(args, format);
        std::uint64_t const first = Quarn::detail::EstimateFormatLength(format, args);
        std::uint64_t const second = Quarn::detail::EstimateFormatLength(format, args);
        va_end(args);
        return std::pair(first, second);
    };
    EXPECT_EQ(twice("%d%s%f%s", 1, "hello", 1.5, "you"), std::pair(std::uint64_t{168}, std::uint64_t{168}));
}

TEST(FormatEstimate, ManyArgumentsPassTheRegisters)
{
    EXPECT_EQ(Estimate("%d%d%d%d%d%d%d%d%s", 1, 2, 3, 4, 5, 6, 7, 8, "hello"), 8U * 32U + 5U);
    EXPECT_EQ(Estimate("%f%f%f%f%f%f%f%f%f%f%s", 1., 2., 3., 4., 5., 6., 7., 8., 9., 10., "hello"), 1285U);
    EXPECT_EQ(Estimate("%Lf%d%Lf%s%Lf%s", 1.L, 1, 2.L, "ab", 3.L, "abc"), 3U * 128U + 32U + 5U);
}

} // namespace
