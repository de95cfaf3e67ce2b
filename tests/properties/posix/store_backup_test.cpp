// Backups and restoring where rights or space are missing, and through symbolic links.
#include "quarn/properties/win32/property_stores.h"

#include "tests/properties/posix/restricted_child.h"
#include "tests/properties/private_folders.h"

#include <functional>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;
using NameSet = std::set<std::string>;

// A store in a folder of its own, with a backup there.
class RestrictedStore : public PrivateFolders
{
protected:
    void SetUp() override
    {
        PrivateFolders::SetUp();
        m_folder = DataFolder() + "/" + m_base;
        std::filesystem::create_directory(m_folder);
        m_path = m_folder + "/a.xml";
        m_backup = m_folder + "/backup.xml";
        Save("backup");
        std::filesystem::rename(m_path, m_backup);
        Save("present");
        m_content = ContentOf(m_path);
    }
    void TearDown() override
    {
        EXPECT_EQ(::chmod(m_folder.c_str(), 0755), 0);
        std::filesystem::remove_all(m_folder);
    }

    QuarnProperties Store() const { return QuarnProperties(m_base + "/a.xml", "Store"); }
    void Save(std::string const& text) const
    {
        QuarnProperties store = Store();
        store.SetValue("text", PropertyData(text), true);
        ASSERT_TRUE(store.Persist(true));
    }
    bool Restore() const
    {
        QuarnProperties store = Store();
        EXPECT_TRUE(store.Populate());
        bool const restored = store.RestoreXML(m_backup);
        EXPECT_EQ(store.GetValueString("text", ""), restored ? "backup" : "present");
        return restored;
    }
    bool Backup() const
    {
        char path[MAX_PATH];
        return Store().BackupXML(path);
    }
    NameSet Names() const
    {
        NameSet names;
        for (auto const& entry : std::filesystem::directory_iterator(m_folder)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    std::string m_folder;
    std::string m_path;
    std::string m_backup;
    std::string m_content;
};

TEST_F(RestrictedStore, InAFolderThatMayNotBeWrittenIsNeitherBackedUpNorRestored)
{
    ASSERT_EQ(::chmod(m_folder.c_str(), 0555), 0);
    EXPECT_TRUE(InChild([this] {
        GiveUpOverrides();
        return !Backup() && !Restore() && !Store().RemoveXML() && !HasFailure();
    }));
    EXPECT_EQ(Names(), (NameSet{"a.xml", "backup.xml"}));
    EXPECT_EQ(ContentOf(m_path), m_content);
}

TEST_F(RestrictedStore, WithoutSpaceIsNeitherBackedUpNorRestored)
{
    EXPECT_TRUE(InChild([this] {
        LimitFileSize(20);
        return !Backup() && !Restore() && !HasFailure();
    }));
    EXPECT_EQ(Names(), (NameSet{"a.xml", "backup.xml"}));
    EXPECT_EQ(ContentOf(m_path), m_content);
}

TEST_F(RestrictedStore, IsNotBackedUpWhereTheFileMayNotBeRead)
{
    ASSERT_EQ(::chmod(m_path.c_str(), 0200), 0);
    EXPECT_TRUE(InChild([this] {
        GiveUpOverrides();
        return !Backup();
    }));
    EXPECT_EQ(Names(), (NameSet{"a.xml", "backup.xml"}));
}

TEST_F(RestrictedStore, BackupsAndRestoredFilesHaveTheFilesPermissions)
{
    ASSERT_EQ(::chmod(m_path.c_str(), 0640), 0);
    ASSERT_EQ(::chmod(m_backup.c_str(), 0666), 0);
    ASSERT_TRUE(Backup());
    struct ::stat status = {};
    for (std::string const& name : Names()) {
        ASSERT_EQ(::stat((m_folder + "/" + name).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, name == "backup.xml" ? 0666U : 0640U) << name;
    }
    EXPECT_TRUE(Restore());
    ASSERT_EQ(::stat(m_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(RestrictedStore, ALinkIsBackedUpBesideItselfAndRestoredWhereItLeads)
{
    std::filesystem::create_directory(m_folder + "/real");
    std::filesystem::rename(m_path, m_folder + "/real/target.xml");
    std::filesystem::create_symlink("real/target.xml", m_path);
    ASSERT_TRUE(Backup());
    EXPECT_EQ(Names().size(), 4U);
    EXPECT_TRUE(Restore());
    EXPECT_TRUE(std::filesystem::is_symlink(m_path));
    EXPECT_NE(ContentOf(m_folder + "/real/target.xml").find(">backup<"), std::string::npos);
    QuarnProperties store = Store();
    EXPECT_FALSE(store.RestoreXML(m_folder + "/real/target.xml"));
    EXPECT_TRUE(std::filesystem::exists(m_folder + "/real/target.xml"));
}

} // namespace
