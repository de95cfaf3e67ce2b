// Enumeration in the registry: orders, buffers and codes are those of Windows on every system. The order of
// values differs between systems; lists of them are compared sorted.
#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using std::string;

struct KeyAt
{
    long code;
    unsigned long size;
    string name; // the untouched bytes of the buffer are '#'
};

KeyAt SubKeyAt(HKEY key, unsigned long index, unsigned long capacity)
{
    string buffer(capacity + 2, '#');
    DWORD size = static_cast<DWORD>(capacity);
    long const code = ::RegEnumKeyExA(key, static_cast<DWORD>(index), buffer.data(), &size, nullptr, nullptr,
                                      nullptr, nullptr);
    return {code, size, buffer};
}

struct ValueAtResult
{
    long code;
    unsigned long nameSize;
    string name;
    unsigned long type;
    unsigned long dataSize;
    string data;
};

ValueAtResult ValueAt(HKEY key, unsigned long index, unsigned long nameCapacity, unsigned long dataCapacity)
{
    ValueAtResult result{0, 0, string(nameCapacity + 2, '#'), 99, 0, string(dataCapacity + 2, '#')};
    DWORD nameSize = static_cast<DWORD>(nameCapacity);
    DWORD dataSize = static_cast<DWORD>(dataCapacity);
    DWORD type = 99;
    result.code = ::RegEnumValueA(key, static_cast<DWORD>(index), result.name.data(), &nameSize, nullptr,
                                  &type, reinterpret_cast<BYTE*>(result.data.data()), &dataSize);
    result.nameSize = nameSize;
    result.type = type;
    result.dataSize = dataSize;
    return result;
}

TEST(RegistryEnum, SubKeysComeInAlphabeticalOrderWithoutCase)
{
    ThrowAwayKey const key;
    for (char const* const name : {"beta", "Alpha", "zed", "Zoo", "1", "ab", "A", "10", "2", "a b", "-"}) {
        ASSERT_EQ(MakeKey(key, name), 0);
    }
    std::vector<string> const expected = {"-",  "1",     "10",   "2",   "A",  "a b",
                                          "ab", "Alpha", "beta", "zed", "Zoo"};
    EXPECT_EQ(SubKeyNames(key), expected);
}

TEST(RegistryEnum, AKeyNameNeedsRoomForItsTerminator)
{
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "abc"), 0);
    KeyAt const fits = SubKeyAt(key, 0, 4);
    EXPECT_EQ(fits.code, 0);
    EXPECT_EQ(fits.size, 3u);
    EXPECT_EQ(fits.name, string("abc\0##", 6));
    KeyAt const small = SubKeyAt(key, 0, 3);
    EXPECT_EQ(small.code, 234);
    EXPECT_EQ(small.size, 3u);
    EXPECT_EQ(small.name, "#####");
    EXPECT_EQ(SubKeyAt(key, 0, 0).code, 234);
    for (unsigned long const index : {1UL, 2UL, 0xFFFFFFFFUL}) {
        KeyAt const end = SubKeyAt(key, index, 4);
        EXPECT_EQ(end.code, 259);
        EXPECT_EQ(end.size, 4u);
        EXPECT_EQ(end.name, "######");
    }
}

TEST(RegistryEnum, AClassIsEmpty)
{
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "abc"), 0);
    char name[4];
    DWORD size = sizeof name;
    char className[4] = "###";
    DWORD classSize = sizeof className;
    EXPECT_EQ(::RegEnumKeyExA(key, 0, name, &size, nullptr, className, &classSize, nullptr), 0);
    EXPECT_STREQ(className, "");
    EXPECT_EQ(classSize, 0u);
    size = sizeof name;
    classSize = 0;
    EXPECT_EQ(::RegEnumKeyExA(key, 0, name, &size, nullptr, className, &classSize, nullptr), 234);
    DWORD reserved = 0;
    EXPECT_EQ(::RegEnumKeyExA(key, 0, name, &size, &reserved, nullptr, nullptr, nullptr), 87);
}

TEST(RegistryEnum, ValuesComeWithNameTypeAndData)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "Alpha", "data"), 0);
    ValueAtResult const all = ValueAt(key, 0, 6, 5);
    EXPECT_EQ(all.code, 0);
    EXPECT_EQ(all.nameSize, 5u);
    EXPECT_EQ(all.name, string("Alpha\0##", 8));
    EXPECT_EQ(all.type, 1u);
    EXPECT_EQ(all.dataSize, 5u);
    EXPECT_EQ(all.data, string("data\0##", 7));
    ValueAtResult const end = ValueAt(key, 1, 6, 5);
    EXPECT_EQ(end.code, 259);
    EXPECT_EQ(end.nameSize, 6u);
    EXPECT_EQ(end.type, 99u);
    EXPECT_EQ(end.dataSize, 5u);
}

TEST(RegistryEnum, ValueBuffersThatAreTooSmallAreReported)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "Alpha", "data"), 0);
    ValueAtResult const smallData = ValueAt(key, 0, 6, 4);
    EXPECT_EQ(smallData.code, 234);
    EXPECT_EQ(smallData.nameSize, 6u);
    EXPECT_EQ(smallData.name, "########");
    EXPECT_EQ(smallData.type, 1u);
    EXPECT_EQ(smallData.dataSize, 5u);
    EXPECT_EQ(smallData.data, "######");
    ValueAtResult const smallName = ValueAt(key, 0, 5, 5);
    EXPECT_EQ(smallName.code, 234);
    EXPECT_EQ(smallName.nameSize, 5u);
    EXPECT_EQ(smallName.type, 1u);
    EXPECT_EQ(smallName.dataSize, 5u);
    ValueAtResult const nothing = ValueAt(key, 0, 0, 0);
    EXPECT_EQ(nothing.code, 234);
    EXPECT_EQ(nothing.dataSize, 5u);
}

TEST(RegistryEnum, PartsOfAValueCanBeLeftOut)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "Alpha", "data"), 0);
    char name[6];
    BYTE data[5];
    DWORD nameSize = sizeof name;
    DWORD dataSize = 0;
    EXPECT_EQ(::RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(nameSize, 5u);
    nameSize = sizeof name;
    EXPECT_EQ(::RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, nullptr, &dataSize), 0);
    EXPECT_EQ(dataSize, 5u);
    nameSize = sizeof name;
    EXPECT_EQ(::RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, data, nullptr), 87);
    EXPECT_EQ(::RegEnumValueA(key, 0, nullptr, &nameSize, nullptr, nullptr, nullptr, nullptr), 87);
    EXPECT_EQ(::RegEnumValueA(key, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr), 87);
    DWORD reserved = 0;
    EXPECT_EQ(::RegEnumValueA(key, 0, name, &nameSize, &reserved, nullptr, nullptr, nullptr), 87);
}

TEST(RegistryEnum, EveryValueIsListedOnce)
{
    ThrowAwayKey const key;
    std::vector<string> names = {""};
    ASSERT_EQ(SetText(key, "", "default"), 0);
    for (int i = 0; i < 100; ++i) {
        names.push_back(Numbered("v", i * 37 % 100));
        ASSERT_EQ(SetText(key, names.back().c_str(), "text"), 0);
    }
    ASSERT_EQ(SetText(key, "V5", "again"), 0);
    EXPECT_EQ(Sorted(ValueNames(key)), Sorted(names));
}

TEST(RegistryEnum, DeletingTheFirstValueAgainAndAgainEmptiesTheKey)
{
    ThrowAwayKey const key;
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(SetText(key, std::to_string(i).c_str(), "text"), 0);
        ASSERT_EQ(MakeKey(key, std::to_string(i)), 0);
    }
    int values = 0;
    for (char name[8]; values < 100; ++values) {
        DWORD size = sizeof name;
        if (::RegEnumValueA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) != 0) {
            break;
        }
        ASSERT_EQ(::RegDeleteValueA(key, name), 0);
    }
    EXPECT_EQ(values, 20);
    int keys = 0;
    for (char name[8]; keys < 100; ++keys) {
        DWORD size = sizeof name;
        if (::RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) != 0) {
            break;
        }
        ASSERT_EQ(::RegDeleteKeyA(key, name), 0);
    }
    EXPECT_EQ(keys, 20);
}

TEST(RegistryEnum, DeletingBehindTheIndexSkipsNothing)
{
    ThrowAwayKey const key;
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(MakeKey(key, Numbered("k", i)), 0);
    }
    // From the last to the first, as a program does that deletes while it enumerates.
    for (unsigned long index = 10; index-- > 0;) {
        KeyAt const found = SubKeyAt(key, index, 8);
        ASSERT_EQ(found.code, 0);
        if (index % 2 == 0) {
            ASSERT_EQ(::RegDeleteKeyA(key, found.name.c_str()), 0);
        }
    }
    std::vector<string> const expected = {"k1", "k3", "k5", "k7", "k9"};
    EXPECT_EQ(SubKeyNames(key), expected);
}

TEST(RegistryEnum, WhatIsMadeDuringAnEnumerationIsSeenAtItsPlace)
{
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "b"), 0);
    ASSERT_EQ(MakeKey(key, "d"), 0);
    EXPECT_STREQ(SubKeyAt(key, 0, 8).name.c_str(), "b");
    ASSERT_EQ(MakeKey(key, "a"), 0);
    EXPECT_STREQ(SubKeyAt(key, 0, 8).name.c_str(), "a");
    EXPECT_STREQ(SubKeyAt(key, 1, 8).name.c_str(), "b");
    ASSERT_EQ(MakeKey(key, "c\\deeper"), 0);
    EXPECT_STREQ(SubKeyAt(key, 2, 8).name.c_str(), "c");
    EXPECT_STREQ(SubKeyAt(key, 3, 8).name.c_str(), "d");
    EXPECT_EQ(SubKeyAt(key, 4, 8).code, 259);

    ASSERT_EQ(SetText(key, "v", "text"), 0);
    EXPECT_EQ(ValueNames(key).size(), 1u);
    ASSERT_EQ(SetText(key, "w", "text"), 0);
    ASSERT_EQ(SetText(key, "V", "other"), 0);
    EXPECT_EQ(ValueNames(key).size(), 2u);
}

} // namespace
