// The registry, its keys and values and the stores that are seeded from it, with every single call of the
// platform failing.
#include "quarn/properties/win32/property_stores.h"
#include "quarn/registry/registry_key.h"
#include "quarn/registry/registry_value.h"

#include "tests/faults/registry_faults.h"
#include "tests/faults/resources.h"
#include "tests/platform/scratch_folder.h"
#include "tests/properties/private_folders.h"
#include "tests/registry/throw_away_key.h"

#include <algorithm>
#include <new>

#include <gtest/gtest.h>

namespace {

using Quarn::Win32::QuarnProperties;

constexpr char Root[] = "Software\\QuarnUtilFaults";
constexpr char Path[] = "Software\\QuarnUtilFaults\\first\\second";

constexpr int Values = 3;
char const* const KeyValues[Values] = {"one", "two", "three"};

// Makes a key with three values, of which the last is set anew and the first is deleted.
struct Writing
{
    long create = -1;
    long set[Values] = {-1, -1, -1};
    long again = -1;
    long remove = -1;

    bool Run()
    {
        HKEY key = nullptr;
        create = CreateKey(HKEY_CURRENT_USER, Path, key);
        if (create != 0) {
            return false;
        }
        for (int i = 0; i < Values; ++i) {
            set[i] = SetBytes(key, KeyValues[i], REG_BINARY, "data");
        }
        again = SetBytes(key, KeyValues[2], REG_BINARY, "other data");
        remove = ::RegDeleteValueA(key, KeyValues[0]);
        bool const isClosed = ::RegCloseKey(key) == 0;
        return isClosed && set[0] == 0 && set[1] == 0 && set[2] == 0 && again == 0 && remove == 0;
    }
};

class RegistryFaults : public PrivateFolders
{
protected:
    // Once without faults, so that what is kept from the first use on is there.
    void SetUp() override
    {
        PrivateFolders::SetUp();
        QuarnProperties store(m_file, "Store");
        ASSERT_TRUE(store.Persist(true));
        ASSERT_TRUE(store.Populate());
        ASSERT_TRUE(store.RemoveXML());
        store.SetAutoPersist(false);
        ASSERT_TRUE(Writing().Run());
        HKEY key = nullptr;
        ASSERT_EQ(OpenKey(HKEY_CURRENT_USER, Path, key), 0);
        EXPECT_EQ(ValueNames(key).size(), 2U);
        ::RegCloseKey(key);
    }
    ~RegistryFaults() override { RemoveTree(HKEY_CURRENT_USER, Root); }
};

#if !defined(_WIN32) // whose registry is not ours

TEST_F(RegistryFaults, WhatWasAnsweredWithSuccessIsThereAndTheRestIsWhole)
{
    Writing writing;
    Resources resources;
    auto const figures = Faults::ForEveryFault(
        RegistryPlans(),
        [&] {
            ASSERT_TRUE(Writing().Run()); // whatever has to be opened is open
            RemoveTree(HKEY_CURRENT_USER, Root);
            writing = {};
        },
        [&] { return writing.Run(); },
        [&](bool isWritten, char const* struck) {
            EXPECT_TRUE(isWritten || struck != nullptr);
            // What this process believes, and what is in the file.
            for (bool const isAnew : {false, true}) {
                if (isAnew) {
                    CloseRegistryFiles();
                }
                HKEY key = nullptr;
                if (OpenKey(HKEY_CURRENT_USER, Path, key) != 0) {
                    EXPECT_NE(writing.create, 0);
                    continue;
                }
                std::vector<std::string> const names = ValueNames(key);
                for (int i = 0; i < Values; ++i) {
                    bool const isListed = std::count(names.begin(), names.end(), KeyValues[i]) == 1;
                    bool const isRemoved = i == 0 && writing.remove == 0;
                    std::string const data = isListed ? DataOf(key, KeyValues[i]) : "";
                    EXPECT_EQ(isListed,
                              ::RegQueryValueExA(key, KeyValues[i], nullptr, nullptr, nullptr, nullptr) == 0)
                        << KeyValues[i];
                    EXPECT_TRUE(isListed || isRemoved || writing.set[i] != 0) << KeyValues[i];
                    EXPECT_FALSE(isListed && isRemoved) << KeyValues[i];
                    EXPECT_TRUE(data.empty() || data == "data" || (i == 2 && data == "other data")) << data;
                    EXPECT_TRUE(i != 2 || writing.again != 0 || data == "other data") << data;
                }
                ::RegCloseKey(key);
            }
            Writing next;
            EXPECT_TRUE(next.Run()) << next.create << " " << next.set[0] << " " << next.again << " "
                                    << next.remove;
            CloseRegistryFiles();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST_F(RegistryFaults, FilesThatCannotBeOpenedAreAnErrorAndCanBeOpenedLater)
{
    auto const write = [] {
        HKEY key = nullptr;
        if (CreateKey(HKEY_CURRENT_USER, Path, key) != 0) {
            return false;
        }
        bool const isSet = SetBytes(key, "one", REG_BINARY, "data") == 0;
        return ::RegCloseKey(key) == 0 && isSet;
    };
    Resources resources;
    std::vector<Faults::Plan> plans = RegistryPlans();
    std::erase_if(plans, [](Faults::Plan const& plan) { return plan.span == Faults::Span::Rest; });
    auto const figures =
        Faults::ForEveryFault(plans, CloseRegistryFiles, write, [&](bool isWritten, char const* struck) {
            EXPECT_TRUE(isWritten || struck != nullptr);
            EXPECT_TRUE(write());
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

#endif

// What the library's own classes say of a key's values.
struct Classes
{
    bool isOpen = false;
    bool isTextWritten = false;
    bool isNumberWritten = false;
    bool isRead = false;
    bool isClosed = false;

    bool Run(Quarn::string const& text, unsigned long number)
    try {
        Win32Quarn::CurrentUserKey key(Path);
        isOpen = key.Open("");
        if (!isOpen) {
            EXPECT_NE(key.GetLastError(), 0);
            return false;
        }
        isTextWritten = Win32Quarn::RegistryValue(key, "text").Write(text);
        isNumberWritten = Win32Quarn::RegistryValue(key, "number").Write(number);
        Quarn::string read;
        isRead = Win32Quarn::RegistryValue(key, "text").Read(read, nullptr);
        EXPECT_TRUE(!isRead || !isTextWritten || read == text) << read;
        isClosed = key.Close();
        EXPECT_TRUE(isClosed || key.GetLastError() != 0);
        return isTextWritten && isNumberWritten && isRead && isClosed;
    } catch (std::bad_alloc const&) {
        return false;
    }
};

TEST_F(RegistryFaults, KeysAndValuesSayWhatFailedAndLeaveOldValuesOrNewOnes)
{
    Quarn::string const texts[] = {"the old text, which is not a short one", "the new text"};
    constexpr unsigned long Numbers[] = {7, 8};
    Classes classes;
    Resources resources;
    auto const figures = Faults::ForEveryFault(
        RegistryPlans(),
        [&] {
            ASSERT_TRUE(Classes().Run(texts[0], Numbers[0]));
            classes = {};
        },
        [&] { return classes.Run(texts[1], Numbers[1]); },
        [&](bool isWritten, char const* struck) {
            EXPECT_TRUE(isWritten || struck != nullptr);
            {
                Win32Quarn::CurrentUserKey key(Path);
                ASSERT_TRUE(key.OpenRead(""));
                Quarn::string text;
                unsigned long number = 0;
                EXPECT_TRUE(Win32Quarn::RegistryValue(key, "text").Read(text, nullptr));
                EXPECT_TRUE(Win32Quarn::RegistryValue(key, "number").Read(&number));
                EXPECT_TRUE(text == texts[1] || (text == texts[0] && !classes.isTextWritten)) << text;
                EXPECT_TRUE(number == Numbers[1] || (number == Numbers[0] && !classes.isNumberWritten))
                    << number;
            }
            EXPECT_TRUE(Classes().Run(texts[1], Numbers[1]));
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 5);
    Faults::RecordFigures(figures);
}

// The names of a key's values, of which all are whole; none where there is no such key.
std::vector<std::string> WholeValues(char const* path)
{
    HKEY key = nullptr;
    if (OpenKey(HKEY_CURRENT_USER, path, key) != 0) {
        return {};
    }
    std::vector<std::string> names = ValueNames(key);
    for (std::string const& name : names) {
        EXPECT_EQ(DataOf(key, name.c_str()), "data of " + name);
    }
    ::RegCloseKey(key);
    return names;
}

// A move writes what it can and deletes the old key then: see Win32Quarn::RegistryKey::Copy.
TEST_F(RegistryFaults, AMoveLosesDeliberatelyWhatItCannotWriteAndNothingElse)
{
    constexpr char Moved[] = "Software\\QuarnUtilFaults\\third\\fourth";
    Resources resources;
    auto const figures = Faults::ForEveryFault(
        RegistryPlans(),
        [&] {
            RemoveTree(HKEY_CURRENT_USER, Root);
            HKEY key = nullptr;
            ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, Path, key), 0);
            for (std::string const name : KeyValues) {
                ASSERT_EQ(SetBytes(key, name.c_str(), REG_BINARY, "data of " + name), 0);
            }
            ::RegCloseKey(key);
        },
        [&] {
            try {
                return Win32Quarn::CurrentUserKey(Path).Rename(Moved);
            } catch (std::bad_alloc const&) {
                return false;
            }
        },
        [&](bool isMoved, char const* struck) {
            EXPECT_TRUE(isMoved || struck != nullptr);
            {
                std::vector<std::string> const here = WholeValues(Path);
                std::vector<std::string> const there = WholeValues(Moved);
                for (char const* const name : KeyValues) {
                    bool const isLeft = std::count(here.begin(), here.end(), name) == 1;
                    bool const isThere = std::count(there.begin(), there.end(), name) == 1;
                    EXPECT_FALSE(isMoved && isLeft) << name;
                    EXPECT_TRUE(isLeft || isThere || EndsMoves(struck)) << name;
                }
            }
            if (!isMoved) {
                EXPECT_TRUE(Win32Quarn::CurrentUserKey(Path).Rename(Moved));
            }
            CloseRegistryFiles(); // what was listed last is remembered otherwise
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 5);
    RecordFigures(figures);
}

TEST_F(RegistryFaults, ASeedingIsWholeOrReportedUnlessAnEnumerationEndsEarlyDeliberately)
{
    Writing writing;
    ASSERT_TRUE(writing.Run());
    HKEY key = nullptr;
    ASSERT_EQ(OpenKey(HKEY_CURRENT_USER, Root, key), 0);
    ASSERT_EQ(SetText(key, "text", "from the registry"), 0);
    ::RegCloseKey(key);

    std::unique_ptr<QuarnProperties> store;
    auto const isWhole = [&store] {
        return store->GetValueString("text", "") == "from the registry" &&
               store->GetValueString("first/second:two", "") == "64617461" &&
               store->GetValueString("first/second:three", "") == "6f746865722064617461";
    };
    std::string const path = (std::filesystem::path(DataFolder()) / m_file).string();
    Resources resources(path);
    auto const figures = Faults::ForEveryFault(
        RegistryPlans(),
        [&] {
            store = std::make_unique<QuarnProperties>(m_file, "Store", HKEY_CURRENT_USER, Root);
            store->SetAutoPersist(false);
        },
        [&] { return store->Populate(); },
        [&](bool isSeeded, char const* struck) {
            EXPECT_TRUE(isSeeded || struck != nullptr);
            EXPECT_TRUE(!isSeeded || isWhole() || EndsEnumerations(struck));
            EXPECT_EQ(store->GetXMLFilePath(), path);
            EXPECT_TRUE(PrivateFolders::Names().empty());
            EXPECT_TRUE(store->Populate());
            EXPECT_TRUE(isWhole());
            store.reset();
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 100 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

} // namespace
