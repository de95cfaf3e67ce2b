// string::Format follows the locale of the process: a decimal comma where the locale has one.
#include "quarn/text/string.h"

#include "tests/german_locale.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <wchar.h>

namespace {

// An a with diaeresis and the sign of the euro in the locale's encoding.
#if defined(_WIN32)
std::string const LetterA = "\xe4";
std::string const Euro = "\x80";
#else
std::string const LetterA = "\xc3\xa4";
std::string const Euro = "\xe2\x82\xac";
#endif

class FormatLocale : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_german.Found()); }

private:
    GermanLocale m_german;
};

TEST_F(FormatLocale, NumbersHaveTheDecimalSignOfTheLocale)
{
    Quarn::string text;
    EXPECT_EQ(text.Format("%.2f|%g|%e", 3.14159, 0.5, 1.5), 21);
    EXPECT_EQ(text, "3,14|0,5|1,500000e+00");
    EXPECT_EQ(text.Format("%12.3f|%-9.1f|%+09.2f", 3.14159, 2.5, 2.5), 32);
    EXPECT_EQ(text, "       3,142|2,5      |+00002,50");
    EXPECT_EQ(text.Format("%d %s", 1234567, "1.5"), 11);
    EXPECT_EQ(text, "1234567 1.5");
}

TEST_F(FormatLocale, LongNumbersHaveItToo)
{
    Quarn::string text;
    EXPECT_EQ(text.Format("%6000.2f", 0.25), 6000);
    EXPECT_EQ(text, std::string(5996, ' ') + "0,25");
    EXPECT_EQ(text.Format("%.*f", 6000, 0.25), 6002);
    EXPECT_EQ(text, "0,25" + std::string(5998, '0'));
}

TEST_F(FormatLocale, WideTextsBecomeTheBytesOfTheLocale)
{
    std::string const expected = "a" + LetterA + Euro + "|" + Euro;
    Quarn::string text;
    EXPECT_EQ(text.Format("%ls|%lc", L"a\u00e4\u20ac", static_cast<wint_t>(0x20ac)),
              static_cast<int>(expected.size()));
    EXPECT_EQ(text, expected);
}

TEST_F(FormatLocale, APrecisionCountsTheBytesOfWideTextsAndCutsNoCharacter)
{
    std::unique_ptr<wchar_t[]> const twoWithoutAnEnd(new wchar_t[2]{L'\u00e4', L'\u00e4'});
    int const bytesOfTwo = static_cast<int>(2 * LetterA.size());
    Quarn::string text;
    EXPECT_EQ(text.Format("%.*ls", bytesOfTwo, twoWithoutAnEnd.get()), bytesOfTwo);
    EXPECT_EQ(text, LetterA + LetterA);
    int const oneByteShort = static_cast<int>(1 + LetterA.size() + Euro.size()) - 1;
    EXPECT_EQ(text.Format("%.*ls", oneByteShort, L"a\u00e4\u20ac"), static_cast<int>(1 + LetterA.size()));
    EXPECT_EQ(text, "a" + LetterA);
}

#if !defined(_WIN32) // whose C library leaves such a text out
TEST(FormatInTheCLocale, WideTextThatItDoesNotKnowIsRefusedAndTheContentsStay)
{
    Quarn::string text = "old";
    EXPECT_LT(text.Format("%d %ls", 1, L"\u20ac"), 0);
    EXPECT_EQ(text, "old");
}
#endif

// Blanks and letters are those of ASCII, whatever the locale.
TEST_F(FormatLocale, TrimmingAndCaseDoNotFollowTheLocale)
{
    Quarn::string text = "\xc2\xa0 \xc3\xa4\xe4 ";
    text.Trim();
    EXPECT_EQ(text, "\xc2\xa0 \xc3\xa4\xe4");
    EXPECT_EQ(text.Upper(), "\xc2\xa0 \xc3\xa4\xe4");
}

} // namespace
