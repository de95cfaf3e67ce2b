#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/registry_persist.h"

#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;
using Quarn::Win32::RegistryPropPersist;

TEST(RegistryPropPersist, AnEmptyKeyPopulatesNothing)
{
    ThrowAwayKey const key;
    PropertyCollection tree("tree", "Document");
    EXPECT_TRUE(RegistryPropPersist(key).Exists());
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetKeyCount(), 0u);
    EXPECT_EQ(tree.GetValueCount(), 0u);
    EXPECT_FALSE(tree.Dirty());
}

TEST(RegistryPropPersist, TheUnnamedValueIsTheDefaultValue)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "", "abc"), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    ASSERT_EQ(tree.GetValueCount(), 1u);
    PropertyValue const* const value = tree.GetValue(0);
    EXPECT_EQ(value->GetName(), "DefaultValue");
    EXPECT_EQ(value->GetDataType(), PropertyData::TypeString);
    EXPECT_EQ(value->GetData().GetDataSize(), 4);
    EXPECT_EQ(value->GetValueString(), "abc");
    EXPECT_TRUE(tree.Dirty());
}

TEST(RegistryPropPersist, ThreeTypesAreRead)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "text", "abc"), 0);
    ASSERT_EQ(SetBytes(key, "binary", REG_BINARY, std::string("\0\1\xff", 3)), 0);
    ASSERT_EQ(SetBytes(key, "nothing", REG_BINARY, ""), 0);
    ASSERT_EQ(SetBytes(key, "number", REG_DWORD, std::string("\xfe\xff\xff\xff", 4)), 0);
    ASSERT_EQ(SetBytes(key, "multi", REG_MULTI_SZ, std::string("a\0b\0\0", 5)), 0);
    ASSERT_EQ(SetBytes(key, "expand", REG_EXPAND_SZ, std::string("%PATH%\0", 7)), 0);
    ASSERT_EQ(SetBytes(key, "quad", REG_QWORD, "12345678"), 0);
    ASSERT_EQ(SetBytes(key, "none", REG_NONE, "x"), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValueCount(), 4u);
    EXPECT_EQ(tree.GetValueString("text", ""), "abc");
    EXPECT_EQ(tree.GetValueString("binary", ""), "0001ff");
    EXPECT_EQ(tree.GetValue("binary")->GetDataType(), PropertyData::TypeBinary);
    EXPECT_EQ(tree.GetValue("nothing")->GetData().GetDataSize(), 0);
    EXPECT_EQ(tree.GetValueInt32("number", 0), -2);
    EXPECT_EQ(tree.GetValue("number")->GetDataType(), PropertyData::TypeInt32);
}

TEST(RegistryPropPersist, NumbersOfOtherSizesKeepTheirSize)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetBytes(key, "short", REG_DWORD, "\x07"), 0);
    ASSERT_EQ(SetBytes(key, "long", REG_DWORD, std::string("\1\0\0\0\2\0", 6)), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValueInt32("short", 0), 7);
    EXPECT_EQ(tree.GetValue("short")->GetData().GetDataSize(), 1);
    EXPECT_EQ(tree.GetValueInt32("long", 0), 1);
    EXPECT_EQ(tree.GetValue("long")->GetData().GetDataSize(), 6);
}

TEST(RegistryPropPersist, TextIsTakenAsItIsStored)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetBytes(key, "zeros", REG_SZ, std::string("ab\0cd\0\0", 7)), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValue("zeros")->GetData().GetDataSize(), 7);
    EXPECT_EQ(tree.GetValueString("zeros", ""), "ab");
}

TEST(RegistryPropPersist, AValueThatDoesNotFitDeliberatelyEndsTheValues)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetBytes(key, "a", REG_BINARY, std::string(8192, 'a')), 0);
    ASSERT_EQ(SetBytes(key, "b", REG_BINARY, std::string(9000, 'b')), 0);
    ASSERT_EQ(SetText(key, "c", "lost"), 0);
    ASSERT_EQ(MakeKey(key, "sub"), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValueCount(), 1u); // in both orders, by creation and by name
    EXPECT_EQ(tree.GetValue("a")->GetData().GetDataSize(), 8192);
    EXPECT_TRUE(tree.HasSubKey("sub"));
}

TEST(RegistryPropPersist, ANameThatDoesNotFitDeliberatelyEndsTheValuesToo)
{
    ThrowAwayKey const key;
    std::string const fits(511, 'a');
    ASSERT_EQ(SetText(key, fits.c_str(), "1"), 0);
    ASSERT_EQ(SetText(key, std::string(512, 'b').c_str(), "2"), 0);
    ASSERT_EQ(SetText(key, "c", "lost"), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValueCount(), 1u); // in both orders, by creation and by name
    EXPECT_EQ(tree.GetValueString(fits, ""), "1");
}

TEST(RegistryPropPersist, SubKeysBecomeKeysByThePathSyntax)
{
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "One\\Two"), 0);
    ASSERT_EQ(MakeKey(key, "a,b"), 0);
    ASSERT_EQ(MakeKey(key, "c/d;e"), 0);
    HKEY two = nullptr;
    ASSERT_EQ(OpenKey(key, "a,b", two), 0);
    ASSERT_EQ(SetText(two, "v", "text"), 0);
    ASSERT_EQ(::RegCloseKey(two), 0);
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_TRUE(tree.HasSubKey("One\\Two"));
    EXPECT_EQ(tree.GetValueString("a\\b:v", ""), "text");
    EXPECT_TRUE(tree.HasSubKey("c\\d\\e"));
    EXPECT_EQ(tree.GetKeyCount(), 3u);
    EXPECT_EQ(tree.GetSubKey("one")->GetName(), "One");
}

TEST(RegistryPropPersist, AddsToWhatIsThere)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "Both", "registry"), 0);
    PropertyCollection tree;
    tree.SetValueString("sub:kept=1", true);
    tree.SetValue("both", PropertyData("tree"), true);
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValueCount(), 1u);
    EXPECT_EQ(tree.GetValueString("both", ""), "registry");
    EXPECT_EQ(tree.GetValueString("sub:kept", ""), "1");
}

TEST(RegistryPropPersist, AKeyThatCannotBeReadIsFalse)
{
    PropertyCollection tree;
    EXPECT_FALSE(RegistryPropPersist(nullptr).Exists());
    EXPECT_FALSE(RegistryPropPersist(nullptr).Populate(&tree));
    ThrowAwayKey const key;
    HKEY gone = nullptr;
    ASSERT_EQ(CreateKey(key, "gone", gone), 0);
    ASSERT_EQ(::RegDeleteKeyA(key, "gone"), 0);
    EXPECT_FALSE(RegistryPropPersist(gone).Populate(&tree));
    ::RegCloseKey(gone);
    EXPECT_FALSE(tree.Dirty());
}

TEST(RegistryPropPersist, AHandleThatMayNotListSubKeysIsFalseAfterItsValues)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "v", "text"), 0);
    HKEY handle = nullptr;
    ASSERT_EQ(OpenKey(key, "", handle, KEY_QUERY_VALUE), 0);
    PropertyCollection tree;
    EXPECT_FALSE(RegistryPropPersist(handle).Populate(&tree));
    EXPECT_EQ(tree.GetValueString("v", ""), "text");
    ::RegCloseKey(handle);
}

// The open keys among the handles with numbers near that of `key`, where new ones get theirs.
int CountOpenKeys(HKEY key)
{
    auto const own = reinterpret_cast<std::intptr_t>(key);
    int count = 0;
    for (std::intptr_t number = std::max<std::intptr_t>(own - 4096, 4); number < own + 4096; number += 4) {
        count += TryOpen(reinterpret_cast<HKEY>(number), "") == 0 ? 1 : 0;
    }
    return count;
}

TEST(RegistryPropPersist, LeavesNoHandleOfASubKeyOpen)
{
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "one\\below"), 0);
    ASSERT_EQ(MakeKey(key, "two"), 0);
    int const before = CountOpenKeys(key);
    EXPECT_GE(before, 1); // the test's own
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(CountOpenKeys(key), before);
}

TEST(RegistryPropPersist, AThousandValuesAndKeysAreRead)
{
    ThrowAwayKey const key;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(SetText(key, Numbered("v", i).c_str(), std::to_string(i)), 0);
    }
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(MakeKey(key, Numbered("k", i)), 0);
    }
    PropertyCollection tree;
    EXPECT_TRUE(RegistryPropPersist(key).Populate(&tree));
    EXPECT_EQ(tree.GetValueCount(), 1000u);
    EXPECT_EQ(tree.GetKeyCount(), 100u);
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(tree.GetValueInt32(Numbered("v", i), -1), i);
    }
}

} // namespace
