// Keys of the registry: the codes are those of Windows on every system.
#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using std::string;

TEST(RegistryKeys, CreateMakesTheParentsAndTellsNewFromOld)
{
    ThrowAwayKey const key;
    HKEY made = nullptr;
    unsigned long disposition = 0;
    EXPECT_EQ(CreateKey(key, "a\\b\\c", made, &disposition), 0);
    EXPECT_EQ(disposition, 1u);
    EXPECT_EQ(::RegCloseKey(made), 0);
    EXPECT_EQ(CreateKey(key, "A\\B", made, &disposition), 0);
    EXPECT_EQ(disposition, 2u);
    EXPECT_EQ(SubKeyNames(made), std::vector<string>{"c"});
    EXPECT_EQ(::RegCloseKey(made), 0);
    EXPECT_EQ(SubKeyNames(key), std::vector<string>{"a"}); // the first spelling stays
}

TEST(RegistryKeys, PathsTakeTrailingAndDoubledBackslashesButNoneInFront)
{
    ThrowAwayKey const key;
    EXPECT_EQ(MakeKey(key, "c\\\\\\d\\"), 0);
    struct
    {
        char const* path;
        long code;
    } const cases[] = {
        {"c", 0},         {"c\\d", 0}, {"c\\d\\", 0},  {"C\\\\D\\\\", 0}, {"\\c", 161},
        {"\\", 161},      {"c/d", 2},  {"missing", 2}, {"c\\missing", 2}, {"missing\\d", 2},
        {"missing\\", 2}, {"c ", 2},   {"c\\d\\e", 2},
    };
    for (auto const& each : cases) {
        EXPECT_EQ(TryOpen(key, each.path), each.code) << each.path;
    }
    EXPECT_EQ(MakeKey(key, "\\x"), 161);
    EXPECT_EQ(MakeKey(key, "\\"), 161);
    EXPECT_EQ(::RegDeleteKeyA(key, "\\c"), 161);
}

TEST(RegistryKeys, ASlashIsPartOfAName)
{
    ThrowAwayKey const key;
    EXPECT_EQ(MakeKey(key, "a/b"), 0);
    EXPECT_EQ(SubKeyNames(key), std::vector<string>{"a/b"});
}

TEST(RegistryKeys, TheEmptyPathIsTheKeyItself)
{
    ThrowAwayKey const key;
    ASSERT_EQ(SetText(key, "v", "text"), 0);
    for (char const* const path : {static_cast<char const*>(nullptr), ""}) {
        HKEY again = nullptr;
        ASSERT_EQ(OpenKey(key, path, again), 0);
        EXPECT_NE(again, static_cast<HKEY>(key));
        EXPECT_EQ(DataOf(again, "v"), string("text\0", 5));
        EXPECT_EQ(::RegCloseKey(again), 0);
        ASSERT_EQ(CreateKey(key, path, again), 0);
        EXPECT_EQ(DataOf(again, "v"), string("text\0", 5));
        EXPECT_EQ(::RegCloseKey(again), 0);
    }
    EXPECT_EQ(DataOf(key, "v"), string("text\0", 5));
    // A root keeps its handle.
    HKEY root = nullptr;
    EXPECT_EQ(OpenKey(HKEY_CURRENT_USER, "", root, KEY_READ), 0);
    EXPECT_EQ(root, HKEY_CURRENT_USER);
}

TEST(RegistryKeys, NamesOf255CharactersWork)
{
    ThrowAwayKey const key;
    string const longest(255, 'k');
    EXPECT_EQ(MakeKey(key, longest), 0);
    EXPECT_EQ(TryOpen(key, string(255, 'K').c_str()), 0);
    EXPECT_EQ(TryOpen(key, string(254, 'K').c_str()), 2);
    EXPECT_EQ(SubKeyNames(key), std::vector<string>{longest});
    EXPECT_EQ(::RegDeleteKeyA(key, longest.c_str()), 0);
}

TEST(RegistryKeys, DeleteTakesAKeyWithItsValuesButNotWithSubKeys)
{
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "full\\sub"), 0);
    ASSERT_EQ(MakeKey(key, "plain"), 0);
    HKEY plain = nullptr;
    ASSERT_EQ(OpenKey(key, "plain", plain), 0);
    ASSERT_EQ(SetText(plain, "v", "text"), 0);
    ASSERT_EQ(::RegCloseKey(plain), 0);

    EXPECT_EQ(::RegDeleteKeyA(key, "full"), 5);
    EXPECT_EQ(::RegDeleteKeyA(key, "missing"), 2);
    EXPECT_EQ(::RegDeleteKeyA(key, nullptr), 87);
    EXPECT_EQ(::RegDeleteKeyA(key, "plain\\"), 0);
    EXPECT_EQ(::RegDeleteKeyA(key, "plain"), 2);
    EXPECT_EQ(::RegDeleteKeyA(key, "FULL\\SUB"), 0);
    EXPECT_EQ(::RegDeleteKeyA(key, "full"), 0);
    EXPECT_TRUE(SubKeyNames(key).empty());
    // A key of the same name does not inherit the values.
    ASSERT_EQ(OpenKey(key, "plain", plain), 2);
    ASSERT_EQ(CreateKey(key, "plain", plain), 0);
    EXPECT_TRUE(ValueNames(plain).empty());
    ::RegCloseKey(plain);
}

TEST(RegistryKeys, TheHandleOfADeletedKeyIsGoodForClosingAlone)
{
    ThrowAwayKey const key;
    HKEY gone = nullptr;
    HKEY reader = nullptr;
    ASSERT_EQ(CreateKey(key, "gone", gone), 0);
    ASSERT_EQ(OpenKey(key, "gone", reader, KEY_READ), 0);
    ASSERT_EQ(SetText(gone, "v", "text"), 0);
    EXPECT_EQ(::RegDeleteKeyA(gone, ""), 0);

    HKEY other = nullptr;
    char name[10];
    DWORD size = sizeof name;
    EXPECT_EQ(Query(gone, "v", 10).code, 1018);
    EXPECT_EQ(SetText(gone, "v", "text"), 1018);
    EXPECT_EQ(::RegDeleteValueA(gone, "v"), 1018);
    EXPECT_EQ(::RegDeleteKeyA(gone, ""), 1018);
    EXPECT_EQ(::RegDeleteKeyA(gone, "x"), 1018);
    EXPECT_EQ(OpenKey(gone, nullptr, other), 1018);
    EXPECT_EQ(OpenKey(gone, "x", other), 1018);
    EXPECT_EQ(CreateKey(gone, "x", other), 1018);
    EXPECT_EQ(CreateKey(gone, "", other), 1018);
    EXPECT_EQ(::RegEnumKeyExA(gone, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 1018);
    EXPECT_EQ(::RegEnumValueA(gone, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 1018);
    EXPECT_EQ(Query(reader, "v", 10).code, 1018);

    // A new key of the same name is another key.
    HKEY again = nullptr;
    unsigned long disposition = 0;
    EXPECT_EQ(CreateKey(key, "gone", again, &disposition), 0);
    EXPECT_EQ(disposition, 1u);
    EXPECT_EQ(Query(gone, "v", 10).code, 1018);
    EXPECT_EQ(::RegCloseKey(again), 0);
    EXPECT_EQ(::RegCloseKey(gone), 0);
    EXPECT_EQ(::RegCloseKey(gone), 6);
    EXPECT_EQ(::RegCloseKey(reader), 0);
}

TEST(RegistryKeys, NullClosedAndInventedHandlesAreRefused)
{
    ThrowAwayKey const key;
    HKEY closed = nullptr;
    ASSERT_EQ(CreateKey(key, "x", closed), 0);
    ASSERT_EQ(::RegCloseKey(closed), 0);
    for (HKEY const bad : {HKEY{}, closed, reinterpret_cast<HKEY>(std::intptr_t{0xdead0})}) {
        HKEY result = nullptr;
        char name[10];
        DWORD size = sizeof name;
        EXPECT_EQ(OpenKey(bad, "x", result), 6);
        EXPECT_EQ(OpenKey(bad, nullptr, result), 6);
        EXPECT_EQ(CreateKey(bad, "x", result), 6);
        EXPECT_EQ(::RegDeleteKeyA(bad, "x"), 6);
        EXPECT_EQ(::RegEnumKeyExA(bad, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 6);
        EXPECT_EQ(::RegEnumValueA(bad, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 6);
        EXPECT_EQ(SetText(bad, "v", "text"), 6);
        EXPECT_EQ(::RegDeleteValueA(bad, "v"), 6);
        QueryResult const query = Query(bad, "v", 3);
        EXPECT_EQ(query.code, 6);
        EXPECT_EQ(query.size, 3u); // the type, of which Windows says nothing, is 0 under Wine
        EXPECT_EQ(query.buffer, "#######");
        EXPECT_EQ(::RegCloseKey(bad), 6);
    }
}

TEST(RegistryKeys, AHandleOfAnotherKindIsNoKey)
{
    std::string const name = Numbered("quarn-registry-test-", static_cast<int>(::GetCurrentProcessId()));
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name.c_str());
    ASSERT_NE(mutex, nullptr);
    HKEY const bad = static_cast<HKEY>(mutex);
    HKEY result = nullptr;
    EXPECT_EQ(OpenKey(bad, "x", result), 6);
    EXPECT_EQ(Query(bad, "v", 3).code, 6);
    EXPECT_EQ(::CloseHandle(mutex), TRUE);
}

TEST(RegistryKeys, RootsNeedNoOpeningAndNoClosing)
{
    EXPECT_EQ(::RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(::RegCloseKey(HKEY_LOCAL_MACHINE), 0);
    EXPECT_EQ(SetText(HKEY_CURRENT_USER, "QuarnUtilTest", "text"), 0);
    EXPECT_EQ(DataOf(HKEY_CURRENT_USER, "quarnutiltest"), string("text\0", 5));
    EXPECT_EQ(::RegDeleteValueA(HKEY_CURRENT_USER, "QUARNUTILTEST"), 0);
    ThrowAwayKey const machine(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(SetText(machine, "v", "machine"), 0);
    EXPECT_EQ(TryOpen(HKEY_LOCAL_MACHINE, machine.Path().c_str()), 0);
    EXPECT_EQ(TryOpen(HKEY_CURRENT_USER, machine.Path().c_str()), 2);
}

TEST(RegistryKeys, RightsDecideAboutValuesAndListsButNotAboutSubKeys)
{
    struct
    {
        REGSAM access;
        long query;
        long listKeys;
        long set;
    } const cases[] = {
        {KEY_ALL_ACCESS, 0, 0, 0},
        {KEY_READ, 0, 0, 5},
        {KEY_WRITE, 5, 5, 0},
        {KEY_QUERY_VALUE, 0, 5, 5},
        {KEY_SET_VALUE, 5, 5, 0},
        {KEY_CREATE_SUB_KEY, 5, 5, 5},
        {KEY_ENUMERATE_SUB_KEYS, 5, 0, 5},
        {0, 5, 5, 5},
    };
    ThrowAwayKey const key;
    ASSERT_EQ(MakeKey(key, "k\\sub"), 0);
    for (auto const& each : cases) {
        SCOPED_TRACE(each.access);
        HKEY handle = nullptr;
        ASSERT_EQ(OpenKey(key, "k", handle), 0);
        ASSERT_EQ(SetText(handle, "v", "text"), 0);
        ASSERT_EQ(::RegCloseKey(handle), 0);
        ASSERT_EQ(OpenKey(key, "k", handle, each.access), 0);
        char name[10];
        DWORD size = sizeof name;
        EXPECT_EQ(Query(handle, "v", 10).code, each.query);
        EXPECT_EQ(::RegEnumValueA(handle, 0, name, &size, nullptr, nullptr, nullptr, nullptr), each.query);
        size = sizeof name;
        EXPECT_EQ(::RegEnumKeyExA(handle, 0, name, &size, nullptr, nullptr, nullptr, nullptr), each.listKeys);
        EXPECT_EQ(SetText(handle, "v", "other"), each.set);
        EXPECT_EQ(::RegDeleteValueA(handle, "v"), each.set);
        EXPECT_EQ(::RegDeleteValueA(handle, "missing"), each.set == 0 ? 2 : 5);
        EXPECT_EQ(TryOpen(handle, "", KEY_ALL_ACCESS), 0);
        EXPECT_EQ(MakeKey(handle, "new"), 0);
        EXPECT_EQ(::RegDeleteKeyA(handle, "new"), 0);
        EXPECT_EQ(::RegCloseKey(handle), 0);
    }
}

TEST(RegistryKeys, HandlesAreIndependent)
{
    ThrowAwayKey const key;
    HKEY first = nullptr;
    HKEY second = nullptr;
    ASSERT_EQ(CreateKey(key, "k", first), 0);
    ASSERT_EQ(OpenKey(key, "k", second), 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(::RegCloseKey(first), 0);
    EXPECT_EQ(SetText(second, "v", "text"), 0);
    EXPECT_EQ(::RegCloseKey(second), 0);
}

} // namespace
