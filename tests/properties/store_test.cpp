// The application's store: its folder, loading, saving and the save at destruction.
#include "quarn/properties/win32/property_stores.h"
#include "quarn/properties/win32/xml_persist.h"

#include "private_folders.h"
#include "tests/platform/scratch_folder.h"
#include "tree_dump.h"

#include <cstring>
#include <memory>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

class Store : public PrivateFolders
{
protected:
    Quarn::string Path() const { return QuarnProperties(m_file, "Store").GetXMLFilePath(); }

    void WriteFile(std::string const& values) const
    {
        WriteContent(Path(), "<Settings><Key Name='Loaded'>" + values + "</Key></Settings>");
    }
};

TEST_F(Store, LiesInTheFirstDataFolder)
{
    char folder[260];
    ASSERT_TRUE(QuarnProperties::GetXMLFolder(folder));
    std::string const path = Path();
    EXPECT_EQ(path.substr(0, std::strlen(folder)), folder);
    EXPECT_EQ(path.size(), std::strlen(folder) + 1 + m_file.size());
    EXPECT_EQ(path.substr(path.size() - m_file.size()), m_file);
    EXPECT_NE(folder[std::strlen(folder) - 1], '/');
    EXPECT_NE(folder[std::strlen(folder) - 1], '\\');
    EXPECT_FALSE(QuarnProperties::GetXMLFolder(nullptr));
}

TEST_F(Store, StartsEmptyAndClean)
{
    QuarnProperties const store(m_file, "Store");
    EXPECT_EQ(Dump(store), Dump(Quarn::PropertyCollection("Store", "Quarn_Properties")));
    EXPECT_EQ(QuarnProperties::m_documentType, "Quarn_Properties");
    EXPECT_FALSE(store.Dirty());
    EXPECT_FALSE(store.PopulatedOK());
    EXPECT_FALSE(std::filesystem::exists(std::string(Path())));
}

TEST_F(Store, WithoutAFilePopulateIsFalseAndTheNextPersistWritesAnEmptyDocument)
{
    QuarnProperties store(m_file, "Store");
    EXPECT_FALSE(store.Populate());
    EXPECT_FALSE(store.PopulatedOK());
    EXPECT_TRUE(store.Dirty());
    EXPECT_TRUE(store.Persist(false));
    EXPECT_EQ(ContentOf(Path()), "\n<Quarn_Properties>\n\n  <Key Name=\"Store\"/>\n\n</Quarn_Properties>");
    EXPECT_FALSE(store.Dirty());
}

TEST_F(Store, PopulateLoadsAndIsClean)
{
    WriteFile("<Value Name='a' Type='int32'>1</Value>");
    QuarnProperties store(m_file, "Store");
    store.SetValue("gone", PropertyData(1), true);
    EXPECT_TRUE(store.Populate());
    EXPECT_TRUE(store.PopulatedOK());
    EXPECT_FALSE(store.Dirty());
    EXPECT_EQ(store.GetDocumentDescription(), "Settings");
    EXPECT_EQ(store.GetName(), "Loaded");
    EXPECT_EQ(store.GetValueInt32("a", 0), 1);
    EXPECT_FALSE(store.HasValue("gone"));
}

TEST_F(Store, PopulatedOKTellsOfTheLastPopulate)
{
    WriteFile("");
    QuarnProperties store(m_file, "Store");
    EXPECT_TRUE(store.Populate());
    QuarnProperties copy(store);
    EXPECT_TRUE(copy.PopulatedOK());
    WriteContent(Path(), "broken");
    EXPECT_FALSE(store.Populate());
    EXPECT_FALSE(store.PopulatedOK());
    EXPECT_TRUE(copy.PopulatedOK());
    copy.SetAutoPersist(false);
    store.SetAutoPersist(false);
}

TEST_F(Store, PersistWritesOnlyWhatChangedUnlessForced)
{
    WriteFile("<Value Name='a' Type='int32'>1</Value>");
    QuarnProperties store(m_file, "Store");
    ASSERT_TRUE(store.Populate());
    std::string const bytes = ContentOf(Path());
    EXPECT_TRUE(store.Persist(false));
    EXPECT_EQ(ContentOf(Path()), bytes);
    EXPECT_TRUE(store.Persist(true));
    EXPECT_NE(ContentOf(Path()), bytes);
    store.SetValue("a", PropertyData(1), true);
    EXPECT_FALSE(store.Dirty());
    store.SetValue("a", PropertyData(2), true);
    EXPECT_TRUE(store.Persist(false));
    EXPECT_FALSE(store.Dirty());
    EXPECT_NE(ContentOf(Path()).find(">2<"), std::string::npos);
}

TEST_F(Store, ADirtyStoreSavesItselfAtDestruction)
{
    {
        QuarnProperties store(m_file, "Store");
        store.SetValueInt32("Link:Port=4001", true);
    }
    QuarnProperties store(m_file, "Store");
    EXPECT_TRUE(store.Populate());
    EXPECT_EQ(store.GetValueInt32("Link:Port", 0), 4001);
}

TEST_F(Store, ACleanStoreAndOneThatIsToldSoDoNotSaveThemselves)
{
    {
        QuarnProperties const clean(m_file, "Store");
    }
    EXPECT_FALSE(std::filesystem::exists(std::string(Path())));
    {
        QuarnProperties store(m_file, "Store");
        store.SetValue("a", PropertyData(1), true);
        store.SetAutoPersist(false);
    }
    EXPECT_FALSE(std::filesystem::exists(std::string(Path())));
}

TEST_F(Store, AFailedSaveLeavesTheStoreDirtyAndTheFileAsItWas)
{
    WriteFile("<Value Name='a' Type='int32'>1</Value>");
    std::string const bytes = ContentOf(Path());
    {
        QuarnProperties store(m_file, "Store");
        ASSERT_TRUE(store.Populate());
        store.SetValue("bad", PropertyData("\x01"), true);
        EXPECT_FALSE(store.Persist(false));
        EXPECT_TRUE(store.Dirty());
    }
    EXPECT_EQ(ContentOf(Path()), bytes);
}

TEST_F(Store, ClearEmptiesAndIsDirty)
{
    QuarnProperties store(m_file, "Store");
    store.SetValue("a", PropertyData(1), true);
    ASSERT_TRUE(store.Persist(false));
    store.Clear();
    EXPECT_TRUE(store.Dirty());
    EXPECT_EQ(store.GetValueCount(), 0U);
    EXPECT_EQ(store.GetXMLFilePath(), Path());
    store.SetAutoPersist(false);
}

TEST_F(Store, CopiesAreDeepAndSaveToTheSameFile)
{
    QuarnProperties store(m_file, "Store");
    store.SetValueInt32("Key:a=1", true);
    {
        QuarnProperties copy(store);
        copy.SetValueInt32("Key:a=2", true);
        EXPECT_EQ(copy.GetXMLFilePath(), store.GetXMLFilePath());
    }
    EXPECT_EQ(store.GetValueInt32("Key:a", 0), 1);
    QuarnProperties loaded(m_file, "Store");
    EXPECT_TRUE(loaded.Populate());
    EXPECT_EQ(loaded.GetValueInt32("Key:a", 0), 2);
    store.SetAutoPersist(false);
}

TEST_F(Store, DestroysThroughTheBaseClass)
{
    std::unique_ptr<Quarn::PropertyKey> key = std::make_unique<QuarnProperties>(m_file, "Store");
    key->SetValue("a", PropertyData(1), true);
    key.reset();
    EXPECT_TRUE(std::filesystem::exists(std::string(Path())));
}

// A file that could not be loaded gets a second name before it is replaced.
TEST_F(Store, TheOnlyCopyOfUnreadableSettingsIsNeverOverwritten)
{
    WriteContent(Path(), "<Quarn_Properties><Key Name='cut");
    {
        QuarnProperties store(m_file, "Store");
        EXPECT_FALSE(store.Populate());
        EXPECT_FALSE(store.Dirty());
        store.SetValue("default", PropertyData(1), true);
    }
    std::vector<std::string> const backups = Backups();
    ASSERT_EQ(backups.size(), 1U);
    EXPECT_EQ(ContentOf(backups[0]), "<Quarn_Properties><Key Name='cut");
    QuarnProperties store(m_file, "Store");
    EXPECT_TRUE(store.Populate());
    EXPECT_EQ(store.GetValueInt32("default", 0), 1);
    EXPECT_TRUE(store.Persist(true));
    EXPECT_EQ(Backups().size(), 1U);
}

} // namespace
