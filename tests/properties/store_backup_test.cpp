// Backing a store's file up, restoring it from a backup, deleting it.
#include "quarn/properties/win32/property_stores.h"

#include "private_folders.h"

#include <chrono>
#include <cstring>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;
using NameSet = std::set<std::string>;

class AnyStore : public QuarnProperties
{
public:
    using QuarnProperties::QuarnProperties;
    using QuarnProperties::RemoveAllXML;
};

std::uint32_t StampNow()
{
    using namespace std::chrono;
    auto const now = duration_cast<seconds>(system_clock::now().time_since_epoch());
    return static_cast<std::uint32_t>(now.count() - 1208357070);
}

class StoreBackup : public PrivateFolders
{
protected:
    StoreBackup() : m_store(m_file, "Store") { m_store.SetAutoPersist(false); }

    std::string Path() const { return m_store.GetXMLFilePath(); }
    // What the path is without the extension.
    std::string Stem() const { return Path().substr(0, Path().size() - 4); }

    // Saves the store with this number in it; returns the file's content.
    std::string Save(int number)
    {
        m_store.SetValue("number", PropertyData(number), true);
        EXPECT_TRUE(m_store.Persist(true));
        return ContentOf(Path());
    }
    long Number() const { return m_store.GetValueInt32("number", -1); }

    std::string Backup()
    {
        char path[MAX_PATH] = "";
        EXPECT_TRUE(m_store.BackupXML(path));
        return path;
    }

    // Neither the store nor any file changes.
    void ExpectNoRestore(std::string const& backup)
    {
        NameSet const names = Names();
        std::string const content = names.count(m_file) != 0 ? ContentOf(Path()) : "";
        m_store.SetValue("unsaved", PropertyData("text"), true);
        bool const populated = m_store.PopulatedOK();
        EXPECT_FALSE(m_store.RestoreXML(backup)) << backup;
        EXPECT_EQ(m_store.GetValueString("unsaved", ""), "text");
        EXPECT_TRUE(m_store.Dirty());
        EXPECT_EQ(m_store.PopulatedOK(), populated);
        EXPECT_EQ(Names(), names);
        if (names.count(m_file) != 0) {
            EXPECT_EQ(ContentOf(Path()), content);
        }
    }

    AnyStore m_store;
};

TEST_F(StoreBackup, IsACopyOfTheFileNamedAfterTheTime)
{
    std::string const content = Save(1);
    std::uint32_t const before = StampNow();
    std::string const backup = Backup();
    std::uint32_t const after = StampNow();
    EXPECT_EQ(ContentOf(backup), content);
    EXPECT_EQ(ContentOf(Path()), content);
    ASSERT_EQ(backup.substr(0, Stem().size() + 1), Stem() + "_");
    std::string const stamp = backup.substr(Stem().size() + 1, backup.size() - Stem().size() - 5);
    EXPECT_EQ(backup, Stem() + "_" + stamp + ".xml");
    EXPECT_EQ(stamp.find_first_not_of("0123456789abcdef"), std::string::npos) << stamp;
    EXPECT_GE(std::stoul(stamp, nullptr, 16), before);
    EXPECT_LE(std::stoul(stamp, nullptr, 16), after);
    EXPECT_EQ(Names().size(), 2U);
}

TEST_F(StoreBackup, AnotherOneInTheSameSecondFails)
{
    Save(1);
    // Whatever second the backup meets, it is taken.
    for (std::uint32_t stamp = StampNow(), end = stamp + 120; stamp != end; ++stamp) {
        Quarn::string name;
        name.Format("%s_%lx.xml", Stem().c_str(), static_cast<unsigned long>(stamp));
        WriteContent(name, "taken");
    }
    NameSet const names = Names();
    char path[MAX_PATH] = "as it was";
    EXPECT_FALSE(m_store.BackupXML(path));
    EXPECT_STREQ(path, "as it was");
    EXPECT_EQ(Names(), names);
    for (std::string const& backup : Backups()) {
        EXPECT_EQ(ContentOf(backup), "taken") << backup;
    }
}

TEST_F(StoreBackup, IsOfTheFileAndNotOfTheStore)
{
    std::string const content = Save(1);
    m_store.SetValue("number", PropertyData(2), true);
    EXPECT_EQ(ContentOf(Backup()), content);
    EXPECT_TRUE(m_store.Dirty());
    EXPECT_EQ(Number(), 2);
}

TEST_F(StoreBackup, WithoutAFileIsFalse)
{
    char path[MAX_PATH] = "as it was";
    EXPECT_FALSE(m_store.BackupXML(path));
    EXPECT_STREQ(path, "as it was");
    std::filesystem::create_directory(Path());
    EXPECT_FALSE(m_store.BackupXML(path));
    EXPECT_EQ(Names(), NameSet{m_file});
}

TEST_F(StoreBackup, WithoutABufferIsFalseAndMakesNoFile)
{
    Save(1);
    EXPECT_FALSE(m_store.BackupXML(nullptr));
    EXPECT_EQ(Names(), NameSet{m_file});
}

TEST_F(StoreBackup, KeepsWhateverTheFileHolds)
{
    for (std::string const& content : {std::string(), std::string("broken \0 \xFF", 10)}) {
        WriteContent(Path(), content);
        std::string const backup = Backup();
        EXPECT_EQ(ContentOf(backup), content);
        std::filesystem::remove(backup);
    }
}

TEST_F(StoreBackup, OfAReadOnlyFileIsReadOnly)
{
    std::string const content = Save(1);
    MakeReadOnly(Path());
    std::string const backup = Backup();
    EXPECT_EQ(ContentOf(backup), content);
    EXPECT_EQ(::GetFileAttributesA(backup.c_str()), ::GetFileAttributesA(Path().c_str()));
    EXPECT_NE(::GetFileAttributesA(backup.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    EXPECT_EQ(Names().size(), 2U);
}

// "_" and eight digits make a backup's path longer than the file's.
TEST_F(StoreBackup, WhosePathDoesNotFitIsNotMade)
{
    for (std::size_t const size : {MAX_PATH - 10, MAX_PATH - 9}) {
        std::string const base = m_base + std::string(size - Path().size(), 'x');
        QuarnProperties store(base + ".xml", "Store");
        ASSERT_EQ(store.GetXMLFilePath().size(), size);
        ASSERT_TRUE(store.Persist(true));
        char path[MAX_PATH] = "as it was";
        bool const fits = size + 9 < MAX_PATH;
        EXPECT_EQ(store.BackupXML(path), fits);
        EXPECT_EQ(std::strlen(path), fits ? size + 9 : 9);
        EXPECT_EQ(Names().size(), fits ? 2U : 3U);
    }
}

class StoreRestore : public StoreBackup
{};

TEST_F(StoreRestore, PutsTheBackupBackAndDeletesIt)
{
    std::string const content = Save(1);
    std::string const backup = Backup();
    Save(2);
    EXPECT_TRUE(m_store.RestoreXML(backup));
    EXPECT_EQ(ContentOf(Path()), content);
    EXPECT_EQ(Number(), 1);
    EXPECT_FALSE(m_store.Dirty());
    EXPECT_TRUE(m_store.PopulatedOK());
    EXPECT_EQ(Names(), NameSet{m_file});
}

TEST_F(StoreRestore, GivesUpWhatWasNotSaved)
{
    Save(1);
    std::string const backup = Backup();
    m_store.SetValue("number", PropertyData(2), true);
    m_store.SetValue("other", PropertyData(3), true);
    EXPECT_TRUE(m_store.RestoreXML(backup));
    EXPECT_EQ(Number(), 1);
    EXPECT_FALSE(m_store.HasValue("other"));
}

TEST_F(StoreRestore, TakesSettingsFromAnywhere)
{
    ScratchFolder const scratch;
    Save(1);
    std::string const other = scratch.Make("other", "<Other><Key Name='Loaded'/></Other>");
    EXPECT_TRUE(m_store.RestoreXML(other));
    EXPECT_EQ(m_store.GetName(), "Loaded");
    EXPECT_EQ(scratch.Names(), NameSet{});
}

TEST_F(StoreRestore, ReplacesAFileThatDidNotLoad)
{
    std::string const content = Save(1);
    std::string const backup = Backup();
    WriteContent(Path(), "broken");
    EXPECT_FALSE(m_store.Populate());
    EXPECT_TRUE(m_store.RestoreXML(backup));
    EXPECT_EQ(Number(), 1);
    // What did not load is no more, and needs no second name.
    EXPECT_TRUE(m_store.Persist(true));
    EXPECT_EQ(Names(), NameSet{m_file});
}

TEST_F(StoreRestore, OfAMissingBackupChangesNothing)
{
    Save(1);
    ExpectNoRestore(Stem() + "_1.xml");
    ExpectNoRestore(DataFolder() + "/missing/a.xml");
    ExpectNoRestore("");
}

TEST_F(StoreRestore, OfABackupThatCannotBeLoadedChangesNothing)
{
    Save(1);
    std::string const backup = Stem() + "_1.xml";
    for (char const* const content :
         {"", "broken", "<Quarn_Properties/>", "<Quarn_Properties><Key Name='cut'>"}) {
        WriteContent(backup, content);
        ExpectNoRestore(backup);
        EXPECT_EQ(ContentOf(backup), content);
    }
    std::filesystem::remove(backup);
    std::filesystem::create_directory(backup);
    ExpectNoRestore(backup);
}

TEST_F(StoreRestore, OfTheFileItselfChangesNothing)
{
    Save(1);
    ExpectNoRestore(Path());
    ExpectNoRestore(DataFolder() + "/./" + m_file);
    ExpectNoRestore(std::filesystem::relative(Path()).string());
}

TEST_F(StoreRestore, WithoutAFileToReplaceDeliberatelyChangesNothing)
{
    Save(1);
    std::string const backup = Backup();
    std::filesystem::remove(Path());
    ExpectNoRestore(backup);
}

TEST_F(StoreRestore, OverAReadOnlyFileChangesNothing)
{
    Save(1);
    std::string const backup = Backup();
    MakeReadOnly(Path());
    ExpectNoRestore(backup);
}

TEST_F(StoreRestore, OfAReadOnlyBackupIsFalseForTheBackupStays)
{
    Save(1);
    std::string const backup = Backup();
    Save(2);
    MakeReadOnly(backup);
    EXPECT_FALSE(m_store.RestoreXML(backup));
    EXPECT_EQ(Number(), 1);
    EXPECT_EQ(ContentOf(Path()), ContentOf(backup));
    EXPECT_EQ(::GetFileAttributesA(Path().c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
}

class StoreRemoval : public StoreBackup
{};

TEST_F(StoreRemoval, DeletesTheFileAndEmptiesTheStore)
{
    Save(1);
    std::string const backup = Backup();
    EXPECT_TRUE(m_store.RemoveXML());
    EXPECT_FALSE(m_store.HasValue("number"));
    EXPECT_TRUE(m_store.Dirty());
    EXPECT_FALSE(m_store.PopulatedOK());
    EXPECT_EQ(Backups(), std::vector<std::string>{backup});
    EXPECT_EQ(Names().size(), 1U);
}

TEST_F(StoreRemoval, OfAFileThatCannotBeDeletedChangesNothing)
{
    m_store.SetValue("number", PropertyData(1), true);
    EXPECT_FALSE(m_store.RemoveXML());
    EXPECT_EQ(Number(), 1);
    Save(2);
    MakeReadOnly(Path());
    EXPECT_FALSE(m_store.RemoveXML());
    EXPECT_EQ(Number(), 2);
    EXPECT_FALSE(m_store.Dirty());
    EXPECT_EQ(Names(), NameSet{m_file});
}

TEST_F(StoreRemoval, OfAllDeletesTheFileAndWhatContinuesItsNameAndIsDeliberatelyFalse)
{
    std::string const others[] = {m_base + "_1.xmx", m_base + "_1", m_base + ".xml.old",
                                  "Other" + m_base + ".xml"};
    for (std::string const& name : others) {
        WriteContent(DataFolder() + "/" + name, "kept");
    }
    for (char const* const suffix : {"_22e5ab5f", "_1", "_", "more", "_x.y"}) {
        WriteContent(Stem() + suffix + ".xml", "deleted");
    }
    std::filesystem::create_directory(Stem() + "_folder.xml");
    Save(1);
    EXPECT_FALSE(AnyStore::RemoveAllXML(m_file));
    EXPECT_EQ(Names(), (NameSet{others[0], others[1], others[2], m_base + "_folder.xml"}));
    EXPECT_EQ(ContentOf(DataFolder() + "/" + others[3]), "kept");
    std::filesystem::remove(DataFolder() + "/" + others[3]);
    EXPECT_FALSE(AnyStore::RemoveAllXML(m_file));
    EXPECT_EQ(Number(), 1);
}

TEST_F(StoreRemoval, OfAllKeepsNamesThatBeginWithADotAndReadOnlyFiles)
{
    std::string const hidden = DataFolder() + "/." + m_file;
    WriteContent(hidden, "kept");
    Save(1);
    MakeReadOnly(Path());
    EXPECT_FALSE(AnyStore::RemoveAllXML("." + m_file));
    EXPECT_FALSE(AnyStore::RemoveAllXML(m_file));
    EXPECT_EQ(ContentOf(hidden), "kept");
    EXPECT_EQ(Names(), NameSet{m_file});
    std::filesystem::remove(hidden);
}

TEST_F(StoreRemoval, OfAllWithoutANameDeletesNothing)
{
    Save(1);
    EXPECT_FALSE(AnyStore::RemoveAllXML(""));
    EXPECT_EQ(Names(), NameSet{m_file});
}

} // namespace
