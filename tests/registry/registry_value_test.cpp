#include "quarn/registry/registry_value.h"

#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using Quarn::string;
using Win32Quarn::CurrentUserKey;
using Win32Quarn::DWORDRegistryValue;
using Win32Quarn::RegistryValue;

class RegistryValueTest : public testing::Test
{
protected:
    RegistryValueTest() { EXPECT_TRUE(m_key.Open("")); }

    ThrowAwayKey m_place;
    CurrentUserKey m_key{m_place.Path()};
};

std::string Bytes(std::initializer_list<int> bytes)
{
    std::string text;
    for (int const byte : bytes) {
        text.push_back(static_cast<char>(byte));
    }
    return text;
}

TEST_F(RegistryValueTest, NamesAValueOfItsKey)
{
    RegistryValue value(m_key, "v");
    EXPECT_EQ(value.GetName(), "v");
    EXPECT_TRUE(value.IsOpen());
    EXPECT_FALSE(value.Exists());
    EXPECT_TRUE(value.Write(string("text")));
    EXPECT_TRUE(value.Exists());
    value.SetName("w");
    EXPECT_EQ(value.GetName(), "w");
    EXPECT_FALSE(value.Exists());
    m_key.Close();
    EXPECT_FALSE(value.IsOpen());
}

TEST_F(RegistryValueTest, AnEmptyNameIsTheDefaultValue)
{
    EXPECT_TRUE(RegistryValue(m_key, "").Write(string("default")));
    EXPECT_EQ(DataOf(m_place, ""), std::string("default\0", 8));
}

TEST_F(RegistryValueTest, TextIsWrittenWithItsTerminator)
{
    RegistryValue value(m_key, "v");
    EXPECT_TRUE(value.Write("text"));
    EXPECT_EQ(Query(m_place, "v", 5).type, 1u);
    EXPECT_EQ(DataOf(m_place, "v"), std::string("text\0", 5));
    EXPECT_TRUE(value.Write(""));
    EXPECT_EQ(DataOf(m_place, "v"), std::string(1, '\0'));
    string text = "before";
    unsigned long type = 99;
    EXPECT_TRUE(value.Read(text, &type));
    EXPECT_EQ(text, "");
    EXPECT_EQ(type, 1u);
}

TEST_F(RegistryValueTest, TextOfAnyLengthIsReadBack)
{
    RegistryValue value(m_key, "v");
    for (std::size_t const length : {0, 1, 253, 254, 255, 256, 300, 100000}) {
        std::string const written(length, 'x');
        ASSERT_TRUE(value.Write(written));
        string text;
        EXPECT_TRUE(value.Read(text, nullptr));
        EXPECT_TRUE(text == written) << length;
    }
    EXPECT_EQ(m_key.GetLastError(), 0);
}

TEST_F(RegistryValueTest, AnyTypeIsReadAsTextUpToAZeroByte)
{
    RegistryValue value(m_key, "v");
    unsigned long type = 0;
    string text;
    ASSERT_TRUE(value.Write(0x00434241ul));
    EXPECT_TRUE(value.Read(text, &type));
    EXPECT_EQ(text, "ABC");
    EXPECT_EQ(type, 4u);
    // Without a zero byte the data ends the text, in the small buffer and in the large one.
    for (std::size_t const length : {3, 254, 255, 256, 1000}) {
        std::string const bytes(length, 'y');
        ASSERT_EQ(SetBytes(m_place, "v", REG_BINARY, bytes), 0);
        EXPECT_TRUE(value.Read(text, &type));
        EXPECT_TRUE(text == bytes) << length;
        EXPECT_EQ(type, 3u);
    }
    ASSERT_EQ(SetText(m_place, "v", ""), 0);
    ASSERT_EQ(SetBytes(m_place, "v", REG_EXPAND_SZ, std::string("%PATH%\0", 7)), 0);
    EXPECT_TRUE(value.Read(text, nullptr));
    EXPECT_EQ(text, "%PATH%");
}

TEST_F(RegistryValueTest, NumbersAreFourBytes)
{
    RegistryValue value(m_key, "v");
    EXPECT_TRUE(value.Write(0x01020304ul));
    QueryResult const stored = Query(m_place, "v", 4);
    EXPECT_EQ(stored.type, 4u);
    EXPECT_EQ(stored.buffer, Bytes({4, 3, 2, 1}) + "####");
    unsigned long number = ~0ul;
    EXPECT_TRUE(value.Read(&number));
    EXPECT_EQ(number, 0x01020304u);
    EXPECT_TRUE(value.Write(0));
    EXPECT_TRUE(value.Read(&number));
    EXPECT_EQ(number, 0u);
    EXPECT_TRUE(value.Write(4294967295u));
    EXPECT_TRUE(value.Read(&number));
    EXPECT_EQ(number, 4294967295u); // written whole, whatever the width of long

    // The type is not looked at; missing bytes are 0, more than four are refused.
    ASSERT_EQ(SetBytes(m_place, "v", REG_BINARY, Bytes({7, 1})), 0);
    EXPECT_TRUE(value.Read(&number));
    EXPECT_EQ(number, 0x0107u);
    ASSERT_EQ(SetBytes(m_place, "v", REG_BINARY, "12345"), 0);
    EXPECT_FALSE(value.Read(&number));
    EXPECT_EQ(m_key.GetLastError(), 234);
    EXPECT_EQ(number, 0x0107u);
}

TEST_F(RegistryValueTest, BytesAreReadUpToASize)
{
    ASSERT_EQ(SetBytes(m_place, "v", REG_BINARY, "abc"), 0);
    RegistryValue value(m_key, "v");
    unsigned char buffer[5] = "####";
    unsigned long type = 99;
    EXPECT_TRUE(value.Read(buffer, 4ul, &type));
    EXPECT_EQ(type, 3u);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "abc#");
    unsigned long size = 4;
    EXPECT_TRUE(value.Read(buffer, &size, nullptr));
    EXPECT_EQ(size, 3u);
    size = 2;
    type = 99;
    EXPECT_FALSE(value.Read(buffer, &size, &type));
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(type, 99u);
    EXPECT_EQ(m_key.GetLastError(), 234);
    EXPECT_FALSE(value.Read(buffer, 0, &type));
    EXPECT_FALSE(value.Read(buffer, 2, &type));
}

TEST_F(RegistryValueTest, BytesOfTypeZeroTakeTheRememberedType)
{
    unsigned char bytes[] = {1, 2, 3, 4};
    RegistryValue fresh(m_key, "v");
    EXPECT_TRUE(fresh.Write(bytes, sizeof bytes, 0));
    EXPECT_EQ(Query(m_place, "v", 4).type, 3u);

    ASSERT_EQ(SetBytes(m_place, "v", REG_DWORD, "1234"), 0);
    RegistryValue value(m_key, "v");
    unsigned long number = 0;
    ASSERT_TRUE(value.Read(&number));
    EXPECT_TRUE(value.Write(bytes, sizeof bytes, 0));
    EXPECT_EQ(Query(m_place, "v", 4).type, 4u);

    RegistryValue copy(value);
    EXPECT_TRUE(copy.Write(bytes, sizeof bytes, 0)); // a copy remembers it too
    EXPECT_EQ(Query(m_place, "v", 4).type, 4u);

    EXPECT_TRUE(value.Write(bytes, sizeof bytes, 77));
    EXPECT_TRUE(value.Write(bytes, 2, 0));
    EXPECT_EQ(Query(m_place, "v", 4).type, 77u);
    EXPECT_EQ(DataOf(m_place, "v"), Bytes({1, 2}));

    value.SetName("v"); // forgets it
    EXPECT_TRUE(value.Write(bytes, sizeof bytes, 0));
    EXPECT_EQ(Query(m_place, "v", 4).type, 3u);
}

TEST_F(RegistryValueTest, EmptyDataDeliberatelyCountsAsAbsent)
{
    RegistryValue value(m_key, "v");
    EXPECT_TRUE(value.Write(nullptr, 0, REG_BINARY));
    EXPECT_EQ(ValueNames(m_place).size(), 1u);
    EXPECT_FALSE(value.Exists());
    EXPECT_TRUE(value.Write(""));
    EXPECT_TRUE(value.Exists()); // a text has its terminator
}

TEST_F(RegistryValueTest, ErrorsAreRecordedInTheKey)
{
    RegistryValue value(m_key, "missing");
    string text = "before";
    unsigned long number = 7;
    unsigned long type = 99;
    EXPECT_FALSE(value.Read(text, &type));
    EXPECT_EQ(m_key.GetLastError(), 2);
    EXPECT_EQ(text, "before");
    EXPECT_EQ(type, 99u);
    EXPECT_FALSE(value.Read(&number));
    EXPECT_EQ(number, 7u);
    EXPECT_FALSE(value.Exists()); // records nothing
    EXPECT_EQ(m_key.GetLastError(), 2);

    m_key.Close();
    EXPECT_FALSE(value.Write("text"));
    EXPECT_EQ(m_key.GetLastError(), 6);
    EXPECT_FALSE(value.Write(1ul));
    EXPECT_FALSE(value.Write(nullptr, 0, 3));
    EXPECT_FALSE(value.Exists());
    EXPECT_FALSE(value.Writef("i", 1));
    int item = 5;
    EXPECT_FALSE(value.Readf("i", &item));
    EXPECT_EQ(item, 5);
    ASSERT_TRUE(m_key.OpenRead(""));
    EXPECT_FALSE(value.Write("text"));
    EXPECT_EQ(m_key.GetLastError(), 5);
}

TEST_F(RegistryValueTest, ACounterBeginsAtNothing)
{
    DWORDRegistryValue counter(m_key, "count");
    EXPECT_EQ(counter.Read(), 0u);
    EXPECT_EQ(m_key.GetLastError(), 2);
    EXPECT_EQ(counter.Increment(), 1u);
    EXPECT_EQ(counter.Increment(), 2u);
    EXPECT_EQ(counter.Read(), 2u);
    EXPECT_EQ(Query(m_place, "count", 4).type, 4u);
    EXPECT_EQ(counter.Decrement(), 1u);
    EXPECT_EQ(counter.Decrement(), 0u);
    EXPECT_EQ(counter.Decrement(), 4294967295u);
    EXPECT_EQ(counter.Read(), 4294967295u);
    EXPECT_EQ(counter.Increment(), 0u);
    EXPECT_TRUE(counter.Write(41));
    DWORDRegistryValue copy(counter);
    EXPECT_EQ(copy.Increment(), 42u);
}

TEST_F(RegistryValueTest, ACounterOfEmptyDataBeginsAtNothing)
{
    ASSERT_EQ(SetBytes(m_place, "count", REG_BINARY, ""), 0);
    EXPECT_EQ(DWORDRegistryValue(m_key, "count").Decrement(), 4294967295u);
}

TEST_F(RegistryValueTest, ACounterThatCannotBeWrittenReturnsItsNumber)
{
    DWORDRegistryValue counter(m_key, "count");
    ASSERT_TRUE(counter.Write(7));
    ASSERT_TRUE(m_key.OpenRead(""));
    EXPECT_EQ(counter.Increment(), 8u);
    EXPECT_EQ(m_key.GetLastError(), 5);
    EXPECT_EQ(counter.Read(), 7u);
}

} // namespace
