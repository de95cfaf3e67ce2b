// Unpack: what it reads, and what it says of other records.
#include "tests/registry/record_places.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using Quarn::HighFirst;
using Quarn::LowFirst;
using Quarn::string;
using Quarn::UnpackResult;

template<typename Place>
class Unpacking : public testing::Test
{
protected:
    // What is said of one item, of a type that `before` is of; a refused record must not change it.
    template<typename T>
    UnpackResult::Reason ReasonFor(string const& record, T const& before)
    {
        m_place.Store(record);
        T item = before;
        UnpackResult const result = m_place.Unpack(item);
        EXPECT_TRUE(result || item == before) << record;
        EXPECT_EQ(static_cast<bool>(result), result.reason == UnpackResult::Complete);
        EXPECT_EQ(result.item, result.reason == UnpackResult::TooLong ? 1U : 0U) << record;
        return result.reason;
    }

    template<typename T>
    T Read(string const& record)
    {
        m_place.Store(record);
        T item{};
        EXPECT_TRUE(m_place.Unpack(item)) << record;
        return item;
    }

    Place m_place;
};

using Places = testing::Types<PropertyRecord, RegistryRecord>;
TYPED_TEST_SUITE(Unpacking, Places);

TYPED_TEST(Unpacking, GivesBackWhatWasPacked)
{
    ASSERT_TRUE(this->m_place.Pack("a,b", -7, 4294967295U, -2147483647L - 1, 4294967295UL, true, 0.5, -2.5F,
                                   HighFirst{0x123456789ABCDEF0}, LowFirst{0x123456789ABCDEF0}, "text"));
    string first = "replaced";
    int number = 0;
    unsigned int bits = 0;
    long signedLong = 1;
    unsigned long unsignedLong = 1;
    bool flag = false;
    double decimal = 0;
    float single = 0;
    HighFirst high;
    LowFirst low;
    std::string last = "replaced";
    UnpackResult const result = this->m_place.Unpack(first, number, bits, signedLong, unsignedLong, flag,
                                                     decimal, single, high, low, last);
    EXPECT_TRUE(result);
    EXPECT_EQ(result.item, 0U);
    EXPECT_EQ(first, "a,b");
    EXPECT_EQ(number, -7);
    EXPECT_EQ(bits, 4294967295U);
    EXPECT_EQ(signedLong, -2147483647L - 1);
    EXPECT_EQ(unsignedLong, 4294967295UL);
    EXPECT_TRUE(flag);
    EXPECT_EQ(decimal, 0.5);
    EXPECT_EQ(single, -2.5F);
    EXPECT_EQ(high.value, 0x123456789ABCDEF0U);
    EXPECT_EQ(low.value, 0x123456789ABCDEF0U);
    EXPECT_EQ(last, "text");
}

TYPED_TEST(Unpacking, ReadsWhatWritefWrites)
{
    string const name = "north";
    ASSERT_TRUE(this->m_place.Writef("tibT", &name, -1, true, std::uint64_t{1} << 32));
    string text;
    int number = 0;
    bool flag = false;
    HighFirst high;
    EXPECT_TRUE(this->m_place.Unpack(text, number, flag, high));
    EXPECT_EQ(text, "north");
    EXPECT_EQ(high.value, std::uint64_t{1} << 32);
}

TYPED_TEST(Unpacking, SaysWhichItemIsMissingAndChangesNone)
{
    int a = 1;
    int b = 2;
    string text = "before";
    struct
    {
        char const* record;
        UnpackResult::Reason reason;
        std::size_t item;
    } const cases[] = {
        {"", UnpackResult::TooShort, 0},
        {"5", UnpackResult::TooShort, 0}, // without its comma a number may be cut off
        {"5,", UnpackResult::TooShort, 1},
        {"5,6", UnpackResult::TooShort, 1},
        {"5,6,", UnpackResult::TooShort, 2},
        {"5,6,\"", UnpackResult::TooShort, 2},
        {"5,6,\"abc", UnpackResult::TooShort, 2},
        {"5,6,\"abc\"", UnpackResult::TooShort, 2},
        {"5,6,\"abc\",7,", UnpackResult::TooLong, 3},
        {"5,6,\"abc\",,", UnpackResult::TooLong, 3},
        {"5,,\"abc\",", UnpackResult::WrongKind, 1},
        {"5,6,abc,", UnpackResult::WrongKind, 2},
        {"5,6,\"a,b\",", UnpackResult::WrongKind, 2}, // the field ends at its comma
        {"5,6,\"a\"b\",", UnpackResult::WrongKind, 2},
        {",\"5\",6,\"abc\",", UnpackResult::WrongKind, 0},
    };
    for (auto const& each : cases) {
        this->m_place.Store(each.record);
        UnpackResult const result = this->m_place.Unpack(a, b, text);
        EXPECT_FALSE(result);
        EXPECT_EQ(result.reason, each.reason) << each.record;
        EXPECT_EQ(result.item, each.item) << each.record;
    }
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 2);
    EXPECT_EQ(text, "before");
    this->m_place.Store("5,6,\"abc\",");
    EXPECT_TRUE(this->m_place.Unpack(a, b, text));
    EXPECT_EQ(a, 5);
    EXPECT_EQ(text, "abc");
}

TYPED_TEST(Unpacking, ARecordCutOffAnywhereIsTooShort)
{
    std::string const record = ",\"a,b\",12,-3.5,1:2,\"text\",";
    for (std::size_t length = 0; length < record.size(); ++length) {
        this->m_place.Store(record.substr(0, length));
        string first;
        int number = 0;
        double decimal = 0;
        HighFirst high;
        string last;
        EXPECT_EQ(this->m_place.Unpack(first, number, decimal, high, last).reason, UnpackResult::TooShort)
            << length;
    }
}

TYPED_TEST(Unpacking, AnIntegerIsOneInItsRange)
{
    for (char const* const wrong : {",", "abc,", " 5,", "+5,", "5 ,", "5x,", "0x5,", "1.0,", "1:2,", "-,",
                                    "\"5\",", "2147483648,", "-2147483649,", "99999999999999999999,"}) {
        EXPECT_EQ(this->ReasonFor(wrong, 99), UnpackResult::WrongKind) << wrong;
        EXPECT_EQ(this->ReasonFor(wrong, 99L), UnpackResult::WrongKind) << wrong;
    }
    for (char const* const wrong : {",", "-1,", "4294967296,", "+1,", "1.0,"}) {
        EXPECT_EQ(this->ReasonFor(wrong, 99U), UnpackResult::WrongKind) << wrong;
        EXPECT_EQ(this->ReasonFor(wrong, 99UL), UnpackResult::WrongKind) << wrong;
    }
    for (char const* const wrong : {",", "2,", "-1,", "true,", "01,", "1.0,", "\"1\","}) {
        EXPECT_EQ(this->ReasonFor(wrong, true), UnpackResult::WrongKind) << wrong;
        EXPECT_EQ(this->ReasonFor(wrong, false), UnpackResult::WrongKind) << wrong;
    }
    EXPECT_EQ(this->template Read<int>("-2147483648,"), -2147483647 - 1);
    EXPECT_EQ(this->template Read<long>("-1,"), -1L);
    EXPECT_EQ(this->template Read<unsigned int>("4294967295,"), 4294967295U);
    EXPECT_EQ(this->template Read<unsigned long>("4294967295,"), 4294967295UL);
    EXPECT_FALSE(this->template Read<bool>("0,"));
}

TYPED_TEST(Unpacking, ADecimalNumberIsOneAsAWhole)
{
    for (char const* const wrong :
         {",", "abc,", " 1.0,", "+1.0,", "1.0 ,", "1.0x,", "1;0,", "1e,", "1e999,", "1:2,", "\"1.0\","}) {
        EXPECT_EQ(this->ReasonFor(wrong, 99.0), UnpackResult::WrongKind) << wrong;
        EXPECT_EQ(this->ReasonFor(wrong, 99.0F), UnpackResult::WrongKind) << wrong;
    }
    EXPECT_EQ(this->template Read<double>("1234567.875000,"), 1234567.875);
    EXPECT_EQ(this->template Read<double>("5,"), 5.0);
    EXPECT_EQ(this->template Read<double>("1e300,"), 1e300);
    EXPECT_EQ(this->ReasonFor("1e300,", 99.0F), UnpackResult::WrongKind);
    EXPECT_EQ(this->template Read<float>("340282346638528859811704183484516925440.000000,"),
              std::numeric_limits<float>::max());
    EXPECT_EQ(this->template Read<float>("-inf,"), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(this->template Read<double>("nan,")));
    EXPECT_TRUE(std::signbit(this->template Read<double>("-0.000000,")));
}

TYPED_TEST(Unpacking, ANumberOf64BitsIsTwoHalves)
{
    for (char const* const wrong : {",", "1,", "1:,", ":1,", "1:2:3,", "1:-2,", "1:4294967296,", "1 :2,"}) {
        this->m_place.Store(wrong);
        HighFirst high{7};
        LowFirst low{7};
        EXPECT_EQ(this->m_place.Unpack(high).reason, UnpackResult::WrongKind) << wrong;
        EXPECT_EQ(this->m_place.Unpack(low).reason, UnpackResult::WrongKind) << wrong;
        EXPECT_EQ(high.value, 7U);
        EXPECT_EQ(low.value, 7U);
    }
    EXPECT_EQ(this->template Read<HighFirst>("1:4294967295,").value, 0x1FFFFFFFFU);
    EXPECT_EQ(this->template Read<LowFirst>("4294967295:1,").value, 0x1FFFFFFFFU);
}

TYPED_TEST(Unpacking, ABackslashBeforeAQuoteStandsForTheQuote)
{
    EXPECT_EQ(this->template Read<string>(",\"a\\\"b\\c\","), "a\"b\\c");
    EXPECT_EQ(this->ReasonFor(",\"a\\\",", string("x")), UnpackResult::TooShort);
    EXPECT_EQ(this->template Read<string>(",\"\","), "");
    EXPECT_EQ(this->ReasonFor("\"a\",", string("x")), UnpackResult::WrongKind) << "no comma before it";
}

// The one difference between the two, as with Readf.
TEST(UnpackingOfDrivePaths, IsLiteralInSettingsValuesAlone)
{
    PropertyRecord property;
    RegistryRecord registry;
    ASSERT_TRUE(property.Pack(1, "C:\\dir\\"));
    ASSERT_TRUE(registry.Pack(1, "C:\\dir\\"));
    int number = 0;
    string path;
    EXPECT_TRUE(property.Unpack(number, path));
    EXPECT_EQ(path, "C:\\dir\\");
    EXPECT_EQ(registry.Unpack(number, path).reason, UnpackResult::WrongKind);
    EXPECT_EQ(path, "C:\\dir\\");
}

TEST(UnpackingOfValuesWithoutText, IsUnreadable)
{
    int number = 7;
    Quarn::PropertyValue const int32("n", Quarn::PropertyData(5), nullptr);
    EXPECT_EQ(Quarn::Unpack(int32, number).reason, UnpackResult::Unreadable);
    unsigned char bytes[] = {'5', ','};
    Quarn::PropertyValue const binary("b", Quarn::PropertyData(bytes, 2), nullptr);
    EXPECT_EQ(Quarn::Unpack(binary, number).reason, UnpackResult::Unreadable);

    ThrowAwayKey const place;
    Win32Quarn::CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.Open(""));
    Win32Quarn::RegistryValue value(key, "value");
    EXPECT_EQ(Quarn::Unpack(value, number).reason, UnpackResult::Unreadable);
    EXPECT_EQ(key.GetLastError(), 2);
    ASSERT_TRUE(value.Write(bytes, 2, 0));
    EXPECT_EQ(Quarn::Unpack(value, number).reason, UnpackResult::Unreadable);
    ASSERT_TRUE(value.Write(0x2C35UL)); // the characters "5,"
    EXPECT_EQ(Quarn::Unpack(value, number).reason, UnpackResult::Unreadable);
    EXPECT_EQ(number, 7);
}

} // namespace
