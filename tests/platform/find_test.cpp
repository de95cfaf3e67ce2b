// Searching a folder through the seam, the same on both systems. The order of names is the system's own.
#include "platform/scratch_folder.h"

#include <cstring>
#include <set>

#include <gtest/gtest.h>

namespace {

using Names = std::multiset<std::string>;

Names Find(std::string const& pattern)
{
    Names names;
    WIN32_FIND_DATAA data;
    HANDLE const search = ::FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.insert(data.cFileName);
    } while (::FindNextFileA(search, &data));
    EXPECT_EQ(::GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(::FindClose(search));
    return names;
}

DWORD FindError(std::string const& pattern)
{
    WIN32_FIND_DATAA data;
    return ErrorOf([&] { EXPECT_EQ(::FindFirstFileA(pattern.c_str(), &data), INVALID_HANDLE_VALUE); });
}

TEST(SeamFind, PatternsMatchNames)
{
    ScratchFolder const folder;
    for (char const* const name :
         {"a.txt", "ab.txt", "b.txt", "plain", "store.xml", "store_1f.xml", "xstore.xml"}) {
        folder.Make(name);
    }
    folder.MakeFolder("inner.txt");
    struct
    {
        char const* pattern;
        Names expected;
    } const cases[] = {
        {"*",
         {".", "..", "a.txt", "ab.txt", "b.txt", "inner.txt", "plain", "store.xml", "store_1f.xml",
          "xstore.xml"}},
        {"*.*",
         {".", "..", "a.txt", "ab.txt", "b.txt", "inner.txt", "plain", "store.xml", "store_1f.xml",
          "xstore.xml"}},
        {"*.txt", {"a.txt", "ab.txt", "b.txt", "inner.txt"}},
        {"store*.xml", {"store.xml", "store_1f.xml"}},
        {"?.txt", {"a.txt", "b.txt"}},
        {"a?.txt", {"ab.txt"}},
        {"a*t", {"a.txt", "ab.txt"}},
        {"*b*", {"ab.txt", "b.txt"}},
        {"*x*m*", {"store.xml", "store_1f.xml", "xstore.xml"}},
        {"a.txt", {"a.txt"}},
        {"plain*", {"plain"}},
        {"none*", {}},
        {"none", {}},
    };
    for (auto const& test : cases) {
        EXPECT_EQ(Find(folder / test.pattern), test.expected) << test.pattern;
    }
}

TEST(SeamFind, TellsAttributesSizeAndTime)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a", "12345");
    folder.MakeFolder("f");
    WIN32_FIND_DATAA data;
    std::memset(&data, 0xAA, sizeof data);
    HANDLE search = ::FindFirstFileA(path.c_str(), &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(data.cFileName, "a");
    EXPECT_EQ(data.dwFileAttributes, FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(data.nFileSizeHigh, 0U);
    EXPECT_EQ(data.nFileSizeLow, 5U);
    // Written between 2020 and 2100, in steps of 100 ns since 1601.
    ULONGLONG const written =
        ULONGLONG{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
    EXPECT_GT(written, 132'223'104'000'000'000U);
    EXPECT_LT(written, 157'469'184'000'000'000U);
    EXPECT_TRUE(::FindClose(search));

    search = ::FindFirstFileA((folder / "f").c_str(), &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(data.cFileName, "f");
    EXPECT_EQ(data.dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(data.nFileSizeLow, 0U);
    EXPECT_TRUE(::FindClose(search));
}

TEST(SeamFind, NothingFoundIsAMissingFileOrFolder)
{
    ScratchFolder const folder;
    std::string const inner = folder.MakeFolder("f");
    EXPECT_EQ(FindError(folder / "none"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindError(folder / "none*"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindError(inner + "/"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindError(folder / "none/*"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindError(folder / "none/a"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindError(""), ERROR_PATH_NOT_FOUND);
}

TEST(SeamFind, FilesMayBeDeletedWhileTheyAreFound)
{
    ScratchFolder const folder;
    for (int i = 0; i < 300; ++i) {
        folder.Make(std::to_string(i) + ".x", "");
    }
    WIN32_FIND_DATAA data;
    HANDLE const search = ::FindFirstFileA((folder / "*.x").c_str(), &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    int count = 0;
    do {
        EXPECT_TRUE(::DeleteFileA((folder / data.cFileName).c_str()));
        ++count;
    } while (::FindNextFileA(search, &data));
    EXPECT_TRUE(::FindClose(search));
    EXPECT_EQ(count, 300);
    EXPECT_EQ(Find(folder / "*.x"), Names{});
}

TEST(SeamFind, OnlySearchHandlesAreAccepted)
{
    WIN32_FIND_DATAA data;
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::FindNextFileA(INVALID_HANDLE_VALUE, &data)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::FindClose(INVALID_HANDLE_VALUE)); }), ERROR_INVALID_HANDLE);
}

} // namespace
