// A disk that is really full, and one that is really read-only: a small file system in memory, mounted for a
// process of its own. Where this process may mount nothing, the tests are skipped.
#include "quarn/platform/log.h"
#include "quarn/properties/win32/property_stores.h"
#include "quarn/stream/file_stream.h"
#include "quarn/stream/stream_exception.h"

#include "tests/platform/scratch_folder.h"
#include "tests/registry/throw_away_key.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Log = Win32Quarn::Log;

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

constexpr char const* Size = "size=512k";

// Mounts for this process alone; who is not the superuser becomes one in a space of his own.
bool OwnMounts()
{
    bool const isSuperuser = ::geteuid() == 0;
    std::string const user = "0 " + std::to_string(::geteuid()) + " 1";
    std::string const group = "0 " + std::to_string(::getegid()) + " 1";
    if (::unshare(CLONE_NEWNS | (isSuperuser ? 0 : CLONE_NEWUSER)) != 0) {
        return false;
    }
    if (!isSuperuser) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << user;
        std::ofstream("/proc/self/gid_map") << group;
    }
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// A disk of 512 KiB with the data folders on it.
class SmallDisk
{
public:
    explicit SmallDisk(std::string path) : m_path(std::move(path)) {}

    bool Mount() const
    {
        if (!OwnMounts() || ::mount("none", m_path.c_str(), "tmpfs", 0, Size) != 0) {
            return false;
        }
        for (char const* const variable : {"QUARNUTIL_MACHINE_DIR", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) {
            ::setenv(variable, m_path.c_str(), 1);
        }
        return true;
    }

    std::string operator/(char const* name) const { return m_path + "/" + name; }

    // Until nothing more fits.
    void Fill() const
    {
        std::FILE* const file = std::fopen((*this / "filling").c_str(), "wb");
        ASSERT_NE(file, nullptr);
        std::string const block(512, 'x');
        std::setvbuf(file, nullptr, _IONBF, 0);
        while (std::fwrite(block.data(), block.size(), 1, file) == 1) {
        }
        EXPECT_EQ(errno, ENOSPC);
        std::fclose(file);
    }
    void MakeSpace() const { std::filesystem::remove(*this / "filling"); }
    void SetReadOnly(bool isReadOnly) const
    {
        EXPECT_EQ(::mount("none", m_path.c_str(), nullptr, MS_REMOUNT | (isReadOnly ? MS_RDONLY : 0), Size),
                  0);
    }

    std::set<std::string> Names() const { return NamesIn(m_path); }

private:
    std::string m_path;
};

enum class Outcome
{
    Done = 70,
    Failed,
    NotPossible,
};

// Does the work with such a disk in a process of its own.
template<typename Work>
Outcome OnSmallDisk(Work&& work)
{
    ScratchFolder const scratch;
    SmallDisk const disk(std::filesystem::absolute(scratch.MakeFolder("disk")).string());
    std::fflush(nullptr);
    ::pid_t const child = ::fork();
    if (child == 0) {
        Outcome outcome = Outcome::NotPossible;
        if (disk.Mount()) {
            work(disk);
            outcome = testing::Test::HasFailure() ? Outcome::Failed : Outcome::Done;
        }
        std::fflush(nullptr);
        ::_exit(static_cast<int>(outcome));
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? static_cast<Outcome>(WEXITSTATUS(status)) : Outcome::Failed;
}

#define QUARN_RUN_ON_SMALL_DISK(work)                                                                        \
    Outcome const outcome = OnSmallDisk(work);                                                               \
    if (outcome == Outcome::NotPossible) {                                                                   \
        GTEST_SKIP() << "a file system of its own is denied to this process";                                \
    }                                                                                                        \
    EXPECT_EQ(outcome, Outcome::Done)

// Saving, backing up and restoring fail and change nothing, until the disk is well again.
template<typename Take, typename Give>
void UseStore(SmallDisk const& disk, Take&& take, Give&& give)
{
    auto const setText = [](QuarnProperties& store, std::size_t size) {
        store.SetValue("text", PropertyData(Quarn::string(size, 'x')), true);
    };
    QuarnProperties store("Small.xml", "Store");
    store.SetAutoPersist(false);
    setText(store, 20'000);
    ASSERT_TRUE(store.Persist(false));
    std::string const path = store.GetXMLFilePath();
    ASSERT_EQ(path, disk / "Small.xml");
    std::string const old = ContentOf(path);
    std::string const kept = disk / "kept.xml";
    std::filesystem::copy_file(path, kept);
    take();
    setText(store, 30'000);
    char backup[MAX_PATH] = "";
    EXPECT_FALSE(store.Persist(false));
    EXPECT_TRUE(store.Dirty());
    EXPECT_FALSE(store.BackupXML(backup));
    EXPECT_FALSE(store.RestoreXML(kept));
    EXPECT_EQ(ContentOf(path), old);
    EXPECT_EQ(ContentOf(kept), old);
    {
        QuarnProperties reader("Small.xml", "Store");
        EXPECT_TRUE(reader.Populate());
        EXPECT_EQ(reader.GetValueString("text", "").size(), 20'000U);
    }
    give();
    EXPECT_EQ(disk.Names(), (std::set<std::string>{"Small.xml", "kept.xml"}));
    EXPECT_TRUE(store.Persist(false));
    EXPECT_NE(ContentOf(path), old);
    EXPECT_TRUE(store.BackupXML(backup));
    EXPECT_TRUE(store.RestoreXML(kept));
    EXPECT_EQ(ContentOf(path), old);
}

TEST(FullDisk, KeepsTheSettingsAndTakesTheNextSave)
{
    QUARN_RUN_ON_SMALL_DISK([](SmallDisk const& disk) {
        UseStore(
            disk, [&] { disk.Fill(); }, [&] { disk.MakeSpace(); });
    });
}

TEST(ReadOnlyDisk, KeepsTheSettingsAndTakesTheNextSave)
{
    QUARN_RUN_ON_SMALL_DISK([](SmallDisk const& disk) {
        UseStore(
            disk, [&] { disk.SetReadOnly(true); }, [&] { disk.SetReadOnly(false); });
    });
}

// Whether the stream has taken all of it.
bool WriteRecords(std::string const& path)
{
    Quarn::ofstream stream(path.c_str(), std::ios_base::binary | std::ios_base::trunc);
    try {
        for (int i = 0; i < 100; ++i) {
            stream << Quarn::string(1000, 'x');
        }
        stream.close();
        return stream.IsValidOutput();
    } catch (Quarn::StreamException const& exception) {
        EXPECT_STREQ(exception.what(), "Generic Write");
        return false;
    }
}

TEST(FullDisk, ShowsInEveryStreamAndInTheLog)
{
    QUARN_RUN_ON_SMALL_DISK([](SmallDisk const& disk) {
        disk.Fill();
        ASSERT_EQ(Log::SetPath((disk / "a.log").c_str()), 0);
        EXPECT_FALSE(WriteRecords(disk / "records"));
        EXPECT_LT(Log::Output(0, 17, std::string(10'000, 'x').c_str()), 0);
        EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(ENOSPC));
        EXPECT_EQ(Log::Output(0, "x"), -5);
        disk.MakeSpace();
        Log::ClearError();
        EXPECT_TRUE(WriteRecords(disk / "records"));
        EXPECT_EQ(Log::Output(0, 17, "x"), 0);
        EXPECT_EQ(ContentOf(disk / "a.log"), "x\n");
        disk.SetReadOnly(true);
        EXPECT_FALSE(WriteRecords(disk / "records"));
        EXPECT_EQ(Log::Output(0, 17, "y"), -2);
        EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(EROFS));
        EXPECT_EQ(ContentOf(disk / "a.log"), "x\n");
    });
}

constexpr char const* Path = "Software\\QuarnUtilTest";

// Sets values until one is refused; returns how many were taken.
int SetUntilRefused(HKEY key, long& code)
{
    std::string const data(10'000, 'x');
    int count = 0;
    while ((code = SetText(key, Numbered("v", count).c_str(), data)) == 0 && count < 1000) {
        ++count;
    }
    return count;
}

TEST(FullDisk, KeepsTheRegistryAndTakesTheNextValue)
{
    QUARN_RUN_ON_SMALL_DISK([](SmallDisk const& disk) {
        HKEY key = nullptr;
        ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, Path, key), 0);
        ASSERT_EQ(SetText(key, "old", "kept"), 0);
        disk.Fill();
        long code = 0;
        int const count = SetUntilRefused(key, code);
        EXPECT_EQ(code, static_cast<long>(ERROR_DISK_FULL));
        EXPECT_EQ(ValueNames(key).size(), static_cast<std::size_t>(count) + 1);
        EXPECT_EQ(DataOf(key, "old"), std::string("kept") + '\0');
        disk.MakeSpace();
        EXPECT_EQ(SetText(key, "new", "taken"), 0);
        EXPECT_EQ(DataOf(key, "new"), std::string("taken") + '\0');
        EXPECT_EQ(::RegCloseKey(key), 0);
    });
}

// In a folder that cannot be written there is no registry to make, and nothing to seed a store from.
TEST(ReadOnlyDisk, HasNoNewRegistry)
{
    QUARN_RUN_ON_SMALL_DISK([](SmallDisk const& disk) {
        disk.SetReadOnly(true);
        HKEY key = nullptr;
        EXPECT_NE(CreateKey(HKEY_CURRENT_USER, Path, key), 0);
        QuarnProperties store("Small.xml", "Store", HKEY_CURRENT_USER, Path);
        store.SetAutoPersist(false);
        EXPECT_FALSE(store.Populate());
        EXPECT_FALSE(store.Persist(true));
        disk.SetReadOnly(false);
        EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, Path, key), 0);
        EXPECT_EQ(SetText(key, "text", "from the registry"), 0);
        EXPECT_EQ(::RegCloseKey(key), 0);
        EXPECT_TRUE(store.Populate());
        EXPECT_EQ(store.GetValueString("text", ""), "from the registry");
        EXPECT_TRUE(store.Persist(true));
    });
}

} // namespace
