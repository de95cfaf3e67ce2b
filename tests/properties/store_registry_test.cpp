// Stores that a registry key seeds.
#include "quarn/properties/win32/property_stores.h"

#include "private_folders.h"
#include "tests/registry/throw_away_key.h"

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

class CountingStore : public QuarnProperties
{
public:
    using QuarnProperties::QuarnProperties;

    // The operation's place in the table of virtual functions, see the slot order of the streams.
    static std::size_t HookSlot()
    {
        auto const operation = &CountingStore::OnPopulateFromRegistry;
        std::uintptr_t parts[2];
        static_assert(sizeof operation == sizeof parts);
        std::memcpy(parts, &operation, sizeof parts);
        return (parts[0] - 1) / sizeof(void*);
    }

    using QuarnProperties::SetRegistryFallback;
    bool BaseHook() { return QuarnProperties::OnPopulateFromRegistry(); }

    int m_calls = 0;
    long m_seen = -1;

protected:
    bool OnPopulateFromRegistry() override
    {
        ++m_calls;
        m_seen = GetValueInt32("number", -1);
        return false;
    }
};

// A key of the machine with a number, a text and a sub-key in it.
class SeededStore : public PrivateFolders
{
protected:
    SeededStore() : m_key(HKEY_LOCAL_MACHINE)
    {
        SetNumber(7);
        EXPECT_EQ(SetText(m_key, "text", "from the registry"), 0);
        EXPECT_EQ(MakeKey(m_key, "Inner"), 0);
    }

    void SetNumber(int number)
    {
        std::string bytes(4, '\0');
        bytes[0] = static_cast<char>(number);
        EXPECT_EQ(SetBytes(m_key, "number", REG_DWORD, bytes), 0);
    }
    CountingStore Store(std::string const& path) const
    {
        CountingStore store(m_file, "Store", HKEY_LOCAL_MACHINE, path);
        store.SetAutoPersist(false);
        return store;
    }
    CountingStore Store() const { return Store(m_key.Path()); }
    void WriteFile(int number) const
    {
        QuarnProperties store(m_file, "Store");
        store.SetValue("number", PropertyData(number), true);
        ASSERT_TRUE(store.Persist(true));
    }

    ThrowAwayKey m_key;
};

TEST_F(SeededStore, WithoutAFileIsSeededAndDirty)
{
    CountingStore store = Store();
    EXPECT_FALSE(store.Dirty());
    EXPECT_TRUE(store.Populate());
    EXPECT_TRUE(store.PopulatedOK());
    EXPECT_TRUE(store.Dirty());
    EXPECT_EQ(store.GetName(), "Store");
    EXPECT_EQ(store.GetValueInt32("number", -1), 7);
    EXPECT_EQ(store.GetValueString("text", ""), "from the registry");
    EXPECT_TRUE(store.HasSubKey("Inner"));
    EXPECT_EQ(Names().size(), 0U);
}

TEST_F(SeededStore, WritesItsFileAtDestructionAndThenReadsIt)
{
    {
        CountingStore store = Store();
        store.SetAutoPersist(true);
        ASSERT_TRUE(store.Populate());
    }
    SetNumber(8);
    CountingStore store = Store();
    EXPECT_TRUE(store.Populate());
    EXPECT_FALSE(store.Dirty());
    EXPECT_EQ(store.m_calls, 0);
    EXPECT_EQ(store.GetValueInt32("number", -1), 7);
}

TEST_F(SeededStore, IsNotSeededWhereAFileIsThatDoesNotLoad)
{
    WriteFile(1);
    WriteContent(Store().GetXMLFilePath(), "broken");
    CountingStore store = Store();
    EXPECT_FALSE(store.Populate());
    EXPECT_EQ(store.m_calls, 0);
    EXPECT_EQ(store.GetValueCount(), 0U);
}

TEST_F(SeededStore, CallsTheHookOnceBehindTheReadingWhateverItReturns)
{
    CountingStore store = Store();
    EXPECT_TRUE(store.RegistryPopulate());
    EXPECT_EQ(store.m_calls, 1);
    EXPECT_EQ(store.m_seen, 7);
    EXPECT_TRUE(store.BaseHook());
}

TEST_F(SeededStore, AddsToWhatTheStoreHolds)
{
    CountingStore store = Store();
    store.SetValue("number", PropertyData(1), true);
    store.SetValue("own", PropertyData(2), true);
    store.ClearDirty();
    EXPECT_TRUE(store.RegistryPopulate());
    EXPECT_EQ(store.GetValueInt32("number", -1), 7);
    EXPECT_EQ(store.GetValueInt32("own", -1), 2);
    EXPECT_TRUE(store.Dirty());
}

TEST_F(SeededStore, AnEmptyKeySeedsNothingAndIsTrueAndDirty)
{
    ThrowAwayKey const empty(HKEY_LOCAL_MACHINE);
    CountingStore store = Store(empty.Path());
    EXPECT_TRUE(store.RegistryPopulate());
    EXPECT_TRUE(store.Dirty());
    EXPECT_EQ(store.m_calls, 1);
    EXPECT_EQ(store.GetValueCount(), 0U);
}

TEST_F(SeededStore, WithoutARegistryKeyIsNotSeededAndCallsNoHook)
{
    CountingStore stores[] = {
        CountingStore(m_file, "Store"),
        Store(""),
        CountingStore(m_file, "Store", nullptr, m_key.Path()),
        Store(m_key.Path() + "\\Missing"),
    };
    for (CountingStore& store : stores) {
        store.SetAutoPersist(false);
        EXPECT_FALSE(store.RegistryPopulate());
        EXPECT_FALSE(store.Dirty());
        EXPECT_FALSE(store.Populate());
        EXPECT_FALSE(store.PopulatedOK());
        EXPECT_TRUE(store.Dirty());
        EXPECT_EQ(store.GetValueCount(), 0U);
        EXPECT_EQ(store.m_calls, 0);
    }
}

TEST_F(SeededStore, MayBeToldNotToAskTheRegistry)
{
    CountingStore store = Store();
    store.SetRegistryFallback(false);
    CountingStore copy(store);
    EXPECT_FALSE(store.Populate());
    EXPECT_FALSE(copy.Populate());
    EXPECT_EQ(store.m_calls + copy.m_calls, 0);
    EXPECT_TRUE(store.RegistryPopulate());
}

TEST_F(SeededStore, ACopyHasTheSameRegistryKey)
{
    CountingStore const store = Store();
    CountingStore copy(store);
    EXPECT_TRUE(copy.Populate());
    EXPECT_EQ(copy.GetValueInt32("number", -1), 7);
}

TEST_F(SeededStore, IsSeededAgainWhenItsFileIsRemoved)
{
    WriteFile(1);
    CountingStore store = Store();
    ASSERT_TRUE(store.Populate());
    EXPECT_EQ(store.GetValueInt32("number", -1), 1);
    EXPECT_TRUE(store.RemoveXML());
    EXPECT_EQ(store.GetValueInt32("number", -1), 7);
    EXPECT_TRUE(store.Dirty());
    EXPECT_TRUE(store.PopulatedOK());
}

TEST_F(SeededStore, MeetsTheRegistryBeforeTheBackupWhenItIsRestored)
{
    WriteFile(1);
    CountingStore store = Store();
    ASSERT_TRUE(store.Populate());
    char backup[MAX_PATH];
    ASSERT_TRUE(store.BackupXML(backup));
    WriteFile(2);
    EXPECT_TRUE(store.RestoreXML(backup));
    EXPECT_EQ(store.m_calls, 1);
    EXPECT_EQ(store.m_seen, 7);
    EXPECT_EQ(store.GetValueInt32("number", -1), 1);
    EXPECT_FALSE(store.HasValue("text"));
    EXPECT_FALSE(store.Dirty());
    // Where nothing is restored it does not.
    EXPECT_FALSE(store.RestoreXML(backup));
    EXPECT_EQ(store.m_calls, 1);
}

TEST_F(SeededStore, HasItsHookBehindTheDestructor)
{
    EXPECT_EQ(CountingStore::HookSlot(), 2U);
}

} // namespace
