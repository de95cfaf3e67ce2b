// What Readf makes of stored records, in settings values and in registry values alike.
#include "tests/registry/record_places.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using Quarn::string;

template<typename Place>
class RecordReading : public testing::Test
{
protected:
    // The text of one item, read as the first item or behind a number.
    string TextOf(string const& record, bool first)
    {
        this->m_place.Store(record);
        string text;
        int number = 0;
        EXPECT_TRUE(first ? m_place.Readf("t", &text) : m_place.Readf("it", &number, &text)) << record;
        return text;
    }

    Place m_place;
};

using Places = testing::Types<PropertyRecord, RegistryRecord>;
TYPED_TEST_SUITE(RecordReading, Places);

TYPED_TEST(RecordReading, GivesBackWhatWasWritten)
{
    string const text = "abc";
    EXPECT_TRUE(this->m_place.Writef("tD", &text, 7u));
    string read;
    std::uint32_t number = 0;
    EXPECT_TRUE(this->m_place.Readf("tD", &read, &number));
    EXPECT_EQ(read, "abc");
    EXPECT_EQ(number, 7u);

    EXPECT_TRUE(this->m_place.Writef("i i", 1, 2));
    int a = 0;
    int b = 0;
    EXPECT_TRUE(this->m_place.Readf("i i", &a, &b));
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 2);
}

TYPED_TEST(RecordReading, AFieldWithoutItsCommaServesAllFurtherItems)
{
    this->m_place.Store("5");
    int a = 0;
    int b = 0;
    EXPECT_TRUE(this->m_place.Readf("ii", &a, &b));
    EXPECT_EQ(a, 5);
    EXPECT_EQ(b, 5);
    this->m_place.Store("5,6");
    double c = 0;
    EXPECT_TRUE(this->m_place.Readf("iid", &a, &b, &c));
    EXPECT_EQ(a, 5);
    EXPECT_EQ(b, 6);
    EXPECT_EQ(c, 6.0);
}

TYPED_TEST(RecordReading, MissingFieldsLeaveTheirArguments)
{
    this->m_place.Store("5,");
    int a = 1;
    int b = 2;
    EXPECT_FALSE(this->m_place.Readf("ii", &a, &b));
    EXPECT_EQ(a, 5);
    EXPECT_EQ(b, 2);
    this->m_place.Store("5,,7,"); // an empty field is missing too
    EXPECT_FALSE(this->m_place.Readf("iii", &a, &b, &b));
    EXPECT_EQ(b, 2);
    // As the first item an empty field is a number without digits.
    this->m_place.Store("");
    EXPECT_TRUE(this->m_place.Readf("i", &a));
    EXPECT_EQ(a, 0);
    EXPECT_FALSE(this->m_place.Readf("ii", &a, &b));
    EXPECT_TRUE(this->m_place.Readf(""));
    EXPECT_FALSE(this->m_place.Readf("  "));
    EXPECT_TRUE(this->m_place.Readf(" "));
}

TYPED_TEST(RecordReading, NumbersStopAtWhatIsNoDigit)
{
    struct
    {
        char const* field;
        std::int32_t number;
    } const cases[] = {
        {" \t42x", 42},
        {"-12abc", -12},
        {"+7", 7},
        {"+-7", 0},
        {"abc", 0},
        {"0x10", 0},
        {"1.9", 1},
        {"- 1", 0},
        {"4294967295", -1},
        {"4294967296", 0},
        {"-2147483648", INT32_MIN},
        {"18446744073709551617", 1},
        {"\xff", 0},
        {"\"5\"", 0},
    };
    for (auto const& each : cases) {
        this->m_place.Store(string(each.field).append(","));
        int number = 99;
        std::uint32_t bits = 99;
        bool flag = each.number == 0;
        EXPECT_TRUE(this->m_place.Readf("i", &number)) << each.field;
        EXPECT_EQ(number, each.number) << each.field;
        EXPECT_TRUE(this->m_place.Readf("D", &bits));
        EXPECT_EQ(bits, static_cast<std::uint32_t>(each.number)) << each.field;
        EXPECT_TRUE(this->m_place.Readf("L", &bits));
        EXPECT_TRUE(this->m_place.Readf("b", &flag));
        EXPECT_EQ(flag, each.number != 0) << each.field;
    }
}

TYPED_TEST(RecordReading, DecimalNumbersStopWhereTheyEnd)
{
    double const infinite = std::numeric_limits<double>::infinity();
    struct
    {
        char const* field;
        double number;
    } const cases[] = {
        {"0.1", 0.1},  {" -2.5e3x", -2500}, {"+1", 1},           {".5", 0.5},
        {"5.", 5},     {"1e", 1},           {"abc", 0},          {"", 0},
        {"-", 0},      {"+-1", 0},          {"1e999", infinite}, {"-1e999", -infinite},
        {"1e-999", 0}, {"0x10", 0},         {"1;5", 1},          {"inf", infinite},
    };
    for (auto const& each : cases) {
        this->m_place.Store(string(each.field).append(","));
        double number = 99;
        float single = 99;
        EXPECT_TRUE(this->m_place.Readf("d", &number)) << each.field;
        EXPECT_EQ(number, each.number) << each.field;
        EXPECT_TRUE(this->m_place.Readf("f", &single));
        EXPECT_EQ(single, static_cast<float>(each.number)) << each.field;
    }
}

TYPED_TEST(RecordReading, HalvesAreDividedAtTheFirstColon)
{
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    this->m_place.Store("1:2,2:1:7,");
    EXPECT_TRUE(this->m_place.Readf("Tv", &high, &low));
    EXPECT_EQ(high, 0x0000000100000002u);
    EXPECT_EQ(low, 0x0000000100000002u);
    this->m_place.Store(":9,");
    EXPECT_TRUE(this->m_place.Readf("T", &high));
    EXPECT_EQ(high, 9u);
    this->m_place.Store("9:,");
    EXPECT_TRUE(this->m_place.Readf("v", &low));
    EXPECT_EQ(low, 9u);
    // Without a colon the one number is met twice, as a last field is.
    this->m_place.Store("3,");
    EXPECT_TRUE(this->m_place.Readf("T", &high));
    EXPECT_EQ(high, 0x0000000300000003u);
}

TYPED_TEST(RecordReading, ATextInALaterPlaceEndsAtItsComma)
{
    EXPECT_EQ(this->TextOf("1,\"a,b\",", false), "a");
    EXPECT_EQ(this->TextOf(",\"a,b\",", true), "a,b");
}

TYPED_TEST(RecordReading, ABackslashBeforeAQuoteStandsForTheQuote)
{
    EXPECT_EQ(this->TextOf(",\"a\\\"b\",", true), "a\"b");
    EXPECT_EQ(this->TextOf("1,\"a\\\"b\",", false), "a\"b");
    EXPECT_EQ(this->TextOf(",\"a\\b\\\\c\",", true), "a\\b\\\\c");
    EXPECT_EQ(this->TextOf(",\"\\\\\"x\",", true), "\\\"x"); // the second backslash belongs to the quote
}

TYPED_TEST(RecordReading, ATextIsAppended)
{
    this->m_place.Store("1,\"abc\",");
    string text = "before ";
    int number = 0;
    EXPECT_TRUE(this->m_place.Readf("it", &number, &text));
    EXPECT_EQ(text, "before abc");
}

TYPED_TEST(RecordReading, AMissingQuoteIsNoFailure)
{
    EXPECT_EQ(this->TextOf(",\"abc", true), "abc");
    EXPECT_EQ(this->TextOf("1,\"abc,", false), "abc");
    EXPECT_EQ(this->TextOf("1,abc,", false), "abc"); // none at all
    EXPECT_EQ(this->TextOf("1,abc\"", false), "");   // what precedes the first is dropped
    EXPECT_EQ(this->TextOf("1,\"abc\\\"", false), "abc\"");
    EXPECT_EQ(this->TextOf("", true), "");
    EXPECT_EQ(this->TextOf(",", true), "");
    EXPECT_EQ(this->TextOf(",\"", true), "");
    // The record goes on behind the quote that was dropped.
    this->m_place.Store(",\"7,8,");
    string text;
    int number = 0;
    EXPECT_TRUE(this->m_place.Readf("ti", &text, &number));
    EXPECT_EQ(text, "7,8,");
    EXPECT_EQ(number, 7);
}

TYPED_TEST(RecordReading, WhatFollowsAClosingQuoteUpToTheCommaIsDropped)
{
    this->m_place.Store(",\"abc\"dropped,7,");
    string text;
    int number = 0;
    EXPECT_TRUE(this->m_place.Readf("ti", &text, &number));
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(number, 7);
}

TYPED_TEST(RecordReading, AnUnknownLetterSkipsAField)
{
    this->m_place.Store("1,2,3,");
    int a = 0;
    int b = 0;
    EXPECT_TRUE(this->m_place.Readf("ixi", &a, &b));
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 3);
    EXPECT_TRUE(this->m_place.Readf("\xff\x01i", &a));
    EXPECT_EQ(a, 3);
    EXPECT_FALSE(this->m_place.Readf("xxxi", &a));
    // A space skips none.
    EXPECT_TRUE(this->m_place.Readf("i   i", &a, &b));
    EXPECT_EQ(b, 2);
}

TYPED_TEST(RecordReading, ARecordCutOffAnywhereGivesTheItemsBeforeTheCut)
{
    std::string const record = "12,\"abc\",-3.5,1:2,";
    for (std::size_t length = 0; length <= record.size(); ++length) {
        SCOPED_TRACE(length);
        this->m_place.Store(record.substr(0, length));
        int number = 99;
        string text;
        double decimal = 99;
        std::uint64_t halves = 99;
        bool const complete = this->m_place.Readf("itdT", &number, &text, &decimal, &halves);
        // A field without its comma serves the items behind it; behind a comma they are missing.
        bool const isWhole = length == record.size();
        EXPECT_EQ(complete, isWhole || (length != 0 && record[length - 1] != ','));
        EXPECT_EQ(number, length == 0 ? 0 : length == 1 ? 1 : 12);
        if (length > record.find('c')) {
            EXPECT_EQ(text, "abc");
        }
        if (length > record.find('5')) {
            EXPECT_EQ(decimal, -3.5);
        }
        if (isWhole) {
            EXPECT_EQ(halves, 0x0000000100000002u);
        }
    }
}

TYPED_TEST(RecordReading, RandomItemsComeBack)
{
    std::mt19937_64 random(20240601);
    for (int round = 0; round < 200; ++round) {
        auto const bits = static_cast<std::uint32_t>(random());
        auto const number = static_cast<int>(random());
        std::uint64_t const value = random();
        auto const single =
            std::ldexp(static_cast<float>(random() % 100000), static_cast<int>(random() % 20) - 10);
        bool const flag = (random() & 1) != 0;
        ASSERT_TRUE(this->m_place.Writef("DibTvfd", bits, number, flag, value, value, &single,
                                         static_cast<double>(single)));
        std::uint32_t bitsRead = 0;
        int numberRead = 0;
        bool flagRead = !flag;
        std::uint64_t high = 0;
        std::uint64_t low = 0;
        float singleRead = 0;
        double doubleRead = 0;
        ASSERT_TRUE(this->m_place.Readf("DibTvfd", &bitsRead, &numberRead, &flagRead, &high, &low,
                                        &singleRead, &doubleRead));
        EXPECT_EQ(bitsRead, bits);
        EXPECT_EQ(numberRead, number);
        EXPECT_EQ(flagRead, flag);
        EXPECT_EQ(high, value);
        EXPECT_EQ(low, value);
        EXPECT_NEAR(singleRead, single, 0.0000005 + single * 1e-7);
        EXPECT_NEAR(doubleRead, single, 0.0000005 + single * 1e-7);
    }
}

// The one difference between the two.
TEST(RecordReadingOfDrivePaths, IsLiteralInSettingsValuesAlone)
{
    string const record = "1,\"C:\\dir\\\",2,";
    PropertyRecord property;
    RegistryRecord registry;
    property.Store(record);
    registry.Store(record);
    int number = 0;
    string path;
    EXPECT_TRUE(property.Readf("it", &number, &path));
    EXPECT_EQ(path, "C:\\dir\\");
    path.clear();
    EXPECT_TRUE(registry.Readf("it", &number, &path));
    EXPECT_EQ(path, "C:\\dir\"");
    // Too short to be one, or none at all.
    for (char const* const each : {"1,\"C:\\\",", "1,\"C:/x\\\",", "1,\"CD:\\x\\\","}) {
        property.Store(each);
        registry.Store(each);
        string fromProperty;
        string fromRegistry;
        property.Readf("it", &number, &fromProperty);
        registry.Readf("it", &number, &fromRegistry);
        EXPECT_EQ(fromProperty == fromRegistry, each != std::string("1,\"C:\\\",")) << each;
    }
}

TEST(RecordReadingOfSettings, TakesTheTextFormOfAnyType)
{
    Quarn::PropertyKey key("key", nullptr);
    int a = 0;
    int b = 0;
    Quarn::PropertyValue const number("n", Quarn::PropertyData(5), &key);
    EXPECT_TRUE(number.Readf("ii", &a, &b));
    EXPECT_EQ(a, 5);
    EXPECT_EQ(b, 5);
    unsigned char const bytes[] = {0x12, 0x34};
    Quarn::PropertyValue const binary("b", Quarn::PropertyData(bytes, 2), &key);
    EXPECT_TRUE(binary.Readf("i", &a));
    EXPECT_EQ(a, 1234);
}

TEST(RecordWritingOfSettings, MarksTheValueAndItsKeysDirty)
{
    Quarn::PropertyKey root("root", nullptr);
    Quarn::PropertyKey* const key = root.AddSubKey("key");
    Quarn::PropertyValue* const value = key->AddValue("v");
    root.ClearDirty();
    int number = 0;
    EXPECT_TRUE(value->Readf("i", &number));
    EXPECT_FALSE(root.Dirty());
    EXPECT_TRUE(value->Writef("i", 1));
    EXPECT_EQ(value->GetDataType(), Quarn::PropertyData::TypeString);
    EXPECT_EQ(value->GetData().GetDataSize(), 3);
    EXPECT_TRUE(value->Dirty());
    EXPECT_TRUE(key->Dirty());
    EXPECT_TRUE(root.Dirty());
}

} // namespace
