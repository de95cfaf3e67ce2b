#include "quarn/properties/property_data.h"

#include "tests/stream/captured_reports.h"

#include <climits>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;

std::vector<unsigned char> Bytes(PropertyData const& data)
{
    return {data.GetDataBinary(), data.GetDataBinary() + data.GetDataSize()};
}

TEST(PropertyData, EmptyDataIsUnknown)
{
    PropertyData const data;
    EXPECT_EQ(data.GetType(), PropertyData::TypeUnknown);
    EXPECT_EQ(data.GetTypename(), "unknown");
    EXPECT_EQ(data.GetDataSize(), 0);
    EXPECT_EQ(data.GetDataString(), "");
    EXPECT_EQ(data.GetDataInt32(), 0);
    EXPECT_EQ(data.GetDataBinary(), nullptr);
}

TEST(PropertyData, ATextCountsItsTerminatingZero)
{
    for (PropertyData const& data : {PropertyData("abc"), PropertyData(Quarn::string("abc"))}) {
        EXPECT_EQ(data.GetType(), PropertyData::TypeString);
        EXPECT_EQ(data.GetTypename(), "string");
        EXPECT_EQ(data.GetDataSize(), 4);
        EXPECT_EQ(Bytes(data), (std::vector<unsigned char>{'a', 'b', 'c', 0}));
        EXPECT_EQ(data.GetDataString(), "abc");
    }
}

TEST(PropertyData, TheEmptyTextHasSizeOne)
{
    for (PropertyData const& data :
         {PropertyData(""), PropertyData(Quarn::string()), PropertyData(static_cast<char const*>(nullptr))}) {
        EXPECT_EQ(data.GetType(), PropertyData::TypeString);
        EXPECT_EQ(data.GetDataSize(), 1);
        EXPECT_EQ(data.GetDataString(), "");
    }
}

TEST(PropertyData, ATextWithAZeroByteKeepsItsBytesAndShowsTheFirstPart)
{
    PropertyData const data(Quarn::string("ab\0cd", 5));
    EXPECT_EQ(data.GetDataSize(), 6);
    EXPECT_EQ(Bytes(data)[3], 'c');
    EXPECT_EQ(data.GetDataString(), "ab");
}

TEST(PropertyData, EveryIntegerTypeIsANumber)
{
    std::uint32_t const unsignedNumber = 4000000000U;
    for (PropertyData const& data : {PropertyData(-7L), PropertyData(-7), PropertyData(std::int64_t{-7}),
                                     PropertyData(static_cast<short>(-7))}) {
        EXPECT_EQ(data.GetType(), PropertyData::TypeInt32);
        EXPECT_EQ(data.GetTypename(), "int32");
        EXPECT_EQ(data.GetDataSize(), 4);
        EXPECT_EQ(data.GetDataInt32(), -7);
        EXPECT_EQ(data.GetDataString(), "-7");
        EXPECT_EQ(data.GetDataBinary(), nullptr);
    }
    EXPECT_EQ(PropertyData(0).GetType(), PropertyData::TypeInt32);
    EXPECT_EQ(PropertyData(unsignedNumber).GetDataInt32(), -294967296);
}

TEST(PropertyData, NumbersAreWrittenInDecimalUpToTheLimits)
{
    EXPECT_EQ(PropertyData(2147483647L).GetDataString(), "2147483647");
    EXPECT_EQ(PropertyData(-2147483647L - 1).GetDataString(), "-2147483648");
    EXPECT_EQ(PropertyData(0).GetDataString(), "0");
}

#if LONG_MAX > 2147483647

TEST(PropertyData, ALongBeyond32BitsIsReportedAndCut)
{
    CapturedReports const reports;
    EXPECT_EQ(PropertyData(0x100000005L).GetDataInt32(), 5);
    PropertyData data;
    data.Assign(-0x100000005L);
    EXPECT_EQ(data.GetDataInt32(), -5);
    EXPECT_EQ(reports.Number(), 2);
    data.Assign(PropertyData::TypeInt32, "abcd", 0x100000004UL);
    EXPECT_EQ(data.GetDataSize(), 4);
    EXPECT_EQ(reports.Number(), 3);
}

#endif

TEST(PropertyData, BinaryDataIsCopied)
{
    unsigned char bytes[] = {0x00, 0x0a, 0xff};
    PropertyData const data(bytes, 3);
    bytes[0] = 1;
    EXPECT_EQ(data.GetType(), PropertyData::TypeBinary);
    EXPECT_EQ(data.GetTypename(), "binary");
    EXPECT_EQ(Bytes(data), (std::vector<unsigned char>{0x00, 0x0a, 0xff}));
    EXPECT_EQ(data.GetDataString(), "000aff");
    EXPECT_EQ(data.GetDataInt32(), 0);
}

TEST(PropertyData, BinaryDataOfNoOrNegativeLengthIsEmpty)
{
    unsigned char const byte = 7;
    for (long const length : {0L, -1L, -2147483647L - 1}) {
        PropertyData const data(&byte, length);
        EXPECT_EQ(data.GetType(), PropertyData::TypeBinary);
        EXPECT_EQ(data.GetDataSize(), 0);
        EXPECT_EQ(data.GetDataString(), "");
        EXPECT_NE(data.GetDataBinary(), nullptr);
    }
}

TEST(PropertyData, NoSourceStandsForZeroBytes)
{
    PropertyData data(static_cast<unsigned char const*>(nullptr), 2);
    EXPECT_EQ(data.GetDataString(), "0000");
    data.Assign(PropertyData::TypeInt32, nullptr, 4);
    EXPECT_EQ(data.GetDataInt32(), 0);
}

TEST(PropertyData, RawTextNeedsNoTerminator)
{
    PropertyData data;
    data.Assign(PropertyData::TypeString, "42xyz", 3);
    EXPECT_EQ(data.GetDataSize(), 3);
    EXPECT_EQ(data.GetDataString(), "42x");
    EXPECT_EQ(data.GetDataInt32(), 42);
    EXPECT_EQ(data.GetDataBinary()[3], 0);
    data.Assign(PropertyData::TypeString, "", 0);
    EXPECT_EQ(data.GetDataSize(), 0);
    EXPECT_EQ(data.GetDataString(), "");
    EXPECT_EQ(data.GetDataInt32(), 0);
}

TEST(PropertyData, ARawNumberDeliberatelyKeepsTheGivenSize)
{
    std::int32_t const numbers[] = {0x01020304, 5};
    PropertyData data;
    data.Assign(PropertyData::TypeInt32, numbers, sizeof numbers);
    EXPECT_EQ(data.GetDataInt32(), 0x01020304);
    EXPECT_EQ(data.GetDataSize(), 8);
    EXPECT_NE(data, PropertyData(0x01020304));
    data.Assign(PropertyData::TypeInt32, numbers, 2);
    EXPECT_EQ(data.GetDataInt32(), 0x0304);
    EXPECT_EQ(data.GetDataSize(), 2);
    data.Assign(PropertyData::TypeInt32, numbers, 0);
    EXPECT_EQ(data.GetDataInt32(), 0);
}

TEST(PropertyData, AWrongTypeDeliberatelyThrowsTheIntZeroAfterStoringTypeAndSize)
{
    for (int const type : {3, 4, 77, -1}) {
        PropertyData data("text");
        try {
            data.Assign(static_cast<PropertyData::DataType>(type), "abcd", 4);
            ADD_FAILURE() << "no exception for type " << type;
        } catch (int thrown) {
            EXPECT_EQ(thrown, 0);
        }
        EXPECT_EQ(data.GetType(), type);
        EXPECT_EQ(data.GetDataSize(), 4);
        EXPECT_EQ(data.GetTypename(), "unknown");
        EXPECT_EQ(data.GetDataString(), "");
        EXPECT_EQ(data.GetDataInt32(), 0);
        EXPECT_EQ(data.GetDataBinary(), nullptr);
        PropertyData const copy(data);
        EXPECT_EQ(copy.GetType(), type);
        EXPECT_EQ(copy, data);
        data.Assign("usable again");
        EXPECT_EQ(data.GetDataString(), "usable again");
    }
}

TEST(PropertyData, AssignMayReadItsOwnBytes)
{
    PropertyData data("0123456789");
    data.Assign(PropertyData::TypeBinary, data.GetDataBinary() + 2, 3);
    EXPECT_EQ(data.GetDataString(), "323334");
    data.Assign(PropertyData::TypeString, data.GetDataBinary(), 2);
    EXPECT_EQ(data.GetDataString(), "23");
    data.Assign(PropertyData::TypeInt32, data.GetDataBinary(), 2);
    EXPECT_EQ(data.GetDataInt32(), 0x3332);
}

TEST(PropertyData, EachAssignReplacesTheFormerPayload)
{
    PropertyData data(5);
    data.Assign("text");
    EXPECT_EQ(data.GetDataString(), "text");
    data.Assign(6L);
    EXPECT_EQ(data.GetType(), PropertyData::TypeInt32);
    EXPECT_EQ(data.GetDataString(), "6");
    data = PropertyData();
    EXPECT_EQ(data.GetType(), PropertyData::TypeUnknown);
}

TEST(PropertyData, TypeNamesAreMatchedExactly)
{
    EXPECT_EQ(PropertyData::GetType("string"), PropertyData::TypeString);
    EXPECT_EQ(PropertyData::GetType("binary"), PropertyData::TypeBinary);
    EXPECT_EQ(PropertyData::GetType("int32"), PropertyData::TypeInt32);
    EXPECT_EQ(PropertyData::GetType("unknown"), PropertyData::TypeUnknown);
    for (char const* name : {"", "Binary", "STRING", "int", "int32 ", " int32", "int64"}) {
        EXPECT_EQ(PropertyData::GetType(name), PropertyData::TypeUnknown) << name;
    }
    EXPECT_EQ(PropertyData::TypeString, 0);
    EXPECT_EQ(PropertyData::TypeBinary, 1);
    EXPECT_EQ(PropertyData::TypeInt32, 2);
    EXPECT_EQ(PropertyData::TypeUnknown, 3);
    EXPECT_EQ(sizeof(PropertyData::DataType), 4U);
}

struct CreateCase
{
    char const* type;
    char const* text;
    long size;
    char const* form;
};

class PropertyDataCreate : public testing::TestWithParam<CreateCase>
{};

TEST_P(PropertyDataCreate, GivesSizeAndTextForm)
{
    CreateCase const& row = GetParam();
    PropertyData const data = PropertyData::Create(row.type, row.text);
    EXPECT_EQ(data.GetDataSize(), row.size) << row.type << ' ' << row.text;
    EXPECT_EQ(data.GetDataString(), row.form) << row.type << ' ' << row.text;
}

INSTANTIATE_TEST_SUITE_P(Good, PropertyDataCreate,
                         testing::Values(CreateCase{"string", "", 1, ""},          //
                                         CreateCase{"string", "a b", 4, "a b"},    //
                                         CreateCase{"binary", "", 0, ""},          //
                                         CreateCase{"binary", "0aFF", 2, "0aff"},  //
                                         CreateCase{"binary", "0aFF7", 2, "0aff"}, // odd last character
                                         CreateCase{"int32", "0", 4, "0"},         //
                                         CreateCase{"int32", "-2147483648", 4, "-2147483648"}));

INSTANTIATE_TEST_SUITE_P(Bad, PropertyDataCreate,
                         testing::Values(CreateCase{"binary", "1z", 1, "01"},     // the first digit alone
                                         CreateCase{"binary", "z1", 1, "00"},     //
                                         CreateCase{"binary", " 5", 1, "05"},     // white space is skipped
                                         CreateCase{"binary", "+5", 1, "05"},     //
                                         CreateCase{"binary", "-5", 1, "fb"},     //
                                         CreateCase{"binary", "0x", 1, "00"},     //
                                         CreateCase{"binary", "7", 0, ""},        //
                                         CreateCase{"int32", "", 4, "0"},         //
                                         CreateCase{"int32", "abc", 4, "0"},      //
                                         CreateCase{"int32", "-12abc", 4, "-12"}, //
                                         CreateCase{"int32", "2147483648", 4, "-2147483648"},
                                         CreateCase{"int32", "4294967301", 4, "5"})); // modulo 2^32

TEST(PropertyData, AnUnknownTypeNameDeliberatelyGivesSizeFourAndAHiddenNumber)
{
    for (char const* name : {"Binary", "unknown", ""}) {
        PropertyData const data = PropertyData::Create(name, "12");
        EXPECT_EQ(data.GetType(), PropertyData::TypeUnknown);
        EXPECT_EQ(data.GetDataSize(), 4);
        EXPECT_EQ(data.GetDataString(), "");
        EXPECT_EQ(data.GetDataInt32(), 0);
        EXPECT_EQ(data, PropertyData::Create(name, "12"));
        EXPECT_NE(data, PropertyData::Create(name, "13"));

        PropertyData const copy(data);
        EXPECT_EQ(copy.GetDataSize(), 4);
        EXPECT_NE(copy, data) << "a copy drops the number";
        EXPECT_EQ(copy, PropertyData::Create(name, "0"));
    }
}

TEST(PropertyData, ATextIsReadAsADecimalNumber)
{
    EXPECT_EQ(PropertyData(" 42x").GetDataInt32(), 42);
    EXPECT_EQ(PropertyData("\t\n\v\f\r-17").GetDataInt32(), -17);
    EXPECT_EQ(PropertyData("+8").GetDataInt32(), 8);
    EXPECT_EQ(PropertyData("0x10").GetDataInt32(), 0);
    EXPECT_EQ(PropertyData("- 8").GetDataInt32(), 0);
    EXPECT_EQ(PropertyData("").GetDataInt32(), 0);
    EXPECT_EQ(PropertyData("2147483648").GetDataInt32(), 2147483647);
    EXPECT_EQ(PropertyData("-99999999999999999999999").GetDataInt32(), -2147483647L - 1);
}

TEST(PropertyData, ACopyHasBytesOfItsOwn)
{
    PropertyData const original("abc");
    PropertyData copy(original);
    EXPECT_EQ(copy.GetDataString(), "abc");
    EXPECT_NE(copy.GetDataBinary(), original.GetDataBinary());
    copy.Assign("other");
    EXPECT_EQ(original.GetDataString(), "abc");
    copy = original;
    EXPECT_EQ(copy.GetDataString(), "abc");
    PropertyData& same = copy;
    copy = same;
    EXPECT_EQ(copy.GetDataString(), "abc");
}

TEST(PropertyData, AMoveLeavesUnknownData)
{
    PropertyData from("abc");
    unsigned char const* const bytes = from.GetDataBinary();
    PropertyData to(std::move(from));
    EXPECT_EQ(to.GetDataBinary(), bytes);
    EXPECT_EQ(from.GetType(), PropertyData::TypeUnknown); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(from.GetDataSize(), 0);
    PropertyData other(5);
    other = std::move(to);
    EXPECT_EQ(other.GetDataString(), "abc");
}

TEST(PropertyData, BytesDeliberatelyAreEqualToThemselvesAlone)
{
    unsigned char const bytes[] = {1, 2};
    PropertyData const text("abc");
    PropertyData const binary(bytes, 2);
    EXPECT_TRUE(text == text);
    EXPECT_TRUE(binary == binary);
    EXPECT_FALSE(text == PropertyData("abc"));
    EXPECT_TRUE(text != PropertyData("abc"));
    EXPECT_FALSE(text == PropertyData(text));
    EXPECT_FALSE(binary == PropertyData(bytes, 2));
}

TEST(PropertyData, NumbersAndEmptyDataAreEqualByValue)
{
    EXPECT_TRUE(PropertyData(5) == PropertyData(5));
    EXPECT_FALSE(PropertyData(5) != PropertyData(5));
    EXPECT_FALSE(PropertyData(5) == PropertyData(6));
    EXPECT_TRUE(PropertyData() == PropertyData());
    EXPECT_TRUE(PropertyData::Create("binary", "") == PropertyData::Create("binary", "7"));
    EXPECT_FALSE(PropertyData::Create("binary", "") == PropertyData());
    EXPECT_FALSE(PropertyData("5") == PropertyData(5));
}

TEST(PropertyData, TypeNameAndTextFormMakeTheSamePayload)
{
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        std::string bytes(random() % 40, '\0');
        for (char& c : bytes) {
            c = static_cast<char>(random());
        }
        auto const* const raw = reinterpret_cast<unsigned char const*>(bytes.data());
        PropertyData const binary(raw, static_cast<long>(bytes.size()));
        PropertyData const again = PropertyData::Create(binary.GetTypename(), binary.GetDataString());
        EXPECT_EQ(Bytes(again), Bytes(binary));

        PropertyData const number(static_cast<std::int32_t>(random()));
        EXPECT_EQ(PropertyData::Create(number.GetTypename(), number.GetDataString()), number);

        PropertyData const text(Quarn::string(bytes.c_str()));
        EXPECT_EQ(Bytes(PropertyData::Create(text.GetTypename(), text.GetDataString())), Bytes(text));
    }
}

} // namespace
