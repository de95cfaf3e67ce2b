#include "quarn/text/number_text.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <stdlib.h>

namespace {

using Quarn::detail::AsciiToLong;
using Quarn::detail::StringToLong;

// The C library's reader with 64 bits, cut to the limits of 32.
std::int32_t Reference(std::string const& text, int base)
{
    long long const number = ::strtoll(text.c_str(), nullptr, base);
    return static_cast<std::int32_t>(std::clamp<long long>(number, INT32_MIN, INT32_MAX));
}

std::string RandomText(std::mt19937& random, char const* alphabet, std::size_t longest)
{
    std::string const characters(alphabet);
    std::string text(random() % (longest + 1), ' ');
    for (char& c : text) {
        c = characters[random() % characters.size()];
    }
    return text;
}

TEST(NumberText, StringToLongIsTheCLibrarysWith32Bits)
{
    std::mt19937 random(11);
    for (int i = 0; i < 200000; ++i) {
        int const base = i % 3 == 0 ? 10 : i % 3 == 1 ? 16 : static_cast<int>(2 + random() % 35);
        std::string const text = RandomText(random, i % 2 == 0 ? "0123456789" : " +-0xX19afAFgz", 14);
        ASSERT_EQ(StringToLong(text, base), Reference(text, base)) << '"' << text << "\" base " << base;
    }
}

TEST(NumberText, StringToLongStopsAtTheLimits)
{
    EXPECT_EQ(StringToLong("2147483647"), INT32_MAX);
    EXPECT_EQ(StringToLong("2147483648"), INT32_MAX);
    EXPECT_EQ(StringToLong("-2147483648"), INT32_MIN);
    EXPECT_EQ(StringToLong("-2147483649"), INT32_MIN);
    EXPECT_EQ(StringToLong(std::string(100000, '9')), INT32_MAX);
    EXPECT_EQ(StringToLong("-" + std::string(100000, '9')), INT32_MIN);
    EXPECT_EQ(StringToLong("ffffffff", 16), INT32_MAX);
}

TEST(NumberText, AsciiToLongCountsModulo32Bits)
{
    EXPECT_EQ(AsciiToLong("2147483647"), INT32_MAX);
    EXPECT_EQ(AsciiToLong("2147483648"), INT32_MIN);
    EXPECT_EQ(AsciiToLong("4294967295"), -1);
    EXPECT_EQ(AsciiToLong("4294967296"), 0);
    EXPECT_EQ(AsciiToLong("-4294967295"), 1);
    EXPECT_EQ(AsciiToLong("-2147483648"), INT32_MIN);
}

TEST(NumberText, AsciiToLongReadsWhateverIsWrittenIn32Bits)
{
    std::mt19937 random(12);
    for (int i = 0; i < 20000; ++i) {
        std::uint32_t const number = static_cast<std::uint32_t>(random());
        ASSERT_EQ(AsciiToLong(std::to_string(number)), static_cast<std::int32_t>(number));
        ASSERT_EQ(AsciiToLong(std::to_string(static_cast<std::int32_t>(number))),
                  static_cast<std::int32_t>(number));
    }
}

TEST(NumberText, BothSkipWhiteSpaceTakeOneSignAndStopAtTheFirstOtherCharacter)
{
    using Reader = std::int32_t (*)(std::string_view);
    for (Reader const read :
         {Reader([](std::string_view text) { return StringToLong(text); }), Reader(AsciiToLong)}) {
        EXPECT_EQ(read(""), 0);
        EXPECT_EQ(read(" \t\n\v\f\r+12"), 12);
        EXPECT_EQ(read("-12abc"), -12);
        EXPECT_EQ(read("--12"), 0);
        EXPECT_EQ(read("+-12"), 0);
        EXPECT_EQ(read("- 12"), 0);
        EXPECT_EQ(read("abc"), 0);
        EXPECT_EQ(read("0x10"), 0);
        EXPECT_EQ(read("007"), 7);
        EXPECT_EQ(read("1,000"), 1);
        EXPECT_EQ(read({"1\0002", 3}), 1);
        EXPECT_EQ(read({"\xa0"
                        "12",
                        3}),
                  0);
        EXPECT_EQ(read(std::string_view("123456").substr(0, 3)), 123);
    }
}

} // namespace
