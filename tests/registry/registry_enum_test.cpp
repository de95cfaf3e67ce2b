#include "quarn/registry/registry_enum.h"

#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using Quarn::string;
using Quarn::StringList;
using Win32Quarn::CurrentUserKey;
using Win32Quarn::RegistryKeyEnum;
using Win32Quarn::RegistryValueEnum;

std::vector<std::string> Vector(StringList const& list)
{
    return {list.begin(), list.end()};
}

TEST(RegistryNames, AnEmptyKeyAppendsNothing)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.OpenRead(""));
    StringList names;
    EXPECT_TRUE(RegistryKeyEnum(key).Read(names));
    EXPECT_TRUE(RegistryValueEnum(key).Read(names));
    EXPECT_TRUE(names.empty());
}

TEST(RegistryNames, ReadingTwiceAppendsTwice)
{
    ThrowAwayKey const place;
    for (char const* const name : {"b", "a", "C"}) {
        ASSERT_EQ(MakeKey(place, name), 0);
        ASSERT_EQ(SetText(place, name, "text"), 0);
    }
    ASSERT_EQ(SetText(place, "", "default"), 0);
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.OpenRead(""));
    StringList keys;
    EXPECT_TRUE(RegistryKeyEnum(key).Read(keys));
    EXPECT_EQ(Vector(keys), (std::vector<std::string>{"a", "b", "C"}));
    EXPECT_TRUE(RegistryKeyEnum(key).Read(keys));
    EXPECT_EQ(Vector(keys), (std::vector<std::string>{"a", "b", "C", "a", "b", "C"}));
    StringList values;
    EXPECT_TRUE(RegistryValueEnum(key).Read(values));
    EXPECT_EQ(Sorted(Vector(values)), (std::vector<std::string>{"", "C", "a", "b"}));
    EXPECT_EQ(key.GetLastError(), 0);
}

TEST(RegistryNames, AClosedKeyGivesItsCode)
{
    CurrentUserKey key("Software");
    StringList names;
    EXPECT_FALSE(RegistryKeyEnum(key).Read(names));
    EXPECT_EQ(key.GetLastError(), 6);
    EXPECT_TRUE(key.OpenRead(""));
    key.Close();
    EXPECT_FALSE(RegistryValueEnum(key).Read(names));
    EXPECT_EQ(key.GetLastError(), 6);
    EXPECT_TRUE(names.empty());
}

TEST(RegistryNames, ANameOf512BytesEndsTheListWithACode)
{
    ThrowAwayKey const place;
    ASSERT_EQ(SetText(place, std::string(511, 'a').c_str(), "text"), 0);
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.OpenRead(""));
    StringList names;
    EXPECT_TRUE(RegistryValueEnum(key).Read(names));
    EXPECT_EQ(names.size(), 1u);
    ASSERT_EQ(SetText(place, std::string(512, 'b').c_str(), "text"), 0);
    EXPECT_FALSE(RegistryValueEnum(key).Read(names));
    EXPECT_EQ(key.GetLastError(), 234);
    EXPECT_EQ(names.size(), 2u); // in both orders, by creation and by name
}

} // namespace
