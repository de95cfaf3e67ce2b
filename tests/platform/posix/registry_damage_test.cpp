// Registry files that are damaged, foreign, missing or not to be written.
#include "quarn/registry/registry_key.h"

#include "tests/platform/posix/registry_child.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

namespace {

// A registry with a thousand values.
int Fill()
{
    HKEY key = nullptr;
    long code = CreateKey(HKEY_CURRENT_USER, TestKeyPath, key);
    for (int i = 0; code == 0 && i < 1000; ++i) {
        std::string const name = Numbered("v", i);
        code = SetText(key, name.c_str(), name);
    }
    std::exit(static_cast<int>(code));
    return 0;
}

// Every function once: none may crash or hang.
int UseAll()
{
    HKEY key = nullptr;
    if (CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) == 0) {
        ValueNames(key);
        SubKeyNames(key);
        CountNumbered(key, "v", 1000);
        MakeKey(key, "new\\key");
        for (int i = 0; i < 100; ++i) {
            SetText(key, Numbered("w", i).c_str(), std::string(1000, 'w'));
        }
        for (int i = 0; i < 100; ++i) {
            ::RegDeleteValueA(key, Numbered("v", i).c_str());
        }
        ::RegDeleteKeyA(key, "new\\key");
    }
    SubKeyNames(HKEY_CURRENT_USER);
    return 0;
}

// Down the first sub-keys and along their values until there is an end; 0 for that of damage.
int WalkDown()
{
    std::string path;
    for (int depth = 0; depth < 1000; ++depth) {
        HKEY key = nullptr;
        long code = ::RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
        for (DWORD index = 0; code == 0; ++index) {
            char value[300];
            DWORD size = sizeof value;
            code = ::RegEnumValueA(key, index, value, &size, nullptr, nullptr, nullptr, nullptr);
        }
        char first[300];
        DWORD size = sizeof first;
        if (code == 259) {
            code = ::RegEnumKeyExA(key, 0, first, &size, nullptr, nullptr, nullptr, nullptr);
        }
        if (code != 0) {
            return code == 1015 ? 0 : static_cast<int>(code % 200 + 1);
        }
        path += (path.empty() ? "" : "\\") + std::string(first);
    }
    return 255;
}

TEST(RegistryDamage, AForeignFileIsRefusedAndLeftAsItIs)
{
    for (std::string const& content :
         {std::string("no data base"), std::string(100000, 'x'), std::string(100, '\0')}) {
        RegistryFolder const folder;
        Write(folder.UserFile(), content);
        EXPECT_EQ(folder.Run([] {
            HKEY key = nullptr;
            bool const refused = CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) == 1017 &&
                                 OpenKey(HKEY_CURRENT_USER, TestKeyPath, key) == 1017 &&
                                 Query(HKEY_CURRENT_USER, "v", 10).code == 1017 &&
                                 SetText(HKEY_CURRENT_USER, "v", "text") == 1017 &&
                                 ::RegDeleteValueA(HKEY_CURRENT_USER, "v") == 1017 &&
                                 ::RegDeleteKeyA(HKEY_CURRENT_USER, TestKeyPath) == 1017;
            return refused && UseAll() == 0;
        }),
                  1);
        EXPECT_EQ(ContentOf(folder.UserFile()), content);
    }
}

TEST(RegistryDamage, DamagedBytesGiveCodesAndNoCrash)
{
    RegistryFolder const folder;
    ASSERT_EQ(folder.Run(Fill), 0);
    std::string const whole = ContentOf(folder.UserFile());
    ASSERT_GT(whole.size(), 20000u);
    unsigned random = 12345;
    auto const next = [&random] { return random = random * 1664525 + 1013904223; };
    for (int round = 0; round < 30; ++round) {
        std::string damaged = whole;
        if (round % 3 == 0) {
            damaged.resize(next() % damaged.size());
        } else {
            for (unsigned i = 0, count = 1 + next() % 200; i < count; ++i) {
                damaged[next() % damaged.size()] = static_cast<char>(next() >> 24);
            }
        }
        Write(folder.UserFile(), damaged);
        for (char const* const suffix : {"-wal", "-shm"}) {
            std::filesystem::remove(folder.UserFile().string() + suffix);
        }
        EXPECT_EQ(folder.Run(UseAll), 0) << round;
        // A file that lacks pages is neither repaired nor replaced.
        if (!damaged.empty() && damaged.size() + 4096 <= whole.size()) {
            EXPECT_EQ(folder.Run([] {
                HKEY key = nullptr;
                long const code = CreateKey(HKEY_CURRENT_USER, TestKeyPath, key);
                return code == 1015 || code == 1017;
            }),
                      1)
                << round;
            EXPECT_TRUE(ContentOf(folder.UserFile()) == damaged) << round;
        }
    }
}

// Files that a data base opens without a word: with other tables, with keys that lead in circles, with trees
// of pages that lead to one page again and again.
TEST(RegistryDamage, ATrapIsRefusedAndLeftAsItIs)
{
    for (char const* const name :
         {"foreign_table", "trigger", "endless_view", "default_of_much", "no_roots", "root_below_itself",
          "key_zero", "too_deep", "a_key_twice", "endless_keys", "endless_values"}) {
        SCOPED_TRACE(name);
        RegistryFolder const folder;
        std::string const content = ContentOf(std::string(QUARN_REGISTRY_SEEDS "/") + name);
        Write(folder.UserFile(), content);
        EXPECT_EQ(folder.Run(WalkDown), 0);
        EXPECT_TRUE(ContentOf(folder.UserFile()) == content);
    }
}

// Its name leads to no key, and so a move, which opens keys by their names, would make a new one of that name
// and delete it, again and again.
TEST(RegistryDamage, AMoveEndsAtAKeyThatIsListedAndNotFound)
{
    RegistryFolder const folder;
    Write(folder.UserFile(), ContentOf(QUARN_REGISTRY_SEEDS "/key_under_another_name"));
    EXPECT_EQ(folder.Run([] {
        ::alarm(60);
        bool const isMoved = Win32Quarn::CurrentUserKey("Software").Rename("Moved");
        HKEY key = nullptr;
        bool const isThere = OpenKey(HKEY_CURRENT_USER, "Software", key) == 0;
        long code = 0;
        for (DWORD index = 0; code == 0; ++index) {
            char name[300];
            DWORD size = sizeof name;
            code = ::RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
        }
        return !isMoved && isThere && code == 1015;
    }),
              1);
}

// Holes make a file as large as anybody likes.
TEST(RegistryDamage, AnEndlessFileWithAHugeHoleHasAnEnd)
{
    for (char const* const name : {"endless_keys", "endless_values"}) {
        RegistryFolder const folder;
        Write(folder.UserFile(), ContentOf(std::string(QUARN_REGISTRY_SEEDS "/") + name));
        std::filesystem::resize_file(folder.UserFile(), std::uintmax_t{1} << 38);
        EXPECT_EQ(folder.Run([] {
            ::alarm(60);
            return WalkDown();
        }),
                  0)
            << name;
    }
}

TEST(RegistryDamage, WhatIsNoLogBesideTheFileIsNoPartOfIt)
{
    RegistryFolder const folder;
    ASSERT_EQ(folder.Run(Fill), 0);
    for (std::string const& log : {std::string("no log"), std::string(100000, 'x')}) {
        Write(folder.UserFile().string() + "-wal", log);
        EXPECT_EQ(folder.Run([] {
            HKEY key = nullptr;
            OpenKey(HKEY_CURRENT_USER, TestKeyPath, key);
            return CountNumbered(key, "v", 1000) == 1000 && SetText(key, "v", "text") == 0;
        }),
                  1);
    }
}

// As on a full disk.
TEST(RegistryDamage, AFileThatCannotGrowGivesACodeAndLosesNothingThatWasWritten)
{
    RegistryFolder const folder;
    ASSERT_EQ(folder.Run(Fill), 0);
    int const written = folder.Run([] {
        HKEY key = nullptr;
        OpenKey(HKEY_CURRENT_USER, TestKeyPath, key);
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit = {400000, 400000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        int i = 0;
        while (i < 200 && SetText(key, Numbered("big", i).c_str(), std::string(10000, 'b')) == 0) {
            ++i;
        }
        return SetText(key, "last", std::string(10000, 'b')) == 0 ? 255 : i;
    });
    ASSERT_GT(written, 0);
    ASSERT_LT(written, 200);
    EXPECT_EQ(folder.Run([&] {
        HKEY key = nullptr;
        OpenKey(HKEY_CURRENT_USER, TestKeyPath, key);
        int whole = 0;
        for (int i = 0; i < written; ++i) {
            whole += DataOf(key, Numbered("big", i).c_str()) == std::string(10000, 'b') + '\0' ? 1 : 0;
        }
        return whole == written && CountNumbered(key, "v", 1000) == 1000 && SetText(key, "next", "") == 0;
    }),
              1);
}

TEST(RegistryDamage, AFileOfALaterVersionIsRefused)
{
    RegistryFolder const folder;
    ASSERT_EQ(folder.Run(Fill), 0);
    std::string content = ContentOf(folder.UserFile());
    content[63] = 2; // the user version of the file's header
    Write(folder.UserFile(), content);
    EXPECT_EQ(folder.Run([] { return TryOpen(HKEY_CURRENT_USER, TestKeyPath) == 1017; }), 1);
    EXPECT_EQ(ContentOf(folder.UserFile()), content);
}

TEST(RegistryDamage, AFolderInTheFilesPlaceGivesACode)
{
    RegistryFolder const folder;
    std::filesystem::create_directories(folder.UserFile() / "not empty");
    EXPECT_EQ(folder.Run([] {
        HKEY key = nullptr;
        return CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) == 5 &&
               Query(HKEY_CURRENT_USER, "v", 4).code == 5;
    }),
              1);
    EXPECT_TRUE(std::filesystem::exists(folder.UserFile() / "not empty"));
}

TEST(RegistryDamage, AFileInTheFoldersPlaceGivesACode)
{
    RegistryFolder const folder;
    Write(folder.UserFile().parent_path(), "content");
    EXPECT_EQ(folder.Run([] {
        HKEY key = nullptr;
        return CreateKey(HKEY_CURRENT_USER, TestKeyPath, key) == 3;
    }),
              1);
    EXPECT_EQ(ContentOf(folder.UserFile().parent_path()), "content");
}

TEST(RegistryDamage, ReadingMakesNoFile)
{
    RegistryFolder const folder;
    EXPECT_EQ(folder.Run([] {
        return TryOpen(HKEY_CURRENT_USER, TestKeyPath) == 2 &&
               TryOpen(HKEY_LOCAL_MACHINE, TestKeyPath) == 2 && Query(HKEY_LOCAL_MACHINE, "v", 4).code == 2 &&
               SubKeyNames(HKEY_CURRENT_USER).empty() && ValueNames(HKEY_LOCAL_MACHINE).empty() &&
               TryOpen(HKEY_LOCAL_MACHINE, "") == 0 && ::RegDeleteValueA(HKEY_CURRENT_USER, "v") == 2 &&
               ::RegDeleteKeyA(HKEY_CURRENT_USER, TestKeyPath) == 2;
    }),
              1);
    EXPECT_FALSE(std::filesystem::exists(folder.UserFile()));
    EXPECT_FALSE(std::filesystem::exists(folder.UserFile().parent_path() / "machine.db"));
}

TEST(RegistryDamage, AnEmptyFileIsANewRegistry)
{
    RegistryFolder const folder;
    Write(folder.UserFile(), "");
    EXPECT_EQ(folder.Run([] { return MakeKey(HKEY_CURRENT_USER, TestKeyPath); }), 0);
}

TEST(RegistryDamage, AReadOnlyFileCanBeReadAndNotWritten)
{
    for (bool const isMachine : {false, true}) {
        RegistryFolder const folder;
        HKEY const root = isMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
        std::filesystem::path const file = isMachine ? folder.MachineFile() : folder.UserFile();
        std::filesystem::create_directory(folder.MachineFolder());
        ASSERT_EQ(folder.Run([&] {
            HKEY key = nullptr;
            CreateKey(root, TestKeyPath, key);
            std::exit(static_cast<int>(SetText(key, "v", "text")));
            return 0;
        }),
                  0);
        MakeReadOnly(file.string());
        std::string const content = ContentOf(file);
        EXPECT_EQ(folder.Run([&] {
            HKEY key = nullptr;
            return OpenKey(root, TestKeyPath, key, KEY_READ) == 0 &&
                   DataOf(key, "v") == std::string("text\0", 5) && ValueNames(key).size() == 1 &&
                   TryOpen(root, TestKeyPath, KEY_WRITE) == 5 && CreateKey(root, "new", key) == 5 &&
                   SetText(root, "v", "text") == 5 && ::RegDeleteKeyA(root, TestKeyPath) == 5;
        }),
                  1);
        EXPECT_EQ(ContentOf(file), content);
    }
}

TEST(RegistryDamage, TheMachinesFileIsForEverybodyToRead)
{
    RegistryFolder const folder;
    std::filesystem::create_directory(folder.MachineFolder());
    ASSERT_EQ(folder.Run([] {
        ::umask(077);
        return MakeKey(HKEY_LOCAL_MACHINE, TestKeyPath);
    }),
              0);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder.MachineFile()).permissions(),
              perms::owner_read | perms::owner_write | perms::group_read | perms::others_read);
}

} // namespace
