#include "quarn/text/string.h"

#include <gtest/gtest.h>

namespace {

TEST(String, TrimKeepsInnerBlanks)
{
    Quarn::string text = "  a b  ";
    EXPECT_EQ(text.Trim(), "a b");
    EXPECT_EQ(text, "a b");
}

TEST(String, FormatReplacesTheContents)
{
    Quarn::string text = "old";
    EXPECT_EQ(text.Format("%s=%d", "n", 5), 3);
    EXPECT_EQ(text, "n=5");
}

} // namespace
