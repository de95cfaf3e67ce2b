#include "quarn/registry/registry_key.h"

#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using Win32Quarn::CurrentUserKey;
using Win32Quarn::RegistryKey;
using Names = std::vector<std::string>;

class RegistryCopy : public testing::Test
{
protected:
    // A key below the test's own place, which is there.
    CurrentUserKey At(char const* name) const
    {
        CurrentUserKey key(m_place.Path());
        key.AppendPath(name);
        return key;
    }
    long Set(char const* path, char const* name, std::string const& text) const
    {
        CurrentUserKey key(m_place.Path());
        return key.Open(path) ? SetText(key, name, text) : key.GetLastError();
    }
    Names Values(char const* path) const
    {
        HKEY key = nullptr;
        if (OpenKey(m_place, path, key, KEY_READ) != 0) {
            return {"(missing)"};
        }
        Names const names = Sorted(ValueNames(key));
        ::RegCloseKey(key);
        return names;
    }
    std::string Data(char const* path, char const* name) const
    {
        HKEY key = nullptr;
        OpenKey(m_place, path, key, KEY_READ);
        std::string const data = DataOf(key, name);
        ::RegCloseKey(key);
        return data.c_str();
    }

    ThrowAwayKey m_place;
};

TEST_F(RegistryCopy, WithoutMoveCopiesTheValuesAndDeliberatelyReportsFalse)
{
    ASSERT_EQ(Set("from", "a", "1") + Set("from", "", "2"), 0);
    ASSERT_EQ(Set("to", "a", "old") + Set("to", "kept", "3"), 0);
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("to");
    EXPECT_FALSE(from.Copy(to, false));
    EXPECT_EQ(Values("from"), (Names{"", "a"}));
    EXPECT_EQ(Values("to"), (Names{"", "a", "kept"}));
    EXPECT_EQ(Data("to", "a"), "1");
    EXPECT_EQ(Data("to", ""), "2");
}

TEST_F(RegistryCopy, WithMoveDeliberatelyFlattensAllBelowIntoTheDestination)
{
    ASSERT_EQ(Set("from", "top", "1") + Set("from\\S", "v", "2") + Set("from\\S\\T", "w", "3") +
                  Set("from\\U", "x", "4"),
              0);
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("to");
    EXPECT_TRUE(from.Copy(to, true));
    EXPECT_EQ(Values("to"), (Names{"top", "v", "w", "x"}));
    EXPECT_EQ(SubKeyNames(to), Names());
    EXPECT_EQ(SubKeyNames(m_place), Names{"to"});
    // The handle is that of the removed key.
    EXPECT_TRUE(from.IsOpen());
    EXPECT_EQ(Query(from, "top", 4).code, 1018);
}

TEST_F(RegistryCopy, WithoutMoveDeliberatelyStopsAfterTheFirstSubKey)
{
    ASSERT_EQ(Set("from", "top", "1") + Set("from\\A", "a", "2") + Set("from\\B", "b", "3"), 0);
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("to");
    EXPECT_FALSE(from.Copy(to, false));
    EXPECT_EQ(Values("to"), (Names{"a", "top"}));
    EXPECT_EQ(Values("from\\B"), Names{"b"});
}

TEST_F(RegistryCopy, OpensKeysThatAreClosed)
{
    ASSERT_EQ(Set("from", "a", "1"), 0);
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("deep\\to");
    EXPECT_TRUE(from.Copy(to, true));
    EXPECT_TRUE(to.IsOpen());
    EXPECT_EQ(Values("deep\\to"), Names{"a"});

    CurrentUserKey bad("\\bad");
    EXPECT_FALSE(bad.Copy(to, true));
    EXPECT_EQ(bad.GetLastError(), 161);
    EXPECT_FALSE(to.Copy(bad, true));
    EXPECT_EQ(Values("deep\\to"), Names{"a"});
}

TEST_F(RegistryCopy, KeepsTypesAndBytes)
{
    CurrentUserKey from = At("from");
    ASSERT_TRUE(from.Open(""));
    std::string const bytes("\0\1\xff\0", 4);
    ASSERT_EQ(SetBytes(from, "b", REG_BINARY, bytes), 0);
    ASSERT_EQ(SetBytes(from, "d", REG_DWORD, bytes), 0);
    ASSERT_EQ(SetBytes(from, "e", REG_BINARY, ""), 0);
    ASSERT_EQ(SetBytes(from, "x", 77, bytes), 0);
    CurrentUserKey to = At("to");
    EXPECT_TRUE(from.Copy(to, true));
    for (auto const& [name, type] : {std::pair{"b", 3u}, {"d", 4u}, {"x", 77u}}) {
        QueryResult const found = Query(to, name, 4);
        EXPECT_EQ(found.code, 0);
        EXPECT_EQ(found.type, type);
        EXPECT_EQ(found.buffer, bytes + "####");
    }
    EXPECT_EQ(Query(to, "e", 4).size, 0u);
}

TEST_F(RegistryCopy, AValueBeyond7680BytesDeliberatelyEndsTheValuesWithoutAnError)
{
    CurrentUserKey from = At("from");
    ASSERT_TRUE(from.Open(""));
    ASSERT_EQ(SetBytes(from, "a", REG_BINARY, std::string(7680, 'a')), 0);
    ASSERT_EQ(SetBytes(from, "b", REG_BINARY, std::string(7681, 'b')), 0);
    ASSERT_EQ(SetBytes(from, "c", REG_BINARY, "c"), 0);
    CurrentUserKey to = At("to");
    EXPECT_FALSE(from.Copy(to, false));
    EXPECT_EQ(Values("to"), Names{"a"}); // in both orders, by creation and by name
    EXPECT_EQ(DataOf(to, "a"), std::string(7680, 'a'));
    // A move goes on to the sub-keys and deletes the key with what is left.
    ASSERT_EQ(Set("from\\S", "s", "1"), 0);
    EXPECT_TRUE(from.Copy(to, true));
    EXPECT_EQ(Values("to"), (Names{"a", "s"}));
    EXPECT_EQ(Values("from"), Names{"(missing)"});
}

TEST_F(RegistryCopy, AValueNameOf512BytesDeliberatelyEndsTheValuesToo)
{
    std::string const fits(511, 'a');
    ASSERT_EQ(Set("from", fits.c_str(), "1") + Set("from", std::string(512, 'b').c_str(), "2") +
                  Set("from", "c", "3"),
              0);
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("to");
    EXPECT_FALSE(from.Copy(to, false));
    EXPECT_EQ(Values("to"), Names{fits}); // in both orders, by creation and by name
}

TEST_F(RegistryCopy, AWriteThatFailsDeliberatelyEndsTheValuesWithoutAnError)
{
    ASSERT_EQ(Set("from", "a", "1") + Set("to", "kept", "2"), 0);
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("to");
    ASSERT_TRUE(to.OpenRead("")); // must not write values
    EXPECT_FALSE(from.Copy(to, false));
    EXPECT_EQ(Values("from"), Names{"a"});
    // A move goes on, and deletes the key with what is left.
    EXPECT_TRUE(from.Copy(to, true));
    EXPECT_EQ(Values("from"), Names{"(missing)"});
    EXPECT_EQ(Values("to"), Names{"kept"});
}

TEST_F(RegistryCopy, ADeleteThatFailsEndsAMoveAndLeavesTheKey)
{
    ASSERT_EQ(Set("from", "a", "1") + Set("from", "b", "2") + Set("from\\S", "s", "3"), 0);
    CurrentUserKey from = At("from");
    ASSERT_TRUE(from.OpenRead("")); // must not delete values
    CurrentUserKey to = At("to");
    EXPECT_FALSE(from.Copy(to, true));
    EXPECT_EQ(Values("from"), (Names{"a", "b"}));
    EXPECT_EQ(Values("from\\S"), Names{"s"});
    EXPECT_EQ(Values("to"), Names{"a"});
}

TEST_F(RegistryCopy, AMoveOntoItselfIsRefused)
{
    ASSERT_EQ(Set("from", "a", "1") + Set("from\\S", "s", "2"), 0);
    CurrentUserKey from = At("from");
    ASSERT_TRUE(from.Open(""));
    CurrentUserKey same = At("FROM");
    CurrentUserKey below = At("from\\S");
    RegistryKey child(from, "S");
    for (RegistryKey* const to : {static_cast<RegistryKey*>(&from), static_cast<RegistryKey*>(&same),
                                  static_cast<RegistryKey*>(&below), &child}) {
        EXPECT_FALSE(from.Copy(*to, true));
        EXPECT_EQ(from.GetLastError(), 87);
        EXPECT_EQ(Values("from"), Names{"a"});
        EXPECT_EQ(Values("from\\S"), Names{"s"});
    }
}

TEST_F(RegistryCopy, RenameMovesTheKey)
{
    ASSERT_EQ(Set("old", "a", "1") + Set("old", "b", "2"), 0);
    CurrentUserKey key = At("old");
    std::string const path = m_place.Path();
    EXPECT_TRUE(key.Rename(path + "\\new\\name")); // relative to the base, not to the parent
    EXPECT_EQ(Values("new\\name"), (Names{"a", "b"}));
    EXPECT_EQ(Values("old"), Names{"(missing)"});
    // The object keeps the old path, and a handle of the removed key.
    EXPECT_EQ(key.GetPath(""), path + "\\old");
    EXPECT_EQ(Query(key, "a", 4).code, 1018);
    EXPECT_TRUE(key.Open(""));
    EXPECT_EQ(Values("old"), Names());
}

TEST_F(RegistryCopy, RenameOntoItselfOrBelowIsRefused)
{
    ASSERT_EQ(Set("old", "a", "1"), 0);
    CurrentUserKey key = At("old");
    std::string const path = m_place.Path();
    for (std::string const& name :
         {path + "\\old", path + "\\OLD\\", path + "\\\\old", path + "\\old\\below"}) {
        EXPECT_FALSE(key.Rename(name)) << name;
        EXPECT_EQ(key.GetLastError(), 87);
    }
    EXPECT_EQ(Values("old"), Names{"a"});
    EXPECT_FALSE(key.Rename("\\bad"));
    EXPECT_EQ(Values("old"), Names{"a"});
    // A longer name is another key.
    EXPECT_TRUE(key.Rename(path + "\\older"));
    EXPECT_EQ(Values("older"), Names{"a"});
}

TEST_F(RegistryCopy, ADeepTreeMoves)
{
    CurrentUserKey deep = At("from");
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(deep.Open(""));
        ASSERT_EQ(SetText(deep, Numbered("v", i).c_str(), "text"), 0);
        deep.AppendPath("d");
    }
    CurrentUserKey from = At("from");
    CurrentUserKey to = At("to");
    EXPECT_TRUE(from.Copy(to, true));
    EXPECT_EQ(ValueNames(to).size(), 20u);
    EXPECT_EQ(SubKeyNames(m_place), Names{"to"});
}

} // namespace
