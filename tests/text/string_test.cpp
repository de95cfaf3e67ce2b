// The operations that Quarn::string adds to the standard string; Format has its own files.
#include "quarn/text/string.h"

#include <cctype>
#include <clocale>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Quarn::string;

std::string AllBytes()
{
    std::string bytes;
    for (int c = 0; c < 256; ++c) {
        bytes.push_back(static_cast<char>(c));
    }
    return bytes;
}

static_assert(std::is_same_v<decltype(std::declval<string&>().Trim()), string const&>);
static_assert(std::is_same_v<decltype(std::declval<string&>().TrimLeft()), string const&>);
static_assert(std::is_same_v<decltype(std::declval<string&>().TrimRight()), string const&>);
static_assert(std::is_same_v<decltype(std::declval<string&>().MakeUpper()), string const&>);
static_assert(std::is_same_v<decltype(std::declval<string&>().MakeLower()), string const&>);
static_assert(std::is_same_v<decltype(std::declval<string const&>().Upper()), string>);
static_assert(std::is_same_v<decltype(std::declval<string const&>().Lower()), string>);
static_assert(std::is_same_v<decltype(std::declval<string const&>().Contains('c')), bool>);
static_assert(std::is_same_v<decltype(std::declval<string const&>().ClipTo('c')), string>);
static_assert(std::is_same_v<decltype(std::declval<string const&>().appended("s")), string>);
static_assert(std::is_same_v<decltype(std::declval<string&>().Format("%d", 1)), int>);

TEST(String, TrimRemovesWhiteSpaceAtBothEndsAndKeepsInnerBlanks)
{
    struct Row
    {
        char const* text;
        char const* trimmed;
        char const* left;
        char const* right;
    };
    Row const rows[] = {
        {"", "", "", ""},
        {" ", "", "", ""},
        {"      ", "", "", ""},
        {" \t\n\v\f\r", "", "", ""},
        {"  a b  ", "a b", "a b  ", "  a b"},
        {"a", "a", "a", "a"},
        {"a ", "a", "a ", "a"},
        {" a", "a", "a", " a"},
        {"\t\va\n b\r\f", "a\n b", "a\n b\r\f", "\t\va\n b"},
        {" \xA0 ", "\xA0", "\xA0 ", " \xA0"},
        {"\b \x0e", "\b \x0e", "\b \x0e", "\b \x0e"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.text);
        string text = row.text;
        EXPECT_EQ(&text.Trim(), &text);
        EXPECT_EQ(text, row.trimmed);
        text = row.text;
        EXPECT_EQ(&text.TrimLeft(), &text);
        EXPECT_EQ(text, row.left);
        text = row.text;
        EXPECT_EQ(&text.TrimRight(), &text);
        EXPECT_EQ(text, row.right);
    }
}

TEST(String, TrimTakesExactlyTheSixSpacesOfTheDefaultLocale)
{
    for (char const byte : AllBytes()) {
        bool const isSpace = byte != '\0' && std::string(" \t\n\v\f\r").find(byte) != std::string::npos;
        string text = string(1, byte) + "x" + string(1, byte);
        text.Trim();
        EXPECT_EQ(text.size(), isSpace ? 1U : 3U) << static_cast<int>(byte);
    }
}

TEST(String, TrimStopsAtAnEmbeddedZeroByte)
{
    string text(" \0 ", 3);
    text.Trim();
    EXPECT_EQ(text, string(1, '\0'));
}

TEST(String, TrimOfLongWhiteSpaceEnds)
{
    string text = string(2'000'000, ' ') + "x" + string(2'000'000, '\n');
    text.Trim();
    EXPECT_EQ(text, "x");
}

TEST(String, CaseOperationsChangeAsciiLettersAlone)
{
    string text = "aZ9_\xE4";
    EXPECT_EQ(&text.MakeUpper(), &text);
    EXPECT_EQ(text, "AZ9_\xE4");
    EXPECT_EQ(&text.MakeLower(), &text);
    EXPECT_EQ(text, "az9_\xE4");

    string upper = AllBytes();
    upper.MakeUpper();
    string lower = AllBytes();
    lower.MakeLower();
    for (int i = 0; i < 256; ++i) {
        std::size_t const at = static_cast<std::size_t>(i);
        EXPECT_EQ(static_cast<unsigned char>(upper[at]), i >= 'a' && i <= 'z' ? i - 0x20 : i);
        EXPECT_EQ(static_cast<unsigned char>(lower[at]), i >= 'A' && i <= 'Z' ? i + 0x20 : i);
    }
}

TEST(String, UpperAndLowerLeaveTheObjectAsItIs)
{
    string const text = "Ab\xE4 1";
    EXPECT_EQ(text.Upper(), "AB\xE4 1");
    EXPECT_EQ(text.Lower(), "ab\xE4 1");
    EXPECT_EQ(text, "Ab\xE4 1");
    EXPECT_EQ(string().Upper(), "");
    EXPECT_EQ(string().Lower(), "");
}

TEST(String, ContainsFindsAnyByte)
{
    string const empty;
    string const bytes = AllBytes();
    for (char const byte : AllBytes()) {
        EXPECT_FALSE(empty.Contains(byte)) << static_cast<int>(byte);
        EXPECT_TRUE(bytes.Contains(byte)) << static_cast<int>(byte);
    }
    EXPECT_TRUE(string("abc").Contains('c'));
    EXPECT_FALSE(string("abc").Contains('C'));
    EXPECT_FALSE(string("abc").Contains('\0'));
}

TEST(String, ClipToTakesTheFirstTokenOff)
{
    string text = "ab,cd";
    EXPECT_EQ(text.ClipTo(','), "ab");
    EXPECT_EQ(text, "cd");

    text = ",x";
    EXPECT_EQ(text.ClipTo(','), "");
    EXPECT_EQ(text, "x");

    text = "x,";
    EXPECT_EQ(text.ClipTo(','), "x");
    EXPECT_EQ(text, "");

    text = string("a\0b\0c", 5);
    EXPECT_EQ(text.ClipTo('\0'), "a");
    EXPECT_EQ(text, string("b\0c", 3));
}

TEST(String, ClipToWithoutTheDelimiterDeliberatelyLeavesTheString)
{
    string text = "abc";
    EXPECT_EQ(text.ClipTo(','), "abc");
    EXPECT_EQ(text, "abc");
    text.clear();
    EXPECT_EQ(text.ClipTo(','), "");
    EXPECT_EQ(text, "");
}

TEST(String, ClipToDeliberatelyChangesTheStringBehindAConstantReference)
{
    string text = "ab,cd,ef";
    string const& constant = text;
    EXPECT_EQ(constant.ClipTo(','), "ab");
    EXPECT_EQ(text, "cd,ef");
    EXPECT_EQ(constant.ClipTo(','), "cd");
    EXPECT_EQ(constant, "ef");
}

TEST(String, ClipToLoopsWithContains)
{
    string rest = "one;two;;three";
    string joined;
    while (rest.Contains(';')) {
        joined.append("<").append(rest.ClipTo(';')).append(">");
    }
    EXPECT_EQ(joined, "<one><two><>");
    EXPECT_EQ(rest, "three");
}

TEST(String, AppendedLeavesTheObjectAsItIs)
{
    string const text = "ab";
    EXPECT_EQ(text.appended("cd"), "abcd");
    EXPECT_EQ(text.appended(""), "ab");
    EXPECT_EQ(text.appended(text.c_str()), "abab");
    EXPECT_EQ(string().appended("x"), "x");
    EXPECT_EQ(text, "ab");
}

} // namespace
