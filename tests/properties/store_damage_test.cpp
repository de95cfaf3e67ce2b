// A settings file of which one block after the other is lost, as a disk loses them.
#include "quarn/properties/win32/property_stores.h"

#include "private_folders.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

constexpr std::size_t BlockSize = 512;

class DamagedStore : public PrivateFolders
{
protected:
    void SetUp() override
    {
        PrivateFolders::SetUp();
        m_path = (std::filesystem::path(DataFolder()) / m_file).string();
        QuarnProperties store(m_file, "Store");
        for (int i = 0; i < 60; ++i) {
            store.SetValue("Station/Pump " + std::to_string(i % 7) + ":value " + std::to_string(i),
                           PropertyData("text " + std::to_string(i * i)), true);
            store.AddSubKey("Station")->SetValue("number " + std::to_string(i), PropertyData(i), true);
        }
        ASSERT_TRUE(store.Persist(true));
        m_content = ContentOf(m_path);
        ASSERT_GT(m_content.size(), 8 * BlockSize);
    }

    bool IsAmongBackups(std::string const& content) const
    {
        std::vector<std::string> const backups = Backups();
        return std::any_of(backups.begin(), backups.end(),
                           [&](std::string const& backup) { return ContentOf(backup) == content; });
    }

    static std::size_t CountValues(std::string const& document)
    {
        std::size_t count = 0;
        for (std::size_t at = document.find("<Value "); at != document.npos; ++count) {
            at = document.find("<Value ", at + 1);
        }
        return count;
    }

    // An application's run with the file as it is now: it loads, sets something, and saves at its end. Where
    // the file was not loaded as a whole, it must have a second name then, and the good backup brings
    // everything back. Returns whether the file passed for a good one.
    bool Survive()
    {
        std::string const spoiled = ContentOf(m_path);
        std::string const good = m_path.substr(0, m_path.size() - 4) + "_1.xml";
        WriteContent(good, m_content);
        bool isLoaded = false;
        {
            QuarnProperties store(m_file, "Store");
            isLoaded = store.Populate();
            EXPECT_EQ(store.PopulatedOK(), isLoaded);
            EXPECT_EQ(ContentOf(m_path), spoiled) << "loading changes nothing";
            store.SetName("Store");
            store.SetDocumentDescription(QuarnProperties::m_documentType);
            store.SetValue("started", PropertyData("yes"), true);
        }
        EXPECT_NE(ContentOf(m_path), spoiled) << "the destructor has saved";
        if (!isLoaded || CountValues(spoiled) + 1 != CountValues(ContentOf(m_path))) {
            EXPECT_TRUE(IsAmongBackups(spoiled));
        }
        QuarnProperties store(m_file, "Store");
        EXPECT_TRUE(store.RestoreXML(good));
        EXPECT_EQ(ContentOf(m_path), m_content);
        EXPECT_EQ(store.GetValueInt32("Station:number 59", -1), 59);
        for (std::string const& backup : Backups()) {
            std::filesystem::remove(backup);
        }
        return isLoaded;
    }

    std::string m_path;
    std::string m_content;
};

// A block of zeros or of other bytes that are no characters never passes for settings.
TEST_F(DamagedStore, WithABlockOfOtherBytesIsNeverTakenForGood)
{
    for (char const filling : {'\0', '\xFF'}) {
        for (std::size_t at = 0; at < m_content.size(); at += BlockSize) {
            SCOPED_TRACE(at);
            std::size_t const size = std::min(BlockSize, m_content.size() - at);
            WriteContent(m_path, std::string(m_content).replace(at, size, size, filling));
            EXPECT_FALSE(Survive());
            if (HasFailure()) {
                return;
            }
        }
    }
}

// The format has no checksum: what is still well-formed counts as good.
TEST_F(DamagedStore, WithABlockMissingIsLoadedOrKept)
{
    for (std::size_t at = 0; at < m_content.size(); at += BlockSize) {
        SCOPED_TRACE(at);
        WriteContent(m_path, std::string(m_content).erase(at, BlockSize));
        Survive();
        if (HasFailure()) {
            return;
        }
    }
}

TEST_F(DamagedStore, CutOffAtABlockIsNeverTakenForGood)
{
    for (std::size_t at = 0; at < m_content.size(); at += BlockSize) {
        SCOPED_TRACE(at);
        WriteContent(m_path, m_content.substr(0, at));
        EXPECT_FALSE(Survive());
        if (HasFailure()) {
            return;
        }
    }
}

TEST_F(DamagedStore, ThatIsSavedWithoutBeingLoadedIsKeptToo)
{
    std::string const spoiled = m_content.substr(0, m_content.size() / 2);
    WriteContent(m_path, spoiled);
    QuarnProperties store(m_file, "Store");
    store.SetValue("text", PropertyData("new"), true);
    EXPECT_TRUE(store.Persist(false));
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_EQ(ContentOf(Backups()[0]), spoiled);
    EXPECT_TRUE(store.Persist(true));
    EXPECT_EQ(Backups().size(), 1U);
}

TEST_F(DamagedStore, ThatAnotherProgramHasLeftIsKeptByAStoreThatFoundNoFile)
{
    std::filesystem::remove(m_path);
    QuarnProperties store(m_file, "Store");
    EXPECT_FALSE(store.Populate());
    WriteContent(m_path, "half");
    EXPECT_TRUE(store.Persist(false));
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_EQ(ContentOf(Backups()[0]), "half");
}

TEST_F(DamagedStore, ThatIsWholeNeedsNoSecondName)
{
    QuarnProperties store(m_file, "Store");
    store.SetValue("text", PropertyData("new"), true);
    EXPECT_TRUE(store.Persist(false));
    EXPECT_TRUE(Backups().empty());
}

} // namespace
