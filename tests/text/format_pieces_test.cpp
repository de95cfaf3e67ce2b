// The formatter that stands in for a C library with a weak one, compared with a C library that is none: on
// every system, although only one uses it.
#include "quarn/platform/formatter.h"

#include "generated_format.h"

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

int FormatCut(char* buffer, std::size_t capacity, char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    int const result = Quarn::detail::FormatInPieces(buffer, capacity, format, args);
    va_end(args);
    return result;
}

// Through exactly sized blocks, the whole text and two cut ones.
struct InPieces
{
    template<typename... Args>
    int operator()(std::string& text, char const* format, Args... args) const
    {
        char one = 'x';
        int const result = FormatCut(&one, 1, format, args...);
        if (result < 0) {
            return result;
        }
        std::size_t const size = static_cast<std::size_t>(result) + 1;
        std::unique_ptr<char[]> const exact(new char[size]);
        int const again = FormatCut(exact.get(), size, format, args...);
        text = exact.get();

        std::size_t const half = size / 2 + 1;
        std::unique_ptr<char[]> const cut(new char[half]);
        int const third = FormatCut(cut.get(), half, format, args...);
        bool const isFront = text.substr(0, half - 1) == cut.get();
        return one == '\0' && again == result && third == result && isFront ? result : INT_MIN;
    }
};

TEST(FormatPieces, GeneratedFormatsGiveTheTextOfTheCLibrary)
{
    std::mt19937 engine(4242);
    generated_format::Maker maker([&](unsigned bound) { return static_cast<unsigned>(engine() % bound); });
    for (int i = 0; i < 10'000; ++i) {
        ASSERT_EQ(generated_format::Difference(InPieces(), maker.Make()), "");
    }
}

// Numbers wider than the C library lays out on the stack; one that can, is the reference. The widths given
// here are below what any system's stack bears.
TEST(FormatPieces, LargeIntegersAreLaidOutAlike)
{
    for (char const letter : std::string("diouxX")) {
        for (char const* const flags : {"", "-", "0", "+", " ", "#", "-#", "0#", "+0", "-+", "#+ "}) {
            if (std::string("diouxX").find(letter) > 1 &&
                std::string(flags).find_first_of("+ ") != std::string::npos) {
                continue; // no signs for unsigned numbers
            }
            if (std::string("diu").find(letter) != std::string::npos &&
                std::string(flags).find('#') != std::string::npos) {
                continue; // no other form of decimal numbers
            }
            for (long long const value : {0LL, 1LL, -1LL, 1234567890123LL, LLONG_MIN}) {
                std::string const end = std::string("ll") + letter + ">";
                std::string const start = std::string("<%") + flags;
                for (char const* const size : {"05000", "5000", "5000.", "5000.0", "5000.20", "5000.4500",
                                               "4500.5000", ".5000", "10.5000"}) {
                    ASSERT_EQ(generated_format::Difference(InPieces(), (start + size + end).c_str(), value),
                              "");
                }
                for (int const width : {-5000, 5000}) {
                    for (int const precision : {-5000, -1, 0, 30, 4900, 6000}) {
                        ASSERT_EQ(generated_format::Difference(InPieces(), (start + "*.*" + end).c_str(),
                                                               width, precision, value),
                                  "");
                    }
                }
            }
        }
    }
}

TEST(FormatPieces, NumbersOutOfRangeAreRefused)
{
    char buffer[32];
    EXPECT_LT(FormatCut(buffer, sizeof buffer, "%2147483648d", 1), 0);
    EXPECT_LT(FormatCut(buffer, sizeof buffer, "%.2147483648d", 1), 0);
    EXPECT_LT(FormatCut(buffer, sizeof buffer, "%18446744073709551617d", 1), 0);
    EXPECT_LT(FormatCut(buffer, sizeof buffer, "%*d", INT_MIN, 1), 0);
    EXPECT_EQ(FormatCut(buffer, sizeof buffer, "%.*d", INT_MIN, 1), 1);
    EXPECT_STREQ(buffer, "1");
    // Together more than a result can say.
    EXPECT_LT(FormatCut(buffer, sizeof buffer, "%*d%*d", INT_MAX, 1, INT_MAX, 2), 0);
    EXPECT_EQ(FormatCut(buffer, sizeof buffer, "%*d", INT_MAX, 1), INT_MAX);
    EXPECT_EQ(std::string(buffer), std::string(31, ' '));
}

TEST(FormatPieces, CountsAreStoredInEverySize)
{
    char buffer[64];
    signed char tiny = 0;
    short small = 0;
    int usual = 0;
    long large = 0;
    long long huge = 0;
    EXPECT_EQ(FormatCut(buffer, sizeof buffer, "%*s%hhn.%hn.%n.%ln.%lln", 5, "x", &tiny, &small, &usual,
                        &large, &huge),
              9);
    EXPECT_STREQ(buffer, "    x....");
    EXPECT_EQ(tiny, 5);
    EXPECT_EQ(small, 6);
    EXPECT_EQ(usual, 7);
    EXPECT_EQ(large, 8);
    EXPECT_EQ(huge, 9);
}

TEST(FormatPieces, EveryKindOfArgumentIsFound)
{
    char buffer[256];
    EXPECT_EQ(FormatCut(buffer, sizeof buffer, "%*d|%zu|%jd|%td|%hd|%lu|%Lg|%c|%lc|%s|%ls|%%|%d", 3, 1,
                        std::size_t{2}, std::intmax_t{3}, std::ptrdiff_t{4}, 5, 6UL, 7.5L, 'c',
                        static_cast<wint_t>(L'w'), "text", L"wide", 8),
              35);
    EXPECT_STREQ(buffer, "  1|2|3|4|5|6|7.5|c|w|text|wide|%|8");
    EXPECT_EQ(FormatCut(buffer, sizeof buffer, "%*c%c%s", 3, 'a', 0, "behind"), 10);
    EXPECT_STREQ(buffer, "  a");
    EXPECT_STREQ(buffer + 4, "behind");
}

} // namespace
