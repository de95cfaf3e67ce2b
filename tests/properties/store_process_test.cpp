// The store that a process has once: each test is about the life of a process of its own.
#include "quarn/properties/win32/property_stores.h"

#include "platform/child_process.h"
#include "private_folders.h"
#include "tests/registry/throw_away_key.h"

#include <cstdlib>
#include <memory>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

using Quarn::PropertyData;
using Quarn::Win32::CommonProps;
using Quarn::Win32::HolvekProperties;
using Quarn::Win32::HolvekProps;

namespace {

class SharedStore : public PrivateFolders
{
protected:
    SharedStore() { m_base = "Holvek40"; }
    ~SharedStore() override { RemoveTree(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Tessary)"); }

    std::string Path() const { return (std::filesystem::path(DataFolder()) / "Holvek40.xml").string(); }

    // The exit code of a process that does this with the store.
    static int Run(std::string const& what) { return ChildProcess({"store", what}).Wait(); }

    // What the file has under Common:number; -1 where there is nothing.
    static long Saved()
    {
        HolvekProperties store;
        store.SetAutoPersist(false);
        EXPECT_TRUE(store.Populate());
        return store.GetValueInt32("Common:number", -1);
    }
};

TEST_F(SharedStore, IsSavedWhenTheProgramCallsExit)
{
    EXPECT_EQ(Run("exit"), 7);
    EXPECT_EQ(Saved(), 1);
    EXPECT_EQ(Names(), std::set<std::string>{"Holvek40.xml"});
}

TEST_F(SharedStore, IsSavedWhenTheProgramReturnsFromMain)
{
    EXPECT_EQ(Run("return"), 8);
    EXPECT_EQ(Saved(), 1);
}

TEST_F(SharedStore, IsSavedWhileAnotherThreadIsRunning)
{
    EXPECT_EQ(Run("thread"), 9);
    EXPECT_EQ(Saved(), 1);
}

TEST_F(SharedStore, IsSavedBehindTheObjectsThatWereMadeAfterIt)
{
    EXPECT_EQ(Run("static"), 0);
    EXPECT_EQ(Saved(), 2);
}

TEST_F(SharedStore, IsNotSavedByAProcessThatIsKilled)
{
    std::string const ready = (std::filesystem::path(DataFolder()) / "ready").string();
    ChildProcess child({"store", "wait"});
    EXPECT_TRUE(WaitForFile(ready));
    child.Kill();
    EXPECT_EQ(Names().size(), 0U);
    std::filesystem::remove(ready);
}

TEST_F(SharedStore, CountsOnFromProcessToProcess)
{
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(Run("exit"), 7);
        EXPECT_EQ(Saved(), i);
    }
}

TEST_F(SharedStore, IsLoadedOnceByWhicheverFunctionComesFirst)
{
    ASSERT_EQ(Run("exit"), 7);
    EXPECT_EQ(Run("load"), 0);
    EXPECT_EQ(Run("load common"), 0);
}

TEST_F(SharedStore, WithoutAChangeTheFileIsNotTouched)
{
    ASSERT_EQ(Run("exit"), 7);
    // Not as the store would write it.
    std::string const content = ContentOf(Path()) + "\n";
    WriteContent(Path(), content);
    EXPECT_EQ(Run("look"), 0);
    EXPECT_EQ(ContentOf(Path()), content);
}

TEST_F(SharedStore, WhoseFileHasNoKeyForAllGetsOneAndIsSaved)
{
    WriteContent(Path(), "<Quarn_Properties><Key Name='Holvek'/></Quarn_Properties>");
    EXPECT_EQ(Run("look"), 0);
    EXPECT_NE(ContentOf(Path()).find("Common"), std::string::npos);
}

TEST_F(SharedStore, IsSeededFromTheRegistryAndSaved)
{
    for (char const* const path : {R"(SOFTWARE\Tessary\Holvek)", R"(SOFTWARE\Tessary\Common)"}) {
        HKEY key = nullptr;
        ASSERT_EQ(CreateKey(HKEY_LOCAL_MACHINE, path, key), 0);
        EXPECT_EQ(SetBytes(key, "number", REG_DWORD, std::string("\5\0\0\0", 4)), 0);
        ::RegCloseKey(key);
    }
    EXPECT_EQ(Run("look"), 0);
    EXPECT_EQ(Saved(), 5);
}

TEST_F(SharedStore, ThatCannotBeSavedEndsInSilence)
{
    std::filesystem::create_directory(Path());
    EXPECT_EQ(Run("exit"), 7);
    EXPECT_EQ(Names(), std::set<std::string>{"Holvek40.xml"});
}

TEST_F(SharedStore, IsSavedOverAFileThatDidNotLoadWhichGetsASecondName)
{
    WriteContent(Path(), "broken");
    EXPECT_EQ(Run("exit"), 7);
    EXPECT_EQ(Saved(), 1);
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_EQ(ContentOf(Backups()[0]), "broken");
}

TEST_F(SharedStore, WhoseRestoringIsKilledHasTheOldFileOrTheBackup)
{
    ASSERT_EQ(Run("exit"), 7);
    std::filesystem::path const data = DataFolder();
    std::filesystem::copy_file(Path(), data / "Holvek40_kept.xml");
    for (unsigned int i = 0; i < 10; ++i) {
        ChildProcess child({"store", "restore"});
        EXPECT_TRUE(WaitForFile((data / "ready").string()));
        ::Sleep(i * 2);
        child.Kill();
        std::filesystem::remove(data / "ready");
        long const number = Saved();
        EXPECT_TRUE(number == 1 || number == 2) << number;
    }
    // What the killed ones have left goes with the next save.
    EXPECT_EQ(Run("exit"), 7);
    std::set<std::string> names = Names();
    names.erase("Holvek40_copy.xml");
    EXPECT_EQ(names, (std::set<std::string>{"Holvek40.xml", "Holvek40_kept.xml"}));
}

// ---- in the child

void Count()
{
    CommonProps().SetValue("number", PropertyData(CommonProps().GetValueInt32("number", 0) + 1), true);
}

int Load(bool commonFirst)
{
    if (commonFirst) {
        CommonProps();
    }
    HolvekProperties& store = HolvekProps();
    if (&store != &HolvekProps() || store.GetSubKey("Common") != &CommonProps() || !store.PopulatedOK() ||
        store.Dirty()) {
        return 1;
    }
    // Later calls return the instance as it is.
    store.SetValue("new", PropertyData(1), true);
    return HolvekProps().HasValue("new") && CommonProps().GetParentKey()->HasValue("new") ? 0 : 2;
}

std::filesystem::path FolderOfStores()
{
    char folder[MAX_PATH];
    return HolvekProperties::GetXMLFolder(folder) ? folder : "";
}

// Saves a changed file and puts the kept one back, until somebody ends it.
int RestoreForEver()
{
    std::filesystem::path const data = FolderOfStores();
    std::string const kept = ContentOf((data / "Holvek40_kept.xml").string());
    HolvekProperties store;
    for (;;) {
        std::string const copy = (data / "Holvek40_copy.xml").string();
        WriteContent(copy, kept);
        store.AddSubKey("Common")->SetValue("number", PropertyData(2), true);
        if (!store.Persist(true) || !store.RestoreXML(copy)) {
            return 1;
        }
        WriteContent((data / "ready").string(), "");
    }
}

struct CountAtTheEnd
{
    ~CountAtTheEnd() { Count(); }
};

} // namespace

int RunChildCommand(int count, char** arguments)
{
    if (count != 3 || arguments[1] != std::string_view("store")) {
        return -1;
    }
    std::string_view const what = arguments[2];
    if (what == "exit") {
        Count();
        std::exit(7);
    }
    if (what == "return") {
        Count();
        return 8;
    }
    if (what == "thread") {
        Count();
        std::thread([] { ::Sleep(600'000); }).detach();
        std::exit(9);
    }
    if (what == "static") {
        Count();
        static CountAtTheEnd const last;
        return 0;
    }
    if (what == "wait") {
        Count();
        WriteContent((FolderOfStores() / "ready").string(), "");
        ::Sleep(600'000);
        return 1;
    }
    if (what == "load" || what == "load common") {
        return Load(what != "load");
    }
    if (what == "restore") {
        return RestoreForEver();
    }
    if (what == "look") {
        CommonProps();
        return 0;
    }
    return -1;
}
