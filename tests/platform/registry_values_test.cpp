// Values of the registry: codes, sizes and types are those of Windows on every system.
#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using std::string;

void ExpectQuery(QueryResult const& result, long code, unsigned long type, unsigned long size,
                 string const& buffer)
{
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.type, type);
    EXPECT_EQ(result.size, size);
    EXPECT_EQ(result.buffer, buffer);
}

TEST(RegistryValues, ABufferThatIsTooSmallStaysAsItIs)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "t", "abc"), 0);
    ExpectQuery(Query(key, "t", 6), 0, 1, 4, string("abc\0##", 6) + "####");
    ExpectQuery(Query(key, "t", 4), 0, 1, 4, string("abc\0", 4) + "####");
    ExpectQuery(Query(key, "t", 3), 234, 1, 4, "#######");
    ExpectQuery(Query(key, "t", 0), 234, 1, 4, "####");
}

TEST(RegistryValues, SizeAndTypeCanBeAskedForAlone)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "t", "abc"), 0);
    DWORD type = 99;
    DWORD size = 0;
    BYTE data[4];
    EXPECT_EQ(::RegQueryValueExA(key, "t", nullptr, &type, nullptr, &size), 0);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(size, 4u);
    type = 99;
    EXPECT_EQ(::RegQueryValueExA(key, "t", nullptr, &type, nullptr, nullptr), 0);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(::RegQueryValueExA(key, "t", nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(::RegQueryValueExA(key, "missing", nullptr, nullptr, nullptr, nullptr), 2);
    // Data without a size is never right, nor is the reserved argument.
    EXPECT_EQ(::RegQueryValueExA(key, "t", nullptr, nullptr, data, nullptr), 87);
    EXPECT_EQ(::RegQueryValueExA(key, "missing", nullptr, nullptr, data, nullptr), 87);
    EXPECT_EQ(::RegQueryValueExA(nullptr, "t", nullptr, nullptr, data, nullptr), 87);
    DWORD reserved = 0;
    EXPECT_EQ(::RegQueryValueExA(key, "t", &reserved, nullptr, nullptr, nullptr), 87);
}

TEST(RegistryValues, MissingOnesLeaveTheBuffer)
{
    ThrowAwayKey const key;
    QueryResult const result = Query(key, "missing", 5);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.size, 5u);
    EXPECT_EQ(result.buffer, "#########");
    EXPECT_EQ(::RegDeleteValueA(key, "missing"), 2);
}

TEST(RegistryValues, TypesAndBytesComeBackAsTheyWere)
{
    struct
    {
        DWORD type;
        string data;
    } const cases[] = {
        {0, "xy"},
        {1, string("\0", 1)},
        {1, ""},
        {2, string("%PATH%\0", 7)},
        {3, ""},
        {3, string("\0\1\xff", 3)},
        {4, string("\1\2\3\4", 4)},
        {4, "abcdef"},
        {4, "a"},
        {7, string("a\0b\0\0", 5)},
        {11, "12345678"},
        {77, "xy"},
        {0xFFFFFFFF, "xy"},
    };
    ThrowAwayKey const key;
    for (auto const& each : cases) {
        SCOPED_TRACE(each.type);
        ASSERT_EQ(SetBytes(key, "v", each.type, each.data), 0);
        ExpectQuery(Query(key, "v", 10), 0, each.type, static_cast<unsigned long>(each.data.size()),
                    each.data + string(14 - each.data.size(), '#'));
    }
    EXPECT_EQ(ValueNames(key).size(), 1u);
}

TEST(RegistryValues, ATextWithoutItsTerminatorGetsOne)
{
    ThrowAwayKey const key;
    for (DWORD const type : {DWORD{1}, DWORD{2}, DWORD{7}}) {
        ASSERT_EQ(::RegSetValueExA(key, "v", 0, type, reinterpret_cast<BYTE const*>("abc"), 3), 0);
        ExpectQuery(Query(key, "v", 6), 0, type, 4, string("abc\0##", 6) + "####");
    }
}

TEST(RegistryValues, NullDataIsNoDataAndHasNoSize)
{
    ThrowAwayKey const key;
    EXPECT_EQ(::RegSetValueExA(key, "v", 0, REG_BINARY, nullptr, 0), 0);
    ExpectQuery(Query(key, "v", 2), 0, 3, 0, "######");
    EXPECT_EQ(::RegSetValueExA(key, "v", 0, REG_SZ, nullptr, 0), 0);
    ExpectQuery(Query(key, "v", 2), 0, 1, 0, "######");
    EXPECT_EQ(::RegSetValueExA(key, "v", 0, REG_BINARY, nullptr, 3), 998);
    ExpectQuery(Query(key, "v", 2), 0, 1, 0, "######");
}

TEST(RegistryValues, TheEmptyNameIsTheDefaultValue)
{
    ThrowAwayKey const key;
    EXPECT_EQ(Query(key, "", 4).code, 2);
    EXPECT_EQ(SetText(key, "", "one"), 0);
    EXPECT_EQ(DataOf(key, nullptr), string("one\0", 4));
    EXPECT_EQ(SetText(key, nullptr, "two"), 0);
    EXPECT_EQ(DataOf(key, ""), string("two\0", 4));
    EXPECT_EQ(ValueNames(key), std::vector<string>{""});
    EXPECT_EQ(::RegDeleteValueA(key, nullptr), 0);
    EXPECT_EQ(::RegDeleteValueA(key, ""), 2);
}

TEST(RegistryValues, NamesKeepTheirFirstSpellingAndCompareWithoutCase)
{
    ThrowAwayKey const key;
    EXPECT_EQ(SetText(key, "Back\\Slash/[1]", "one"), 0);
    EXPECT_EQ(SetText(key, "BACK\\slash/[1]", "two"), 0);
    EXPECT_EQ(DataOf(key, "back\\SLASH/[1]"), string("two\0", 4));
    EXPECT_EQ(ValueNames(key), std::vector<string>{"Back\\Slash/[1]"});
    EXPECT_EQ(::RegDeleteValueA(key, "bACK\\sLASH/[1]"), 0);
    // A new value has a new spelling.
    EXPECT_EQ(SetText(key, "BACK\\slash/[1]", "two"), 0);
    EXPECT_EQ(ValueNames(key), std::vector<string>{"BACK\\slash/[1]"});
}

// Under Wine in its code page 1252, in which every byte is a character.
TEST(RegistryValues, EveryByteAbove127ComesBackInNamesAndTexts)
{
    ThrowAwayKey const key;
    for (int byte = 0x80; byte <= 0xff; ++byte) {
        SCOPED_TRACE(byte);
        string const text = string("n") + static_cast<char>(byte);
        EXPECT_EQ(SetText(key, text.c_str(), text), 0);
        EXPECT_EQ(ValueNames(key), std::vector<string>{text});
        EXPECT_EQ(DataOf(key, text.c_str()), text + '\0');
        EXPECT_EQ(::RegDeleteValueA(key, text.c_str()), 0);
        EXPECT_EQ(MakeKey(key, text), 0);
        EXPECT_EQ(SubKeyNames(key), std::vector<string>{text});
        EXPECT_EQ(::RegDeleteKeyA(key, text.c_str()), 0);
    }
}

TEST(RegistryValues, NamesOf16383CharactersWorkAndLongerOnesDoNot)
{
    ThrowAwayKey const key;
    string const longest(16383, 'v');
    EXPECT_EQ(SetText(key, longest.c_str(), "text"), 0);
    EXPECT_EQ(DataOf(key, string(16383, 'V').c_str()), string("text\0", 5));
    EXPECT_EQ(ValueNames(key), std::vector<string>{longest});
    string const tooLong(16384, 'v');
    EXPECT_EQ(SetText(key, tooLong.c_str(), "text"), 87);
    EXPECT_EQ(Query(key, tooLong.c_str(), 5).code, 2);
    EXPECT_EQ(::RegDeleteValueA(key, tooLong.c_str()), 2);
    EXPECT_EQ(::RegDeleteValueA(key, longest.c_str()), 0);
}

TEST(RegistryValues, SizesFromNothingToAMebibyteComeBackWhole)
{
    ThrowAwayKey const key;
    for (std::size_t const size : {0, 1, 2, 255, 256, 2047, 2048, 4095, 4096, 4097, 65535, 65536, 1 << 20}) {
        string data(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            data[i] = static_cast<char>(i * 7 + (i >> 8));
        }
        ASSERT_EQ(SetBytes(key, "v", REG_BINARY, data), 0) << size;
        ASSERT_TRUE(DataOf(key, "v") == data) << size;
        if (size != 0) {
            QueryResult const small = Query(key, "v", static_cast<unsigned long>(size - 1));
            EXPECT_EQ(small.code, 234);
            EXPECT_EQ(small.size, size);
        }
    }
}

TEST(RegistryValues, SameNamesInDifferentKeysAreDifferentValues)
{
    ThrowAwayKey const key;
    HKEY sub = nullptr;
    ASSERT_EQ(CreateKey(key, "v", sub), 0); // a key may have a value's name
    ASSERT_EQ(SetText(key, "v", "outer"), 0);
    ASSERT_EQ(SetText(sub, "v", "inner"), 0);
    EXPECT_EQ(DataOf(key, "v"), string("outer\0", 6));
    EXPECT_EQ(DataOf(sub, "V"), string("inner\0", 6));
    EXPECT_EQ(::RegDeleteValueA(key, "v"), 0);
    EXPECT_EQ(DataOf(sub, "v"), string("inner\0", 6));
    ::RegCloseKey(sub);
}

} // namespace
