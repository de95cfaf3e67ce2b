#include "quarn/platform/version_info.h"
#include "quarn/registry/registry_key.h"

#include "tests/registry/throw_away_key.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Win32Quarn::CurrentUserKey;
using Win32Quarn::CVersionInfo;
using Win32Quarn::LocalMachineKey;
using Win32Quarn::RegistryKey;
using Win32Quarn::UserKey;
using Win32Quarn::UserVersionKey;

static_assert(std::is_base_of_v<RegistryKey, LocalMachineKey>);
static_assert(std::is_base_of_v<RegistryKey, CurrentUserKey>);
static_assert(std::is_base_of_v<CurrentUserKey, UserKey>);
static_assert(std::is_base_of_v<CurrentUserKey, UserVersionKey>);
static_assert(std::has_virtual_destructor_v<RegistryKey>);

// Opens what is protected.
class BareKey : public RegistryKey
{
public:
    BareKey(HKEY base, Quarn::string const& path) : RegistryKey(base, path) {}
    using RegistryKey::Exists;
    using RegistryKey::Open;
    using RegistryKey::SetLastError;
    using RegistryKey::SetPath;
};

std::string Text(char const* text)
{
    return std::string(text).append(1, '\0');
}

TEST(RegistryKey, BeginsClosedAndWithoutError)
{
    RegistryKey const key;
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetHKey(), nullptr);
    EXPECT_EQ(static_cast<HKEY>(key), nullptr);
    EXPECT_EQ(key.GetPath(""), "");
    EXPECT_EQ(key.GetLastError(), 0);
}

TEST(RegistryKey, WithoutABaseNothingOpens)
{
    RegistryKey key;
    EXPECT_FALSE(key.Open("x"));
    EXPECT_EQ(key.GetLastError(), 6);
    EXPECT_FALSE(key.OpenRead(""));
    EXPECT_FALSE(key.ExistsRead("x"));
    EXPECT_FALSE(key.ExistsWrite("x"));
    EXPECT_FALSE(key.Rename("y"));
}

TEST(RegistryKey, PathsAreJoinedByOneBackslash)
{
    CurrentUserKey const key("Software\\A");
    EXPECT_EQ(key.GetPath(""), "Software\\A");
    EXPECT_EQ(key.GetPath("B"), "Software\\A\\B");
    EXPECT_EQ(CurrentUserKey().GetPath("B"), "B");
    EXPECT_EQ(CurrentUserKey().GetPath(""), "");
}

TEST(RegistryKey, AppendPathLengthensThePath)
{
    CurrentUserKey key;
    key.AppendPath("");
    EXPECT_EQ(key.GetPath(""), "");
    key.AppendPath("B");
    EXPECT_EQ(key.GetPath(""), "B");
    key.AppendPath("C");
    EXPECT_EQ(key.GetPath(""), "B\\C");
    key.AppendPath("");
    EXPECT_EQ(key.GetPath(""), "B\\C");
}

TEST(RegistryKey, AppendPathAndSetBaseLeaveTheOpenHandle)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.Open(""));
    HKEY const handle = key;
    key.AppendPath("below");
    EXPECT_EQ(key.GetHKey(), handle);
    ASSERT_EQ(SetText(key, "v", "text"), 0);
    EXPECT_EQ(DataOf(place, "v"), Text("text"));
    key.SetBase(nullptr);
    EXPECT_EQ(key.GetHKey(), handle);
    EXPECT_FALSE(key.Open(""));
    EXPECT_EQ(key.GetLastError(), 6);
    EXPECT_FALSE(key.IsOpen());
    key.SetBase(HKEY_CURRENT_USER);
    EXPECT_TRUE(key.Open(""));
    EXPECT_EQ(SubKeyNames(place), std::vector<std::string>{"below"});
}

TEST(RegistryKey, OpenMakesAMissingKeyWithItsParents)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    EXPECT_TRUE(key.Open("a\\b"));
    EXPECT_EQ(key.GetLastError(), 0);
    EXPECT_TRUE(key.IsOpen());
    EXPECT_EQ(SetText(key, "v", "text"), 0);
    EXPECT_EQ(TryOpen(place, "a\\b"), 0);
    EXPECT_EQ(key.GetPath(""), place.Path()); // a sub-path is not remembered
}

TEST(RegistryKey, OpenReadDeliberatelyMakesAMissingKeyToo)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    EXPECT_TRUE(key.OpenRead("missing\\sub"));
    EXPECT_EQ(TryOpen(place, "missing\\sub"), 0);
    EXPECT_EQ(SetText(key, "v", "text"), 5); // but it reads alone
}

TEST(RegistryKey, OpeningAgainClosesWhatWasOpen)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.Open("a"));
    HKEY const first = key;
    ASSERT_TRUE(key.Open("b"));
    // A closed handle's number may come back at once, for the other key.
    EXPECT_TRUE(key.GetHKey() == first || SetText(first, "v", "text") == 6);
    EXPECT_EQ(SetText(key, "v", "text"), 0);
    EXPECT_FALSE(RegistryKey(key, "a").ExistsRead("")); // it is the other key
    key.SetBase(nullptr);
    EXPECT_FALSE(key.Open("a"));
    EXPECT_EQ(key.GetLastError(), 6);
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetHKey(), nullptr);
}

TEST(RegistryKey, CloseOfAClosedKeyIsTrueAndKeepsTheError)
{
    ThrowAwayKey const place;
    CurrentUserKey key;
    EXPECT_FALSE(key.Open("\\bad"));
    EXPECT_EQ(key.GetLastError(), 161);
    EXPECT_TRUE(key.Close());
    EXPECT_EQ(key.GetLastError(), 161);
    key.AppendPath(place.Path());
    ASSERT_TRUE(key.Open(""));
    HKEY const handle = key;
    EXPECT_TRUE(key.Close());
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetLastError(), 0);
    EXPECT_EQ(::RegCloseKey(handle), 6);
}

TEST(RegistryKey, ExistsMakesNothingAndKeepsTheError)
{
    ThrowAwayKey const place;
    ASSERT_EQ(MakeKey(place, "there"), 0);
    CurrentUserKey const key(place.Path());
    EXPECT_TRUE(key.ExistsRead(""));
    EXPECT_TRUE(key.ExistsRead("there"));
    EXPECT_TRUE(key.ExistsWrite("THERE"));
    EXPECT_FALSE(key.ExistsRead("missing"));
    EXPECT_FALSE(key.ExistsWrite("missing"));
    EXPECT_TRUE(key.ExistsRead("\\there")); // doubled backslashes are one
    EXPECT_FALSE(CurrentUserKey().ExistsRead("\\there"));
    EXPECT_EQ(key.GetLastError(), 0);
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(SubKeyNames(place), std::vector<std::string>{"there"});
}

TEST(RegistryKey, ASubKeyCountsFromTheHandleOfItsParent)
{
    ThrowAwayKey const place;
    CurrentUserKey parent(place.Path());
    ASSERT_TRUE(parent.Open("deep"));
    RegistryKey child(parent, "child");
    EXPECT_EQ(child.GetPath(""), "child");
    EXPECT_FALSE(child.IsOpen());
    EXPECT_TRUE(child.Open(""));
    EXPECT_EQ(TryOpen(place, "deep\\child"), 0);

    CurrentUserKey closed(place.Path());
    RegistryKey orphan(closed, "child");
    EXPECT_FALSE(orphan.Open(""));
    EXPECT_EQ(orphan.GetLastError(), 6);
}

TEST(RegistryKey, CopiesDeliberatelyShareTheHandle)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.Open(""));
    EXPECT_FALSE(CurrentUserKey("\\bad").Open(""));
    HKEY const handle = key;
    {
        CurrentUserKey const copy(key);
        EXPECT_EQ(copy.GetHKey(), handle);
        EXPECT_EQ(copy.GetPath(""), key.GetPath(""));
        EXPECT_EQ(copy.GetLastError(), 0);
    }
    // The copy's end closed it for both.
    EXPECT_TRUE(key.IsOpen());
    EXPECT_EQ(Query(key, "v", 4).code, 6);
    EXPECT_FALSE(key.Close());
    EXPECT_EQ(key.GetLastError(), 6);
}

TEST(RegistryKey, ACopyForgetsTheErrorAndAnAssignmentTakesIt)
{
    CurrentUserKey key("\\bad");
    EXPECT_FALSE(key.Open(""));
    CurrentUserKey const copy(key);
    EXPECT_EQ(copy.GetLastError(), 0);
    RegistryKey assigned;
    assigned = key;
    EXPECT_EQ(assigned.GetLastError(), 161);
    EXPECT_EQ(assigned.GetPath(""), "\\bad");
}

TEST(RegistryKey, AssignmentDeliberatelyLeavesTheOldHandleOpen)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.Open(""));
    HKEY const before = key;
    key = CurrentUserKey("Software");
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetPath(""), "Software");
    EXPECT_EQ(SetText(before, "v", "text"), 0);
    EXPECT_EQ(::RegCloseKey(before), 0);
}

TEST(RegistryKey, SetPathClosesTheKeyWithoutRecordingIt)
{
    ThrowAwayKey const place;
    BareKey key(HKEY_CURRENT_USER, place.Path());
    ASSERT_TRUE(key.Open(Quarn::string()));
    key.SetLastError(4711);
    EXPECT_EQ(&key.SetPath("Software"), &key.SetPath("Software"));
    EXPECT_EQ(key.GetPath(""), "Software");
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.GetLastError(), 4711);
}

TEST(RegistryKey, TheWorkersTakeAnyRights)
{
    ThrowAwayKey const place;
    BareKey key(HKEY_CURRENT_USER, place.Path());
    EXPECT_TRUE(key.Exists(KEY_QUERY_VALUE, ""));
    EXPECT_FALSE(key.Exists(KEY_QUERY_VALUE, "missing"));
    EXPECT_TRUE(key.Open(KEY_SET_VALUE, "new"));
    EXPECT_EQ(SetText(key, "v", "text"), 0);
    EXPECT_EQ(Query(key, "v", 10).code, 5);
}

TEST(RegistryKey, ReadGivesDataSizeAndTypeAndRecordsTheCode)
{
    ThrowAwayKey const place;
    ASSERT_EQ(SetText(place, "v", "text"), 0);
    CurrentUserKey key(place.Path());
    ASSERT_TRUE(key.OpenRead(""));
    unsigned char buffer[8];
    unsigned long size = sizeof buffer;
    unsigned long type = 99;
    EXPECT_TRUE(key.Read("v", buffer, &size, &type));
    EXPECT_EQ(size, 5u);
    EXPECT_EQ(type, 1u);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "text");

    size = 4;
    type = 99;
    EXPECT_FALSE(key.Read("v", buffer, &size, &type));
    EXPECT_EQ(key.GetLastError(), 234);
    EXPECT_EQ(size, 5u);
    EXPECT_EQ(type, 1u);

    EXPECT_TRUE(key.Read("v", buffer, sizeof buffer, &type));
    EXPECT_EQ(key.GetLastError(), 0);
    EXPECT_TRUE(key.Read("v", buffer, 5ul, nullptr));
    EXPECT_FALSE(key.Read("v", buffer, 0, nullptr));
    EXPECT_EQ(key.GetLastError(), 234);
    EXPECT_TRUE(key.Read("v", nullptr, &size, nullptr));

    size = sizeof buffer;
    EXPECT_FALSE(key.Read("missing", buffer, &size, &type));
    EXPECT_EQ(key.GetLastError(), 2);
    EXPECT_EQ(size, 8u);
    key.Close();
    EXPECT_FALSE(key.Read("v", buffer, &size, &type));
    EXPECT_EQ(key.GetLastError(), 6);
}

TEST(RegistryKey, TheRootsAreTheirClasses)
{
    ThrowAwayKey const place(HKEY_LOCAL_MACHINE);
    EXPECT_TRUE(LocalMachineKey(place.Path()).ExistsRead(""));
    EXPECT_FALSE(CurrentUserKey(place.Path()).ExistsRead(""));
    EXPECT_EQ(LocalMachineKey().GetPath(""), "");
}

TEST(RegistryKey, UserKeysAreComposedOfTheirNames)
{
    EXPECT_EQ(UserKey("Acme", "Tool").GetPath(""), "Software\\Acme\\Tool");
    EXPECT_EQ(UserVersionKey("Acme", "Tool", "1.2").GetPath(""), "Software\\Acme\\Tool\\1.2");
    EXPECT_FALSE(UserKey("Acme", "Tool").IsOpen());
    UserKey const key("Acme", "Tool");
    UserKey const copy(key);
    EXPECT_EQ(copy.GetPath(""), "Software\\Acme\\Tool");
}

TEST(RegistryKey, UserKeysLieBelowTheUsersRoot)
{
    ThrowAwayKey const place;
    std::string const company = place.Path().substr(std::string("Software\\").size());
    UserKey key(company, "Tool");
    ASSERT_TRUE(key.Open(""));
    UserVersionKey version(company, "Tool", "1");
    ASSERT_TRUE(version.Open(""));
    EXPECT_EQ(SubKeyNames(place), std::vector<std::string>{"Tool"});
    EXPECT_EQ(SubKeyNames(key), std::vector<std::string>{"1"});
}

// No part is tested: an empty one leaves its backslashes.
TEST(RegistryKey, ASubKeyOfAnEmptyNameIsTheKeyItself)
{
    ThrowAwayKey const place;
    CurrentUserKey key(place.Path() + "\\\\a\\");
    ASSERT_TRUE(key.Open(""));
    EXPECT_EQ(SubKeyNames(place), std::vector<std::string>{"a"});
}

// This program has no version block.
TEST(RegistryKey, UserKeysWithoutAVersionBlockTakeWhatItsGettersReturn)
{
    CVersionInfo const info;
    EXPECT_EQ(info.GetCompanyName(), "???");
    EXPECT_EQ(UserKey().GetPath(""), "Software\\???\\???");
    EXPECT_EQ(UserVersionKey("Beta").GetPath(""), "Software\\Beta\\???\\???");
    EXPECT_EQ(UserVersionKey("", "Tool", "1").GetPath(""), "Software\\???\\Tool\\1");
}

} // namespace
