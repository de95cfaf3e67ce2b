#include "quarn/text/name_compare.h"

#include "tests/properties/test_locale.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::detail::EqualNames;
using Quarn::detail::HashName;

// Equality, seen from both sides, and the hash that goes with it.
bool Equal(std::string const& a, std::string const& b)
{
    bool const equal = EqualNames(a, b);
    EXPECT_EQ(EqualNames(b, a), equal);
    if (equal) {
        EXPECT_EQ(HashName(a).value, HashName(b).value) << a << ' ' << b;
        EXPECT_EQ(HashName(a).isAscii, HashName(b).isAscii) << a << ' ' << b;
    }
    return equal;
}

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return text;
}

TEST(NameCompare, FoldsEveryAsciiLetterAndNothingElse)
{
    for (int a = 0; a < 128; ++a) {
        for (int b = 0; b < 128; ++b) {
            std::string const nameA(1, static_cast<char>(a));
            std::string const nameB(1, static_cast<char>(b));
            ASSERT_EQ(Equal(nameA, nameB), Lower(nameA) == Lower(nameB)) << a << ' ' << b;
        }
    }
}

TEST(NameCompare, ComparesAllLengthsToTheLastCharacter)
{
    for (std::size_t length = 0; length < 40; ++length) {
        std::string const name(length, 'k');
        EXPECT_TRUE(Equal(name, std::string(length, 'K')));
        EXPECT_FALSE(Equal(name, name + "k"));
        for (std::size_t i = 0; i < length; ++i) {
            std::string other(length, 'K');
            other[i] = 'j';
            EXPECT_FALSE(Equal(name, other));
        }
    }
}

TEST(NameCompare, AgreesWithFoldingByHand)
{
    std::mt19937 random(5);
    for (int i = 0; i < 100000; ++i) {
        std::string a(random() % 20, ' ');
        for (char& c : a) {
            c = "aAbBzZ@[`{_0"[random() % 12];
        }
        std::string b = a;
        for (char& c : b) {
            c = random() % 16 == 0 ? 'A' : random() % 2 == 0 ? Lower({c})[0] : c;
        }
        ASSERT_EQ(Equal(a, b), Lower(a) == Lower(b)) << a << ' ' << b;
    }
}

TEST(NameCompare, ComparesOtherBytesAsTheyAreWithoutALocale)
{
    TestLocale::UseC();
    for (int a = 128; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            std::string const nameA(1, static_cast<char>(a));
            std::string const nameB(1, static_cast<char>(b));
            ASSERT_EQ(Equal(nameA, nameB), a == b);
        }
    }
    EXPECT_FALSE(HashName("\x80").isAscii);
    EXPECT_TRUE(HashName("\x7f").isAscii);
}

TEST(NameCompare, FoldsWhatTheLocaleDecodes)
{
    TestLocale const locale;
    ASSERT_TRUE(locale.Found());
    std::string const upper = std::string("Long ASCII start ") + locale.UpperA() + "END";
    std::string const lower = std::string("lONG ascii START ") + locale.LowerA() + "end";
    EXPECT_FALSE(Equal(upper, lower));
    locale.Use();
    EXPECT_TRUE(Equal(upper, lower));
    EXPECT_FALSE(Equal(upper, std::string("lONG ascii START ") + locale.LowerO() + "end"));
    EXPECT_FALSE(Equal(upper, lower + " "));
}

#ifndef _WIN32

TEST(NameCompare, FoldsLettersWhoseCasesDifferInLength)
{
    TestLocale const locale;
    locale.Use();
    EXPECT_TRUE(Equal("\xc8\xba", "\xe2\xb1\xa5")); // A with stroke: two bytes and three
    EXPECT_TRUE(Equal("12345678\xc8\xba", "12345678\xe2\xb1\xa5"));
    EXPECT_TRUE(Equal("\xf0\x90\x90\x80", "\xf0\x90\x90\xa8")); // beyond the basic plane
}

TEST(NameCompare, ACharacterOutsideAsciiNeverEqualsOneInside)
{
    TestLocale const locale;
    locale.Use();
    EXPECT_FALSE(Equal("\xe2\x84\xaa", "k")); // the Kelvin sign, whose lower case is k
    EXPECT_FALSE(Equal("\xc4\xb0", "i"));     // I with a dot above
    EXPECT_TRUE(Equal("\xe2\x84\xaa", "\xe2\x84\xaa"));
}

#endif

TEST(NameCompare, AByteOutsideAnyCharacterEqualsNoCharacter)
{
    TestLocale const locale;
    locale.Use();
    EXPECT_FALSE(Equal("\x80", "\xc2\x80"));
    EXPECT_TRUE(Equal("A\xff", "a\xff"));
    EXPECT_FALSE(Equal("\xff", "\xfe"));
    EXPECT_FALSE(Equal("\xc3", std::string("\xc3\0", 2)));
}

} // namespace
