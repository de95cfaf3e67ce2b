// The online stations' store; the process-wide instance has tests in processes of its own.
#include "quarn/properties/win32/property_stores.h"

#include "private_folders.h"
#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::HolvekProperties;

class Holvek : public PrivateFolders
{
protected:
    Holvek() { m_base = "Holvek40"; }
    ~Holvek() override { RemoveTree(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Tessary)"); }

    std::string Path() const { return (std::filesystem::path(DataFolder()) / "Holvek40.xml").string(); }

    // Makes a key of the machine with one text in it.
    static void Seed(char const* path, char const* text)
    {
        HKEY key = nullptr;
        ASSERT_EQ(CreateKey(HKEY_LOCAL_MACHINE, path, key), 0);
        EXPECT_EQ(SetText(key, "text", text), 0);
        ::RegCloseKey(key);
    }
};

TEST_F(Holvek, StartsDirtyWithAnEmptyKeyForAll)
{
    HolvekProperties store;
    store.SetAutoPersist(false);
    EXPECT_EQ(HolvekProperties::RootFileName, "Holvek40.xml");
    EXPECT_EQ(std::string(store.GetXMLFilePath()), Path());
    EXPECT_EQ(store.GetName(), "Holvek");
    EXPECT_EQ(store.GetDocumentDescription(), "Quarn_Properties");
    EXPECT_EQ(store.GetKeyCount(), 1U);
    EXPECT_TRUE(store.HasSubKey("Common"));
    EXPECT_TRUE(store.Dirty());
    EXPECT_EQ(Names().size(), 0U);
}

TEST_F(Holvek, IsSeededFromItsKeyAndFromTheOneForAll)
{
    Seed(R"(SOFTWARE\Tessary\Holvek)", "own");
    Seed(R"(SOFTWARE\Tessary\Common)", "shared");
    HolvekProperties store;
    EXPECT_TRUE(store.Populate());
    EXPECT_TRUE(store.Dirty());
    EXPECT_EQ(store.GetValueString("text", ""), "own");
    EXPECT_EQ(store.GetValueString("Common:text", ""), "shared");
    ASSERT_TRUE(store.Persist(false));
    HolvekProperties loaded;
    EXPECT_TRUE(loaded.Populate());
    EXPECT_FALSE(loaded.Dirty());
    EXPECT_EQ(loaded.GetValueString("Common:text", ""), "shared");
}

TEST_F(Holvek, IsSeededWithoutTheKeyForAllToo)
{
    Seed(R"(SOFTWARE\Tessary\Holvek)", "own");
    HolvekProperties store;
    store.SetAutoPersist(false);
    EXPECT_TRUE(store.Populate());
    EXPECT_EQ(store.GetValueString("text", ""), "own");
    ASSERT_TRUE(store.HasSubKey("Common"));
    EXPECT_EQ(store.GetSubKey("Common")->GetValueCount(), 0U);
}

TEST_F(Holvek, IsDeliberatelyNotSeededFromTheKeyForAllAlone)
{
    Seed(R"(SOFTWARE\Tessary\Common)", "shared");
    HolvekProperties store;
    store.SetAutoPersist(false);
    EXPECT_FALSE(store.Populate());
    EXPECT_FALSE(store.HasSubKey("Common"));
}

TEST_F(Holvek, DestroyedWithoutAPopulateDeliberatelyReplacesItsFile)
{
    {
        HolvekProperties store;
        store.SetValue("number", PropertyData(1), true);
    }
    std::string const content = ContentOf(Path());
    EXPECT_NE(content.find("number"), std::string::npos);
    {
        HolvekProperties const store;
    }
    EXPECT_EQ(ContentOf(Path()),
              "\n<Quarn_Properties>\n\n  <Key Name=\"Holvek\">\n    <Key Name=\"Common\"/>\n"
              "  </Key>\n\n</Quarn_Properties>");
}

TEST_F(Holvek, CopiesAreDeepAndOfTheSameFile)
{
    HolvekProperties store;
    store.SetAutoPersist(false);
    HolvekProperties copy(store);
    copy.SetValue("number", PropertyData(1), true);
    EXPECT_FALSE(store.HasValue("number"));
    EXPECT_TRUE(copy.HasSubKey("Common"));
    EXPECT_EQ(copy.GetXMLFilePath(), store.GetXMLFilePath());
}

TEST_F(Holvek, RemoveAllDeletesTheFileAndItsBackupsAndIsDeliberatelyFalse)
{
    {
        HolvekProperties const store;
    }
    for (char const* const name : {"Holvek40_1.xml", "Holvek40_22e5ab5f.xml", "Holvek40_22e5ab5f.old"}) {
        WriteContent(DataFolder() + "/" + name, "");
    }
    WriteContent(DataFolder() + "/.Holvek40.xml", "");
    EXPECT_EQ(Names().size(), 4U);
    EXPECT_FALSE(HolvekProperties::RemoveAllXML());
    EXPECT_EQ(Names(), std::set<std::string>{"Holvek40_22e5ab5f.old"});
    EXPECT_TRUE(std::filesystem::remove(DataFolder() + "/.Holvek40.xml"));
}

} // namespace
