// The registry between processes and threads.
#include "tests/platform/posix/registry_child.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>
#include <signal.h>

namespace {

int WriteThousand(HKEY root, std::string const& prefix)
{
    HKEY key = nullptr;
    if (CreateKey(root, TestKeyPath, key) != 0) {
        return 1;
    }
    for (int i = 0; i < 1000; ++i) {
        std::string const name = Numbered(prefix, i);
        if (SetText(key, name.c_str(), name) != 0) {
            return 2;
        }
    }
    return 0;
}

int CountThousands(HKEY root)
{
    HKEY key = nullptr;
    if (OpenKey(root, TestKeyPath, key, KEY_READ) != 0) {
        return 100;
    }
    int whole = 0;
    for (char const* const prefix : {"a", "b", "c", "d"}) {
        whole += CountNumbered(key, prefix, 1000) == 1000 ? 1 : 0;
    }
    return ValueNames(key).size() == 4000 ? whole : 101;
}

TEST(RegistryProcesses, FourThatWriteAThousandValuesEachLoseNone)
{
    RegistryFolder const folder;
    std::vector<pid_t> children;
    for (char const* const prefix : {"a", "b", "c", "d"}) {
        children.push_back(folder.Start([&] { return WriteThousand(HKEY_CURRENT_USER, prefix); }));
    }
    for (pid_t const child : children) {
        EXPECT_EQ(RegistryFolder::Wait(child), 0);
    }
    EXPECT_EQ(folder.Run([] { return CountThousands(HKEY_CURRENT_USER); }), 4);
}

// Both kinds of the machine's file: one in a folder of its own and one beside the user's.
TEST(RegistryProcesses, NoneIsLostOfTheMachineEither)
{
    constexpr int count = 20; // each waits for the disk
    for (bool const hasFolder : {false, true}) {
        RegistryFolder const folder;
        if (hasFolder) {
            std::filesystem::create_directory(folder.MachineFolder());
        }
        std::vector<pid_t> children;
        for (char const* const prefix : {"a", "b", "c", "d"}) {
            children.push_back(folder.Start([&] {
                HKEY key = nullptr;
                long code = CreateKey(HKEY_LOCAL_MACHINE, TestKeyPath, key);
                for (int i = 0; code == 0 && i < count; ++i) {
                    std::string const name = Numbered(prefix, i);
                    code = SetText(key, name.c_str(), name);
                }
                return code != 0;
            }));
        }
        for (pid_t const child : children) {
            EXPECT_EQ(RegistryFolder::Wait(child), 0);
        }
        EXPECT_EQ(std::filesystem::exists(folder.MachineFile()), hasFolder);
        EXPECT_EQ(std::filesystem::exists(folder.UserFile().parent_path() / "machine.db"), !hasFolder);
        EXPECT_EQ(folder.Run([] {
            HKEY key = nullptr;
            OpenKey(HKEY_LOCAL_MACHINE, TestKeyPath, key, KEY_READ);
            return CountNumbered(key, "a", count) + CountNumbered(key, "b", count) +
                   CountNumbered(key, "c", count) + CountNumbered(key, "d", count);
        }),
                  4 * count);
    }
}

TEST(RegistryProcesses, EightThatStartTogetherMakeOneRegistry)
{
    for (int round = 0; round < 5; ++round) {
        RegistryFolder const folder;
        std::vector<pid_t> children;
        for (int i = 0; i < 8; ++i) {
            children.push_back(folder.Start([&] { return MakeKey(HKEY_CURRENT_USER, std::to_string(i)); }));
        }
        for (pid_t const child : children) {
            EXPECT_EQ(RegistryFolder::Wait(child), 0);
        }
        EXPECT_EQ(folder.Run([] { return SubKeyNames(HKEY_CURRENT_USER).size(); }), 8);
    }
}

// A writer is killed when it has told of so many values.
void ExpectAllButTheWriteInFlight(RegistryFolder const& folder, HKEY root, int killAt)
{
    int written[2];
    ASSERT_EQ(::pipe(written), 0);
    pid_t const child = folder.Start([&] {
        HKEY key = nullptr;
        CreateKey(root, TestKeyPath, key);
        for (int i = 0; i < 1000000; ++i) {
            std::string const name = Numbered("v", i % 1000);
            if (SetText(key, name.c_str(), name) != 0 || ::write(written[1], "x", 1) != 1) {
                return 1;
            }
        }
        return 0;
    });
    ::close(written[1]);
    std::string done;
    char buffer[64];
    while (static_cast<int>(done.size()) < killAt) {
        ssize_t const count = ::read(written[0], buffer, sizeof buffer);
        ASSERT_GT(count, 0);
        done.append(buffer, static_cast<std::size_t>(count));
    }
    ::kill(child, SIGKILL);
    for (ssize_t count; (count = ::read(written[0], buffer, sizeof buffer)) > 0;) {
        done.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(written[0]);
    EXPECT_EQ(RegistryFolder::Wait(child), -1);
    int const acknowledged = static_cast<int>(std::min<std::size_t>(done.size(), 1000));
    EXPECT_EQ(folder.Run([&] {
        HKEY key = nullptr;
        return OpenKey(root, TestKeyPath, key, KEY_ALL_ACCESS) == 0 &&
               CountNumbered(key, "v", acknowledged) == acknowledged &&
               static_cast<int>(ValueNames(key).size()) <= acknowledged + 1 &&
               SetText(key, "next", "next") == 0;
    }),
              1);
}

TEST(RegistryProcesses, AKilledWriterLosesAtMostTheWriteInFlight)
{
    for (int const killAt : {1, 10, 500, 999}) {
        ExpectAllButTheWriteInFlight(RegistryFolder(), HKEY_CURRENT_USER, killAt);
    }
}

// That file has a journal, which stays where the kill comes into a write: half of the kills or so.
TEST(RegistryProcesses, AKilledWriterOfTheMachineLosesAtMostTheWriteInFlight)
{
    for (int const killAt : {1, 2, 3, 5, 8, 13, 21}) {
        RegistryFolder const folder;
        std::filesystem::create_directory(folder.MachineFolder());
        ExpectAllButTheWriteInFlight(folder, HKEY_LOCAL_MACHINE, killAt);
    }
}

TEST(RegistryProcesses, AChangeByOneIsSeenByTheOther)
{
    RegistryFolder const folder;
    int toChild[2];
    int toParent[2];
    ASSERT_EQ(::pipe(toChild), 0);
    ASSERT_EQ(::pipe(toParent), 0);
    pid_t const child = folder.Start([&] {
        HKEY key = nullptr;
        bool good = CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) == 0 && SetText(key, "one", "1") == 0 &&
                    SetText(key, "two", "2") == 0 && MakeKey(key, "k2") == 0;
        // The lists are known before the other one changes them.
        good = good && ValueNames(key).size() == 2 && SubKeyNames(key).size() == 1;
        char c = 0;
        good = good && ::write(toParent[1], "x", 1) == 1 && ::read(toChild[0], &c, 1) == 1;
        return good && ValueNames(key) == std::vector<std::string>{"two", "three"} &&
               SubKeyNames(key) == std::vector<std::string>{"k1", "k2"} &&
               DataOf(key, "two") == std::string("new\0", 4);
    });
    char c = 0;
    ASSERT_EQ(::read(toParent[0], &c, 1), 1);
    EXPECT_EQ(folder.Run([] {
        HKEY key = nullptr;
        OpenKey(HKEY_CURRENT_USER, TestKeyPath, key);
        return SetText(key, "three", "3") + SetText(key, "two", "new") + ::RegDeleteValueA(key, "one") +
               MakeKey(key, "k1");
    }),
              0);
    ASSERT_EQ(::write(toChild[1], "x", 1), 1);
    EXPECT_EQ(RegistryFolder::Wait(child), 1);
    for (int const descriptor : {toChild[0], toChild[1], toParent[0], toParent[1]}) {
        ::close(descriptor);
    }
}

TEST(RegistryProcesses, AForkedChildAndItsParentBothGoOn)
{
    RegistryFolder const folder;
    EXPECT_EQ(folder.Run([] {
        HKEY key = nullptr;
        if (CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) != 0 || SetText(key, "before", "before") != 0) {
            return 1;
        }
        std::vector<pid_t> children;
        for (char const* const prefix : {"a", "b"}) {
            pid_t const child = ::fork();
            if (child == 0) {
                // The handle is the parent's.
                bool good = DataOf(key, "before") == std::string("before\0", 7);
                for (int i = 0; i < 200; ++i) {
                    std::string const name = Numbered(prefix, i);
                    good = good && SetText(key, name.c_str(), name) == 0;
                }
                std::exit(good ? 0 : 1); // with the library's work at exit
            }
            children.push_back(child);
        }
        for (int i = 0; i < 200; ++i) {
            std::string const name = Numbered("c", i);
            if (SetText(key, name.c_str(), name) != 0) {
                return 2;
            }
        }
        for (pid_t const child : children) {
            if (RegistryFolder::Wait(child) != 0) {
                return 3;
            }
        }
        bool const whole =
            CountNumbered(key, "a", 200) + CountNumbered(key, "b", 200) + CountNumbered(key, "c", 200) == 600;
        return whole ? 0 : 4;
    }),
              0);
    // What the parent's end left behind is whole.
    EXPECT_EQ(folder.Run([] {
        HKEY key = nullptr;
        OpenKey(HKEY_CURRENT_USER, TestKeyPath, key, KEY_READ);
        return CountNumbered(key, "a", 200) == 200 && CountNumbered(key, "b", 200) == 200 &&
               CountNumbered(key, "c", 200) == 200;
    }),
              1);
}

TEST(RegistryProcesses, ANormalEndLeavesOneFile)
{
    RegistryFolder const folder;
    pid_t const child = folder.Start([] {
        std::exit(static_cast<int>(MakeKey(HKEY_CURRENT_USER, TestKeyPath)));
        return 0;
    });
    EXPECT_EQ(RegistryFolder::Wait(child), 0);
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder.UserFile().parent_path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, std::vector<std::string>{"registry.db"});
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder.UserFile()).permissions(),
              perms::owner_read | perms::owner_write);
}

TEST(RegistryProcesses, ThreadsShareTheRegistryWithoutLoss)
{
    RegistryFolder const folder;
    EXPECT_EQ(folder.Run([] {
        std::atomic<int> failures = 0;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([t, &failures] {
                HKEY key = nullptr;
                failures += CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) != 0 ? 1 : 0;
                std::string const prefix(1, static_cast<char>('a' + t));
                for (int i = 0; i < 250; ++i) {
                    std::string const name = Numbered(prefix, i);
                    failures += SetText(key, name.c_str(), name) != 0 ? 1 : 0;
                    failures += i % 25 == 0 && ValueNames(key).empty() ? 1 : 0;
                }
                failures += ::RegCloseKey(key) != 0 ? 1 : 0;
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        HKEY key = nullptr;
        OpenKey(HKEY_CURRENT_USER, TestKeyPath, key, KEY_READ);
        return failures == 0 && ValueNames(key).size() == 1000 ? 0 : 1;
    }),
              0);
}

} // namespace
