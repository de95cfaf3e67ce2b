// What string::Format allocates.
#include "quarn/text/string.h"

#include "tests/counted_memory.h"

#include <gtest/gtest.h>

namespace {

template<typename Action>
std::size_t AllocationsOf(Action action)
{
    std::size_t const before = g_memory.count;
    action();
    return g_memory.count - before;
}

// The capacity of a string that has allocated nothing.
std::size_t const inside = Quarn::string().capacity();

TEST(FormatAllocation, IsNoneForATextThatFitsIntoTheString)
{
    Quarn::string text;
    Quarn::string const longest(inside, 'x');
    EXPECT_EQ(AllocationsOf([&] { text.Format("%d", 123456); }), 0U);
    EXPECT_EQ(AllocationsOf([&] { text.Format("%s=%d\n", "value", -5); }), 0U);
    EXPECT_EQ(AllocationsOf([&] { text.Format("%02d:%02d:%02d", 7, 8, 9); }), 0U);
    EXPECT_EQ(AllocationsOf([&] { text.Format("0x%08lx", 0xABCDUL); }), 0U);
    EXPECT_EQ(AllocationsOf([&] { text.Format("%f", 3.25); }), 0U);
    EXPECT_EQ(AllocationsOf([&] { text.Format("%-*.3lf|", 10, 3.25); }), 0U);
    EXPECT_EQ(AllocationsOf([&] { text.Format("%s", longest.c_str()); }), 0U);
    EXPECT_EQ(text, longest);
}

TEST(FormatAllocation, IsOneForALongerText)
{
    for (std::size_t const length :
         {inside + 1, std::size_t{100}, std::size_t{4095}, std::size_t{4096}, std::size_t{100000}}) {
        Quarn::string const argument(length, 'x');
        Quarn::string text;
        EXPECT_EQ(AllocationsOf([&] { text.Format("%s", argument.c_str()); }), 1U) << length;
        EXPECT_EQ(text, argument);
        text.clear();
        text.shrink_to_fit();
        EXPECT_EQ(AllocationsOf([&] { text.Format("%-*s", static_cast<int>(length), "y"); }), 1U) << length;
        EXPECT_EQ(text.size(), length);
    }
}

TEST(FormatAllocation, IsNoneWhereTheStringHasTheRoom)
{
    Quarn::string text;
    text.reserve(1000);
    Quarn::string const argument(900, 'x');
    EXPECT_EQ(AllocationsOf([&] { text.Format("%s", argument.c_str()); }), 0U);
    EXPECT_EQ(text, argument);
}

} // namespace
