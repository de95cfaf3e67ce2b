// What a power cut may leave: of every file the content that was flushed last, and of the changes of names
// since the folder was flushed any, whatever their order.
#include "quarn/properties/win32/property_stores.h"

#include "reliability/posix/system_calls.h"
#include "tests/properties/private_folders.h"

#include <algorithm>
#include <functional>
#include <map>

#include <sys/stat.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

// Names and contents.
using Files = std::map<std::string, std::string>;

class Device
{
public:
    // With the files that are there now.
    explicit Device(std::string const& folder)
    {
        for (auto const& entry : std::filesystem::directory_iterator(folder)) {
            struct ::stat status;
            EXPECT_EQ(::stat(entry.path().c_str(), &status), 0);
            m_names[entry.path().filename()] = status.st_ino;
            m_contents[status.st_ino] = ContentOf(entry.path());
        }
    }

    void Do(DeviceStep const& step)
    {
        switch (step.kind) {
        case DeviceStep::Kind::Content:
            m_contents[step.inode] = step.content;
            break;
        case DeviceStep::Kind::Folder:
            for (DeviceStep const& change : m_changes) {
                m_names[change.name] = change.inode;
            }
            m_changes.clear();
            break;
        case DeviceStep::Kind::Name:
            m_changes.push_back(step);
            break;
        }
    }

    // Everything that there may be when the power comes back.
    std::vector<Files> Remains() const
    {
        std::vector<Files> all;
        for (unsigned int chosen = 0; chosen < 1U << m_changes.size(); ++chosen) {
            std::map<std::string, ::ino_t> names = m_names;
            for (std::size_t i = 0; i < m_changes.size(); ++i) {
                if ((chosen >> i & 1U) != 0) {
                    names[m_changes[i].name] = m_changes[i].inode;
                }
            }
            Files files;
            for (auto const& [name, inode] : names) {
                if (inode != 0) {
                    auto const content = m_contents.find(inode);
                    files[name] = content != m_contents.end() ? content->second : "never flushed";
                }
            }
            all.push_back(files);
        }
        return all;
    }

private:
    std::map<std::string, ::ino_t> m_names;
    std::map<::ino_t, std::string> m_contents;
    std::vector<DeviceStep> m_changes;
};

class PowerCut : public PrivateFolders
{
protected:
    PowerCut() : m_store(m_file, "Store")
    {
        m_store.SetAutoPersist(false);
        Change("old");
        EXPECT_TRUE(m_store.Persist(true));
        m_old = Content();
    }

    void Change(char const* text) { m_store.SetValue("text", PropertyData(text), true); }
    std::string Content() const { return ContentOf(m_store.GetXMLFilePath()); }

    using Check = std::function<bool(Files const&)>;

    // Does the work and looks at what a power cut would leave at any moment of it, and after it.
    void Expect(std::function<void()> const& work, Check const& meanwhile, Check const& afterwards)
    {
        Device device(DataFolder());
        std::vector<DeviceStep> steps;
        {
            DeviceAccount account;
            account.hasLinks = m_hasLinks;
            account.canRenameToNew = m_canRenameToNew;
            work();
            steps = account.steps;
        }
        EXPECT_FALSE(steps.empty());
        for (DeviceStep const& step : steps) {
            device.Do(step);
            for (Files const& files : device.Remains()) {
                EXPECT_TRUE(meanwhile(files)) << testing::PrintToString(files);
            }
        }
        for (Files const& files : device.Remains()) {
            EXPECT_TRUE(afterwards(files)) << testing::PrintToString(files);
        }
    }

    // A backup in the files is whole, and there is one where it is needed.
    bool HasWholeBackup(Files const& files, bool isNeeded) const
    {
        for (auto const& [name, content] : files) {
            if (name.rfind(m_base + "_", 0) == 0) {
                return content == m_old;
            }
        }
        return !isNeeded;
    }

    void ExpectBackup()
    {
        char backup[MAX_PATH] = "";
        Expect([&] { EXPECT_TRUE(m_store.BackupXML(backup)); },
               [&](Files const& files) { return IsSettings(files, m_old) && HasWholeBackup(files, false); },
               [&](Files const& files) { return IsSettings(files, m_old) && HasWholeBackup(files, true); });
    }

    bool IsSettings(Files const& files, std::string const& content) const
    {
        auto const file = files.find(m_file);
        return file != files.end() && file->second == content;
    }

    static bool IsThere(Files const& files, std::string const& content)
    {
        return std::any_of(files.begin(), files.end(),
                           [&](auto const& file) { return file.second == content; });
    }

    // A save over a file that did not load: a name beside it is one for the whole old file.
    void ExpectSecondNameOfSpoiled()
    {
        std::string const spoiled = "spoiled";
        WriteContent(m_store.GetXMLFilePath(), spoiled);
        EXPECT_FALSE(m_store.Populate());
        auto const isKept = [&](Files const& files) {
            bool const isWhole = std::all_of(files.begin(), files.end(), [&](auto const& file) {
                return file.first.rfind(m_base + "_", 0) != 0 || file.second == spoiled;
            });
            return isWhole && IsThere(files, spoiled);
        };
        Expect([&] { EXPECT_TRUE(m_store.Persist(true)); },
               [&](Files const& files) { return isKept(files) && files.count(m_file) != 0; },
               [&](Files const& files) { return isKept(files) && !IsSettings(files, spoiled); });
    }

    QuarnProperties m_store;
    std::string m_old;
    bool m_hasLinks = true;
    bool m_canRenameToNew = true;
};

TEST_F(PowerCut, DuringASaveLeavesTheOldSettingsOrTheNewAndAfterItTheNew)
{
    Change("new");
    std::string saved;
    Expect(
        [&] {
            EXPECT_TRUE(m_store.Persist(false));
            saved = Content();
        },
        [&](Files const& files) { return IsSettings(files, m_old) || IsSettings(files, saved); },
        [&](Files const& files) { return IsSettings(files, saved); });
    EXPECT_NE(saved, m_old);
}

TEST_F(PowerCut, LosesNoSettingsThatDidNotLoadToTheNextSave)
{
    ExpectSecondNameOfSpoiled();
}

TEST_F(PowerCut, LosesNoSettingsThatDidNotLoadWhereThereAreNoLinks)
{
    m_hasLinks = false;
    ExpectSecondNameOfSpoiled();
}

TEST_F(PowerCut, LeavesABackupWholeOrNoneAndAfterItOne)
{
    ExpectBackup();
}

TEST_F(PowerCut, LeavesABackupWholeOrNoneWhereALinkRenamesIt)
{
    m_canRenameToNew = false;
    ExpectBackup();
}

// An empty file has the name for a moment then.
TEST_F(PowerCut, LeavesABackupAfterItWhereNothingRenamesWithoutOverwriting)
{
    m_canRenameToNew = false;
    m_hasLinks = false;
    char backup[MAX_PATH] = "";
    Expect([&] { EXPECT_TRUE(m_store.BackupXML(backup)); },
           [&](Files const& files) { return IsSettings(files, m_old); },
           [&](Files const& files) { return IsSettings(files, m_old) && HasWholeBackup(files, true); });
}

TEST_F(PowerCut, DuringARestoringLeavesTheBackupUntilItIsInPlace)
{
    char backup[MAX_PATH] = "";
    ASSERT_TRUE(m_store.BackupXML(backup));
    Change("new");
    ASSERT_TRUE(m_store.Persist(false));
    std::string const saved = Content();
    Expect([&] { EXPECT_TRUE(m_store.RestoreXML(backup)); },
           [&](Files const& files) {
               return IsThere(files, m_old) && (IsSettings(files, m_old) || IsSettings(files, saved));
           },
           [&](Files const& files) { return IsSettings(files, m_old); });
}

} // namespace
