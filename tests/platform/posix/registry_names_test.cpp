// What the registry does outside Windows with names that the code pages of Windows do not have, and other
// points in which the systems differ on purpose.
#include "quarn/registry/registry_enum.h"

#include "tests/german_locale.h"
#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using std::string;

TEST(PosixRegistry, NamesOfAllScriptsCompareWithoutCaseInEveryLocale)
{
    struct
    {
        char const* upper;
        char const* lower;
    } const cases[] = {
        {"\u00c4\u00d6\u00dc", "\u00e4\u00f6\u00fc"},
        {"\u0178", "\u00ff"},
        {"\u0141\u017b", "\u0142\u017c"},
        {"\u03a3\u0391\u038f", "\u03c3\u03b1\u03ce"},
        {"\u0429\u0402", "\u0449\u0452"},
        {"\u1ea4", "\u1ea5"},
        {"\uff21", "\uff41"},
    };
    for (auto const& each : cases) {
        ThrowAwayKey const key;
        EXPECT_EQ(SetText(key, each.upper, "text"), 0);
        EXPECT_EQ(DataOf(key, each.lower), string("text\0", 5)) << each.upper;
        EXPECT_EQ(ValueNames(key), std::vector<string>{each.upper});
        GermanLocale const german;
        EXPECT_TRUE(german.Found());
        EXPECT_EQ(DataOf(key, each.lower), string("text\0", 5)) << each.upper;
    }
}

TEST(PosixRegistry, DifferentCharactersAreDifferentNames)
{
    ThrowAwayKey const key;
    char const* const names[] = {
        "I",    "\u0131", "\u00b5",   "\u039c",       "s",          "\u017f", "\u00df", "ss", "\xff",
        "\xfe", "\xc3",   "\xc3\x28", "\xed\xa0\x80", "\U0001f600", "\u00d7", "\u00f7"};
    for (char const* const name : names) {
        EXPECT_EQ(SetText(key, name, name), 0);
    }
    EXPECT_EQ(ValueNames(key), std::vector<string>(std::begin(names), std::end(names)));
    for (char const* const name : names) {
        EXPECT_EQ(DataOf(key, name), string(name) + '\0');
    }
}

TEST(PosixRegistry, KeysSortByTheirUpperCaseUnits)
{
    ThrowAwayKey const key;
    // An underscore follows the letters; a character of two units precedes one of the last units.
    for (char const* const name : {"\uff41", "\U0001f600", "_", "b", "\u00e4", "A", "[", "Z"}) {
        ASSERT_EQ(MakeKey(key, name), 0);
    }
    std::vector<string> const expected = {"A", "b", "Z", "[", "_", "\u00e4", "\U0001f600", "\uff41"};
    EXPECT_EQ(SubKeyNames(key), expected);
}

TEST(PosixRegistry, ValuesComeInTheOrderOfTheirCreation)
{
    ThrowAwayKey const key;
    for (char const* const name : {"c", "a", "d", "b"}) {
        ASSERT_EQ(SetText(key, name, "text"), 0);
    }
    ASSERT_EQ(SetText(key, "a", "changed"), 0);
    EXPECT_EQ(ValueNames(key), (std::vector<string>{"c", "a", "d", "b"}));
    ASSERT_EQ(::RegDeleteValueA(key, "a"), 0);
    ASSERT_EQ(SetText(key, "a", "new"), 0);
    EXPECT_EQ(ValueNames(key), (std::vector<string>{"c", "d", "b", "a"}));
}

TEST(PosixRegistry, LongNamesAndDeepTreesHaveTheirLimits)
{
    ThrowAwayKey const key;
    EXPECT_EQ(MakeKey(key, string(256, 'k')), 87);
    EXPECT_EQ(TryOpen(key, string(256, 'k').c_str()), 2);
    EXPECT_TRUE(SubKeyNames(key).empty());
    // Characters count, not bytes.
    string wide;
    for (int i = 0; i < 255; ++i) {
        wide += "\u20ac";
    }
    EXPECT_EQ(MakeKey(key, wide), 0);
    EXPECT_EQ(MakeKey(key, wide + "x"), 87);
    EXPECT_EQ(::RegDeleteKeyA(key, wide.c_str()), 0);

    string deep;
    for (int i = 0; i < 510; ++i) { // below "Software" and the test's own
        deep += "d\\";
    }
    EXPECT_EQ(MakeKey(key, deep + "d"), 87);
    EXPECT_TRUE(SubKeyNames(key).empty()); // all or nothing
    EXPECT_EQ(MakeKey(key, deep), 0);
    EXPECT_EQ(TryOpen(key, deep.c_str()), 0);
    string const longPath(5000000, '\\');
    EXPECT_EQ(TryOpen(key, ("d" + longPath + "d").c_str()), 0);
    EXPECT_EQ(TryOpen(key, string(5000000, 'd').c_str()), 2);
}

// 255 characters can be more bytes than the buffers of the key classes hold.
TEST(PosixRegistry, ASubKeysNameOf512BytesEndsListsAndMoves)
{
    string wide;
    for (int i = 0; i < 171; ++i) {
        wide += "\u20ac";
    }
    ThrowAwayKey const place;
    ASSERT_EQ(MakeKey(place, "from\\a"), 0);
    ASSERT_EQ(MakeKey(place, "from\\" + wide), 0);
    Win32Quarn::CurrentUserKey from(place.Path() + "\\from");
    ASSERT_TRUE(from.Open(""));
    Quarn::StringList names;
    EXPECT_FALSE(Win32Quarn::RegistryKeyEnum(from).Read(names));
    EXPECT_EQ(from.GetLastError(), 234);
    EXPECT_EQ(names.size(), 1u);
    Win32Quarn::CurrentUserKey to(place.Path() + "\\to");
    EXPECT_FALSE(from.Copy(to, true));
    EXPECT_EQ(TryOpen(from, wide.c_str()), 0);
    EXPECT_EQ(::RegDeleteKeyA(from, wide.c_str()), 0);
    EXPECT_TRUE(from.Copy(to, true));
}

TEST(PosixRegistry, WhatIsNotKeptIsRefused)
{
    ThrowAwayKey const key;
    HKEY result = nullptr;
    EXPECT_EQ(::RegCreateKeyExA(key, "volatile", 0, nullptr, 1, KEY_ALL_ACCESS, nullptr, &result, nullptr),
              87);
    EXPECT_EQ(::RegCreateKeyExA(key, "x", 1, nullptr, 0, KEY_ALL_ACCESS, nullptr, &result, nullptr), 87);
    EXPECT_EQ(::RegCreateKeyExA(key, "x", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, nullptr, nullptr), 87);
    EXPECT_EQ(::RegOpenKeyExA(key, "x", 0, KEY_READ, nullptr), 87);
    EXPECT_TRUE(SubKeyNames(key).empty());
    EXPECT_EQ(::RegDeleteKeyA(HKEY_CURRENT_USER, ""), 5);
}

TEST(PosixRegistry, TheFourRootsAreFourTrees)
{
    HKEY const roots[] = {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS};
    for (HKEY const root : roots) {
        ASSERT_EQ(MakeKey(root, "QuarnUtilTestRoot"), 0);
    }
    for (HKEY const root : roots) {
        EXPECT_EQ(::RegDeleteKeyA(root, "QuarnUtilTestRoot"), 0);
        EXPECT_EQ(::RegDeleteKeyA(root, "QuarnUtilTestRoot"), 2);
    }
}

TEST(PosixRegistry, AThousandValuesAndKeysCanBeListedAndDeletedWhileListing)
{
    constexpr int count = 1000;
    ThrowAwayKey const key;
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(SetText(key, std::to_string(i).c_str(), "text"), 0);
        ASSERT_EQ(MakeKey(key, std::to_string(i)), 0);
    }
    EXPECT_EQ(ValueNames(key).size(), 1000u);
    EXPECT_EQ(SubKeyNames(key).size(), 1000u);
    char name[16];
    for (DWORD i = count; i-- > 0;) { // backwards for the values, from the front for the keys
        DWORD size = sizeof name;
        ASSERT_EQ(::RegEnumValueA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr), 0);
        ASSERT_EQ(::RegDeleteValueA(key, name), 0);
        size = sizeof name;
        ASSERT_EQ(::RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 0);
        ASSERT_EQ(::RegDeleteKeyA(key, name), 0);
    }
    EXPECT_TRUE(ValueNames(key).empty());
    EXPECT_TRUE(SubKeyNames(key).empty());
}

} // namespace
