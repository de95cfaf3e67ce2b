// Opening, reading and writing files through the seam, the same on both systems.
#include "platform/scratch_folder.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE Open(std::string const& path, DWORD access, DWORD disposition, DWORD flags = FILE_ATTRIBUTE_NORMAL)
{
    return ::CreateFileA(path.c_str(), access, ShareAll, nullptr, disposition, flags, nullptr);
}

// Fails to open; the code that says why.
DWORD OpenError(std::string const& path, DWORD access, DWORD disposition)
{
    return ErrorOf([&] { EXPECT_EQ(Open(path, access, disposition), INVALID_HANDLE_VALUE); });
}

TEST(SeamFile, WritesAndReadsBack)
{
    ScratchFolder const folder;
    std::string const path = folder / "a";
    HANDLE file = Open(path, GENERIC_WRITE, CREATE_NEW);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD count = 99;
    EXPECT_TRUE(::WriteFile(file, "one\0two", 7, &count, nullptr));
    EXPECT_EQ(count, 7U);
    EXPECT_TRUE(::WriteFile(file, "", 0, &count, nullptr));
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(::FlushFileBuffers(file));
    EXPECT_TRUE(::CloseHandle(file));

    file = Open(path, GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    LARGE_INTEGER size;
    size.QuadPart = -1;
    EXPECT_TRUE(::GetFileSizeEx(file, &size));
    EXPECT_EQ(size.QuadPart, 7);
    char data[10];
    EXPECT_TRUE(::ReadFile(file, data, 3, &count, nullptr));
    EXPECT_EQ(std::string(data, count), "one");
    EXPECT_TRUE(::ReadFile(file, data, 10, &count, nullptr));
    EXPECT_EQ(std::string(data, count), std::string("\0two", 4));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST(SeamFile, ReadingAtTheEndSucceedsWithNothing)
{
    ScratchFolder const folder;
    HANDLE const file = Open(folder.Make("a", ""), GENERIC_READ, OPEN_EXISTING);
    DWORD count = 99;
    char c = 0;
    EXPECT_TRUE(::ReadFile(file, &c, 1, &count, nullptr));
    EXPECT_EQ(count, 0U);
    ::CloseHandle(file);
}

TEST(SeamFile, SetEndOfFileCutsAtThePosition)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a", "0123456789");
    HANDLE const file = Open(path, GENERIC_WRITE, OPEN_EXISTING);
    DWORD count = 0;
    EXPECT_TRUE(::WriteFile(file, "abc", 3, &count, nullptr));
    EXPECT_TRUE(::SetEndOfFile(file));
    ::CloseHandle(file);
    EXPECT_EQ(ContentOf(path), "abc");
}

TEST(SeamFile, CreateNewRefusesWhatExists)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a", "old");
    EXPECT_EQ(OpenError(path, GENERIC_WRITE, CREATE_NEW), ERROR_FILE_EXISTS);
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(OpenError(folder.MakeFolder("f"), GENERIC_WRITE, CREATE_NEW), ERROR_FILE_EXISTS);
}

TEST(SeamFile, CreateAlwaysEmptiesAndTellsThatTheFileWasThere)
{
    ScratchFolder const folder;
    std::string const path = folder / "a";
    for (DWORD const expected : {ERROR_SUCCESS, ERROR_ALREADY_EXISTS}) {
        ::SetLastError(7777);
        HANDLE const file = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
        EXPECT_EQ(::GetLastError(), expected);
        EXPECT_EQ(ContentOf(path), "");
        DWORD count = 0;
        EXPECT_TRUE(::WriteFile(file, "x", 1, &count, nullptr));
        ::CloseHandle(file);
    }
    EXPECT_EQ(OpenError(folder.MakeFolder("f"), GENERIC_WRITE, CREATE_ALWAYS), ERROR_ACCESS_DENIED);
}

TEST(SeamFile, CreateAlwaysEmptiesWithReadAccessToo)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a");
    HANDLE const file = Open(path, GENERIC_READ, CREATE_ALWAYS);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    ::CloseHandle(file);
    EXPECT_EQ(ContentOf(path), "");
}

TEST(SeamFile, OpeningTellsAMissingFileFromAMissingFolder)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("file");
    EXPECT_EQ(OpenError(folder / "none", GENERIC_READ, OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenError(folder / "none/a", GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(folder / "none/a", GENERIC_WRITE, CREATE_NEW), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(file + "/a", GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError("", GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(ErrorOf([] { ::CreateFileA(nullptr, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr); }),
              ERROR_PATH_NOT_FOUND);
}

TEST(SeamFile, DispositionsOutsideTheirRangeAreRefused)
{
    ScratchFolder const folder;
    for (DWORD const disposition : {0U, 77U}) {
        EXPECT_EQ(OpenError(folder / "a", GENERIC_WRITE, disposition), ERROR_INVALID_PARAMETER)
            << disposition;
    }
    EXPECT_EQ(::GetFileAttributesA((folder / "a").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(SeamFile, FoldersOpenOnlyWithTheFlagForThem)
{
    ScratchFolder const folder;
    std::string const path = folder.MakeFolder("f");
    EXPECT_EQ(OpenError(path, GENERIC_READ, OPEN_EXISTING), ERROR_ACCESS_DENIED);
    EXPECT_EQ(OpenError(path, GENERIC_WRITE, OPEN_EXISTING), ERROR_ACCESS_DENIED);
    HANDLE const file = Open(path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(::CloseHandle(file));
}

TEST(SeamFile, AHandleAllowsOnlyWhatItWasOpenedFor)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a", "old");
    DWORD count = 99;
    char c = 0;

    HANDLE file = Open(path, GENERIC_WRITE, OPEN_EXISTING);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReadFile(file, &c, 1, &count, nullptr)); }), ERROR_ACCESS_DENIED);
    EXPECT_EQ(count, 0U);
    ::CloseHandle(file);

    file = Open(path, GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::WriteFile(file, "x", 1, &count, nullptr)); }),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::FlushFileBuffers(file)); }), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(::SetEndOfFile(file));
    ::CloseHandle(file);

    file = Open(path, 0, OPEN_EXISTING);
    LARGE_INTEGER size;
    EXPECT_TRUE(::GetFileSizeEx(file, &size));
    EXPECT_EQ(size.QuadPart, 3);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReadFile(file, &c, 1, &count, nullptr)); }), ERROR_ACCESS_DENIED);
    ::CloseHandle(file);
    EXPECT_EQ(ContentOf(path), "old");
}

TEST(SeamHandle, ClosedAndForeignHandlesAreRefused)
{
    ScratchFolder const folder;
    HANDLE const file = Open(folder.Make("a"), GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReleaseMutex(file)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::FindClose(file)); }), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(::CloseHandle(file));
    DWORD count = 99;
    char c = 'x';
    LARGE_INTEGER size;
    for (HANDLE const bad : {file, HANDLE{nullptr}}) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::CloseHandle(bad)); }), ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReadFile(bad, &c, 1, &count, nullptr)); }),
                  ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::WriteFile(bad, &c, 1, &count, nullptr)); }),
                  ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::FlushFileBuffers(bad)); }), ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::SetEndOfFile(bad)); }), ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::GetFileSizeEx(bad, &size)); }), ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReleaseMutex(bad)); }), ERROR_INVALID_HANDLE);
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(::WaitForSingleObject(bad, 0), WAIT_FAILED); }),
                  ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(count, 0U);
}

} // namespace
