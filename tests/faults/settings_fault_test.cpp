// A store whose file cannot be read, written, renamed or named, or that runs out of memory, at every single
// call: the file is whole, nothing is lost, nothing stays behind, and the next attempt succeeds.
#include "quarn/properties/win32/property_stores.h"

#include "tests/faults/fault_loop.h"
#include "tests/faults/name_hash.h"
#include "tests/faults/resources.h"
#include "tests/properties/private_folders.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

class SettingsFaults : public PrivateFolders
{
protected:
    void SetUp() override
    {
        PrivateFolders::SetUp();
        m_path = (std::filesystem::path(DataFolder()) / m_file).string();
        m_old = Document("old");
        m_new = Document("new");
        Reset();
    }

    // A store that does not save by itself.
    std::unique_ptr<QuarnProperties> Store() const
    {
        auto store = std::make_unique<QuarnProperties>(m_file, "Store");
        store->SetAutoPersist(false);
        return store;
    }
    static void SetText(QuarnProperties& store, std::string const& text)
    {
        store.SetValue("text", PropertyData(text), true);
        store.AddSubKey("Inner/Deeper")->SetValue("number", PropertyData(7), true);
    }
    std::string Document(std::string const& text) const
    {
        auto const store = Store();
        SetText(*store, text);
        EXPECT_TRUE(store->Persist(true));
        return ContentOf(m_path);
    }

    // Leaves nothing but the settings file, with this content.
    void Reset(std::string const& content) const
    {
        for (std::string const& name : Names()) {
            std::filesystem::remove(std::filesystem::path(DataFolder()) / name);
        }
        WriteContent(m_path, content);
    }
    void Reset() const { Reset(m_old); }

    // What savers leave that are killed in the middle, one of them with a read-only file in hand.
    void LeaveTemporaries() const
    {
        for (int const number : {1, 2}) {
            char name[32];
            std::snprintf(name, sizeof name, ".~%08x-1-%d.tmp", static_cast<unsigned>(NameHash(m_file)),
                          number);
            std::string const path = (std::filesystem::path(DataFolder()) / name).string();
            WriteContent(path, "half");
            if (number == 2) {
                MakeReadOnly(path);
            }
        }
    }

    // How many of the files in the folder have this content.
    static long Copies(std::filesystem::path const& folder, std::string const& content)
    {
        std::error_code missing;
        std::filesystem::directory_iterator const files(folder, missing);
        return std::count_if(begin(files), end(files),
                             [&](auto const& file) { return ContentOf(file.path().string()) == content; });
    }
    long Copies(std::string const& content) const { return Copies(DataFolder(), content); }

    void ExpectOldOrNew(bool isSaved) const
    {
        std::string const content = ContentOf(m_path);
        EXPECT_TRUE(content == m_new || (content == m_old && !isSaved)) << content;
    }
    // Without faults the store can be saved, and then there is its file and no other.
    void ExpectNextSave(QuarnProperties& store) const
    {
        EXPECT_TRUE(store.Persist(true));
        EXPECT_EQ(ContentOf(m_path), m_new);
        EXPECT_EQ(Names(), std::set<std::string>{m_file});
    }

    // A save over a file that did not load, which has a second name before it loses its first.
    Faults::Figures ExpectSecondNames(std::vector<Faults::Plan> const& plans)
    {
        std::unique_ptr<QuarnProperties> store;
        std::string const spoiled = m_old.substr(0, m_old.size() / 2);
        Resources resources(m_path);
        auto const figures = Faults::ForEveryFault(
            plans,
            [&] {
                Reset(spoiled);
                store = Store();
                ASSERT_FALSE(store->Populate());
                store->SetName("Store");
                store->SetDocumentDescription(QuarnProperties::m_documentType);
                SetText(*store, "new");
            },
            [&] { return store->Persist(false); },
            [&](bool isSaved, char const* struck) {
                EXPECT_TRUE(isSaved || struck != nullptr);
                std::string const content = ContentOf(m_path);
                EXPECT_TRUE(content == m_new || (content == spoiled && !isSaved)) << content;
                EXPECT_GE(Copies(spoiled), 1);
                EXPECT_TRUE(store->Persist(true));
                EXPECT_EQ(ContentOf(m_path), m_new);
                EXPECT_EQ(Names().size(), 2U);
                EXPECT_EQ(Copies(spoiled), 1);
                store.reset();
                resources.ExpectSame();
            });
        Faults::RecordFigures(figures);
        return figures;
    }

    std::string m_path;
    std::string m_old;
    std::string m_new;
};

TEST_F(SettingsFaults, ASaveThatFailsLeavesTheOldFileOrTheNewOneWhole)
{
    std::unique_ptr<QuarnProperties> store;
    Resources resources(m_path);
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            Reset();
            LeaveTemporaries();
            store = Store();
            ASSERT_TRUE(store->Populate());
            SetText(*store, "new");
        },
        [&] { return store->Persist(false); },
        [&](bool isSaved, char const* struck) {
            EXPECT_TRUE(isSaved || struck != nullptr);
            EXPECT_EQ(store->Dirty(), !isSaved);
            ExpectOldOrNew(isSaved);
            ExpectNextSave(*store);
            store.reset();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST_F(SettingsFaults, AFileThatLoadsNotOrNotWholeIsKeptUnderASecondName)
{
    std::unique_ptr<QuarnProperties> store;
    Resources resources(m_path);
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            Reset();
            store = Store();
        },
        [&] { return store->Populate(); },
        [&](bool isLoaded, char const* struck) {
            EXPECT_TRUE(isLoaded || struck != nullptr);
            EXPECT_EQ(store->PopulatedOK(), isLoaded);
            EXPECT_EQ(Names(), std::set<std::string>{m_file});
            EXPECT_EQ(ContentOf(m_path), m_old);
            if (isLoaded) {
                EXPECT_EQ(store->GetValueString("text", ""), "old");
                EXPECT_EQ(store->GetValueInt32("Inner/Deeper:number", 0), 7);
            }
            // Whatever the store starts from now, what it could not read is not lost.
            SetText(*store, "new");
            EXPECT_TRUE(store->Persist(true));
            EXPECT_EQ(Copies(m_old), isLoaded ? 0 : 1);
            EXPECT_TRUE(store->Populate());
            EXPECT_EQ(store->GetValueString("text", ""), "new");
            store.reset();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST_F(SettingsFaults, ASaveOverAFileThatDidNotLoadHasAlwaysASecondNameForIt)
{
    EXPECT_GT(ExpectSecondNames(Faults::Plans()).refusals, 100 / Faults::AllocationStep());
}

// The second name is a copy's then. What that needs is calls of the system.
TEST_F(SettingsFaults, ASaveOverAFileThatDidNotLoadHasAWholeCopyOfItWhereThereAreNoLinks)
{
    std::vector<Faults::Plan> plans = Faults::Plans();
    std::erase_if(plans, [](Faults::Plan const& plan) { return plan.kind == Faults::Kind::Memory; });
    Faults::RefuseLinks(true);
    EXPECT_GT(ExpectSecondNames(plans).refusals, 20);
    Faults::RefuseLinks(false);
}

// Where no temporary file may be made, the file itself is overwritten: the one save that is not a single
// step. Its old content is then somewhere else.
TEST_F(SettingsFaults, ASaveInPlaceLeavesTheOldContentInTheFileOrInACopy)
{
    std::unique_ptr<QuarnProperties> store;
    std::filesystem::path const copies = std::filesystem::path(DataFolder()).parent_path() / "user";
    Resources resources(m_path);
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            Reset();
            std::filesystem::remove_all(copies);
            store = Store();
            ASSERT_TRUE(store->Populate());
            SetText(*store, "new");
            Faults::DenyTemporaries(true);
        },
        [&] { return store->Persist(false); },
        [&](bool isSaved, char const* struck) {
            Faults::DenyTemporaries(false);
            EXPECT_TRUE(isSaved || struck != nullptr);
            EXPECT_EQ(store->Dirty(), !isSaved);
            std::string const content = ContentOf(m_path);
            if (isSaved) {
                EXPECT_EQ(content, m_new);
            } else if (content != m_old) {
                EXPECT_EQ(Copies(copies, m_old), 1);
            }
            ExpectNextSave(*store);
            store.reset();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST_F(SettingsFaults, TheDestructorsSaveLeavesTheOldFileOrTheNewOneWhole)
{
    std::unique_ptr<QuarnProperties> store;
    Resources resources(m_path);
    Faults::RecordFigures(Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            Reset();
            store = Store();
            ASSERT_TRUE(store->Populate());
            SetText(*store, "new");
            store->SetAutoPersist(true);
        },
        [&] {
            store.reset();
            return true;
        },
        [&](bool /*answer*/, char const* /*struck*/) {
            ExpectOldOrNew(false);
            store = Store();
            SetText(*store, "new");
            ExpectNextSave(*store);
            store.reset();
            resources.ExpectSame();
        }));
}

TEST_F(SettingsFaults, ABackupIsCompleteOrNotThere)
{
    std::unique_ptr<QuarnProperties> store;
    char path[MAX_PATH] = "";
    Resources resources(m_path);
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            Reset();
            store = Store();
            path[0] = '\0';
        },
        [&] { return store->BackupXML(path); },
        [&](bool isMade, char const* struck) {
            EXPECT_TRUE(isMade || struck != nullptr);
            EXPECT_EQ(ContentOf(m_path), m_old);
            EXPECT_EQ(path[0] != '\0', isMade);
            EXPECT_EQ(Backups(), isMade ? std::vector<std::string>{path} : std::vector<std::string>{});
            EXPECT_EQ(Copies(m_old), isMade ? 2 : 1);
            if (isMade) {
                std::filesystem::remove(path);
            }
            EXPECT_TRUE(store->BackupXML(path));
            EXPECT_EQ(Names().size(), 2U);
            EXPECT_EQ(Copies(m_old), 2);
            store.reset();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST_F(SettingsFaults, RestoringLosesNeitherTheFileNorTheBackup)
{
    std::unique_ptr<QuarnProperties> store;
    Quarn::string const backup = m_path.substr(0, m_path.size() - 4) + "_1.xml";
    // Loading without any memory is another test's, and this one has the most calls.
    std::vector<Faults::Plan> plans = Faults::Plans();
    std::erase_if(plans, [](Faults::Plan const& plan) {
        return plan.kind == Faults::Kind::Memory && plan.span == Faults::Span::Rest;
    });
    Resources resources(m_path);
    auto const figures = Faults::ForEveryFault(
        plans,
        [&] {
            Reset();
            WriteContent(backup, m_new);
            store = Store();
            ASSERT_TRUE(store->Populate());
        },
        [&] { return store->RestoreXML(backup); },
        [&](bool isRestored, char const* struck) {
            EXPECT_TRUE(isRestored || struck != nullptr);
            ExpectOldOrNew(isRestored);
            bool const isLeft = ContentOf(backup) == m_new;
            EXPECT_TRUE(isRestored || isLeft || ContentOf(m_path) == m_new);
            if (isRestored) {
                EXPECT_EQ(store->GetValueString("text", ""), "new");
                WriteContent(backup, m_new);
            }
            if (isLeft) {
                EXPECT_TRUE(store->RestoreXML(backup));
            }
            EXPECT_EQ(ContentOf(m_path), m_new);
            std::filesystem::remove(std::string(backup));
            ExpectNextSave(*store);
            store.reset();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST_F(SettingsFaults, RemovingDeletesTheFileOrLeavesItWhole)
{
    std::unique_ptr<QuarnProperties> store;
    Resources resources(m_path);
    Faults::RecordFigures(Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            Reset();
            store = Store();
        },
        [&] { return store->RemoveXML(); },
        [&](bool isRemoved, char const* struck) {
            EXPECT_TRUE(isRemoved || struck != nullptr);
            if (isRemoved) {
                EXPECT_TRUE(Names().empty());
                WriteContent(m_path, m_old);
            }
            EXPECT_EQ(ContentOf(m_path), m_old);
            EXPECT_EQ(Names(), std::set<std::string>{m_file});
            EXPECT_TRUE(store->RemoveXML());
            store.reset();
            resources.ExpectSame();
        }));
}

} // namespace
