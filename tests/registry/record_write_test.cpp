// What Writef stores, in settings values and in registry values alike.
#include "tests/german_locale.h"
#include "tests/registry/record_places.h"

#include <bit>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using Quarn::string;

template<typename Place>
class RecordWriting : public testing::Test
{
protected:
    Place m_place;
};

using Places = testing::Types<PropertyRecord, RegistryRecord>;
TYPED_TEST_SUITE(RecordWriting, Places);

TYPED_TEST(RecordWriting, EveryItemEndsInAComma)
{
    EXPECT_TRUE(this->m_place.Writef("ii", 1, 2));
    EXPECT_EQ(this->m_place.Stored(), "1,2,");
    EXPECT_TRUE(this->m_place.Writef("i i", 1, 2));
    EXPECT_EQ(this->m_place.Stored(), "1,2,");
    EXPECT_TRUE(this->m_place.Writef(" i ", 7));
    EXPECT_EQ(this->m_place.Stored(), "7,");
    EXPECT_TRUE(this->m_place.Writef(""));
    EXPECT_EQ(this->m_place.Stored(), "");
    EXPECT_TRUE(this->m_place.Writef("  "));
    EXPECT_EQ(this->m_place.Stored(), "");
}

TYPED_TEST(RecordWriting, IntegersHave32Bits)
{
    EXPECT_TRUE(this->m_place.Writef("DLii", 0u, 4294967295u, -2147483647 - 1, 2147483647));
    EXPECT_EQ(this->m_place.Stored(), "0,4294967295,-2147483648,2147483647,");
    EXPECT_TRUE(this->m_place.Writef("bbb", true, false, 7 != 0));
    EXPECT_EQ(this->m_place.Stored(), "1,0,1,");
}

TYPED_TEST(RecordWriting, DoublesDeliberatelyKeepTheAccuracyOfAFloat)
{
    EXPECT_TRUE(this->m_place.Writef("dd", 0.1, 1234567.891));
    EXPECT_EQ(this->m_place.Stored(), "0.100000,1234567.875000,");
    float const number = -2.5f;
    EXPECT_TRUE(this->m_place.Writef("f", &number));
    EXPECT_EQ(this->m_place.Stored(), "-2.500000,");
    float const large = std::numeric_limits<float>::max();
    EXPECT_TRUE(this->m_place.Writef("fd", &large, 1e300));
    EXPECT_EQ(this->m_place.Stored(), "340282346638528859811704183484516925440.000000,inf,");
    EXPECT_TRUE(this->m_place.Writef("ddd", 1e-9, -0.0, -1e-9));
    EXPECT_EQ(this->m_place.Stored(), "0.000000,-0.000000,-0.000000,");
}

TYPED_TEST(RecordWriting, HalvesComeHighFirstForOneLetterAndLowFirstForTheOther)
{
    std::uint64_t const value = 0x0000000100000002;
    EXPECT_TRUE(this->m_place.Writef("Tv", value, value));
    EXPECT_EQ(this->m_place.Stored(), "1:2,2:1,");
    EXPECT_TRUE(this->m_place.Writef("T", ~std::uint64_t{0}));
    EXPECT_EQ(this->m_place.Stored(), "4294967295:4294967295,");
}

TYPED_TEST(RecordWriting, ATextThatIsTheFirstItemGetsACommaBeforeIt)
{
    string const text = "abc";
    EXPECT_TRUE(this->m_place.Writef("tD", &text, 7u));
    EXPECT_EQ(this->m_place.Stored(), ",\"abc\",7,");
    EXPECT_TRUE(this->m_place.Writef("Dt", 7u, &text));
    EXPECT_EQ(this->m_place.Stored(), "7,\"abc\",");
    // A space is an item in this respect.
    EXPECT_TRUE(this->m_place.Writef(" t", &text));
    EXPECT_EQ(this->m_place.Stored(), "\"abc\",");
    string const empty;
    EXPECT_TRUE(this->m_place.Writef("tt", &empty, &empty));
    EXPECT_EQ(this->m_place.Stored(), ",\"\",\"\",");
}

TYPED_TEST(RecordWriting, QuotesAndCommasInATextStayAsTheyAre)
{
    string const text = "a\"b\\c,d%s";
    EXPECT_TRUE(this->m_place.Writef("t", &text));
    EXPECT_EQ(this->m_place.Stored(), ",\"a\"b\\c,d%s\",");
    string const withZero("ab\0cd", 5);
    EXPECT_TRUE(this->m_place.Writef("it", 1, &withZero));
    EXPECT_EQ(this->m_place.Stored(), "1,\"ab\",");
}

TYPED_TEST(RecordWriting, AnUnknownLetterDeliberatelyRepeatsTheItemBeforeIt)
{
    EXPECT_TRUE(this->m_place.Writef("x"));
    EXPECT_EQ(this->m_place.Stored(), ",");
    EXPECT_TRUE(this->m_place.Writef("ixy i", 7, 8));
    EXPECT_EQ(this->m_place.Stored(), "7,7,7,8,");
    string const text = "a";
    EXPECT_TRUE(this->m_place.Writef("t%", &text));
    EXPECT_EQ(this->m_place.Stored(), ",\"a\",,\"a\",");
    EXPECT_TRUE(this->m_place.Writef("i\xff\x01", 7));
    EXPECT_EQ(this->m_place.Stored(), "7,7,7,");
}

TYPED_TEST(RecordWriting, TheDecimalPointIsAPointInEveryLocale)
{
    GermanLocale const german;
    std::string const point = std::localeconv()->decimal_point;
    EXPECT_TRUE(this->m_place.Writef("d", 1234.5));
    double number = 0;
    EXPECT_TRUE(this->m_place.Readf("d", &number));
    double huge = 0;
    this->m_place.Store("1.5e999");
    EXPECT_TRUE(this->m_place.Readf("d", &huge));
    EXPECT_TRUE(this->m_place.Writef("d", 1234.5));
    EXPECT_TRUE(german.Found());
    EXPECT_EQ(point, ",");
    EXPECT_EQ(this->m_place.Stored(), "1234.500000,");
    EXPECT_EQ(number, 1234.5);
    EXPECT_EQ(huge, std::numeric_limits<double>::infinity());
}

TYPED_TEST(RecordWriting, ALongTextIsKeptWhole)
{
    string const text(1000000, 'x');
    EXPECT_TRUE(this->m_place.Writef("it", 1, &text));
    string read;
    int number = 0;
    EXPECT_TRUE(this->m_place.Readf("it", &number, &read));
    EXPECT_TRUE(read == text);
}

// The text of a float by std::to_chars.
string PlainFloat(float number)
{
    char text[64];
    return string(
        std::string(text, std::to_chars(text, std::end(text), number, std::chars_format::fixed, 6).ptr));
}

TEST(RecordWritingOfFloats, EqualsTheRoundedExactValueForEveryExponent)
{
    PropertyRecord place;
    std::mt19937 random(6);
    for (std::uint32_t signAndExponent = 0; signAndExponent < 512; ++signAndExponent) {
        for (int i = 0; i < 60; ++i) {
            // No, all and random bits behind the highest.
            std::uint32_t const rest = i == 0 ? 0U : i == 1 ? 0x007FFFFFU : random() & 0x007FFFFFU;
            auto const number = std::bit_cast<float>(signAndExponent << 23U | rest);
            ASSERT_TRUE(place.Writef("f", &number));
            ASSERT_EQ(place.Stored(), PlainFloat(number) + ",") << number;
        }
    }
}

TEST(RecordWritingOfFloats, RoundsHalfAMillionthToTheEvenDigit)
{
    PropertyRecord place;
    float const down = 1.0F / 128; // 0.0078125
    float const up = 3.0F / 128;   // 0.0234375
    ASSERT_TRUE(place.Writef("ff", &down, &up));
    EXPECT_EQ(place.Stored(), "0.007812,0.023438,");
    for (int i = -5000; i < 5000; ++i) {
        float const number = static_cast<float>(i) / 128;
        ASSERT_TRUE(place.Writef("f", &number));
        ASSERT_EQ(place.Stored(), PlainFloat(number) + ",") << number;
    }
}

} // namespace
