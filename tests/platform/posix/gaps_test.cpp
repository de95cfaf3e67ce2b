// What POSIX has and Windows has not, and where the seam deliberately differs.
#include "platform/scratch_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

HANDLE Open(std::string const& path, DWORD access, DWORD disposition, DWORD share = 0)
{
    return ::CreateFileA(path.c_str(), access, share, nullptr, disposition, 0, nullptr);
}

TEST(PosixGap, SharingIsNotEnforced)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a");
    HANDLE const first = Open(path, GENERIC_WRITE, OPEN_EXISTING);
    HANDLE const second = Open(path, GENERIC_WRITE, OPEN_EXISTING);
    EXPECT_NE(first, INVALID_HANDLE_VALUE);
    EXPECT_NE(second, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(::DeleteFileA(path.c_str()));
    ::CloseHandle(first);
    ::CloseHandle(second);
}

TEST(PosixGap, AnOpenFileCanBeReplacedAndReadToItsEnd)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a", "old");
    HANDLE const reader = Open(path, GENERIC_READ, OPEN_EXISTING);
    ASSERT_TRUE(::MoveFileExA(folder.Make("b", "new").c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING));
    char data[10];
    DWORD count = 0;
    EXPECT_TRUE(::ReadFile(reader, data, sizeof data, &count, nullptr));
    EXPECT_EQ(std::string(data, count), "old");
    ::CloseHandle(reader);
    EXPECT_EQ(ContentOf(path), "new");
}

TEST(PosixGap, PathsMayBeLongerThanMaxPath)
{
    ScratchFolder const folder;
    std::string const path = folder.MakeFolder(std::string(200, 'd')) + "/" + std::string(200, 'f');
    HANDLE const file = Open(path, GENERIC_WRITE, CREATE_NEW);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    ::CloseHandle(file);
    EXPECT_EQ(ErrorOf([&] { Open(folder / std::string(300, 'f'), GENERIC_WRITE, CREATE_NEW); }),
              ERROR_FILENAME_EXCED_RANGE);
}

TEST(PosixGap, ABackslashIsAnOrdinaryCharacter)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a\\b", "1");
    HANDLE const file = Open(path, 0, OPEN_EXISTING);
    char buffer[1000] = "";
    EXPECT_NE(::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0), 0U);
    EXPECT_TRUE(std::string(buffer).ends_with("/a\\b")) << buffer;
    ::CloseHandle(file);
    char added[MAX_PATH] = "a\\";
    EXPECT_NE(::PathAddBackslashA(added), nullptr);
    EXPECT_STREQ(added, "a\\/");
    // Here the limit is kept to the letter.
    std::string(259, 'a').copy(added, sizeof added);
    added[259] = '\0';
    EXPECT_EQ(::PathAddBackslashA(added), nullptr);
}

TEST(PosixGap, NamesKeepTheirCaseInSearches)
{
    ScratchFolder const folder;
    folder.Make("Name.XML");
    WIN32_FIND_DATAA data;
    EXPECT_EQ(ErrorOf([&] { ::FindFirstFileA((folder / "*.xml").c_str(), &data); }), ERROR_FILE_NOT_FOUND);
}

TEST(PosixGap, SearchesAreInByteOrder)
{
    ScratchFolder const folder;
    for (char const* const name : {"b", "B", "a", "!", "\xC3\xA9"}) {
        folder.Make(name);
    }
    WIN32_FIND_DATAA data;
    HANDLE const search = ::FindFirstFileA((folder / "*").c_str(), &data);
    std::string order;
    do {
        order.append(data.cFileName).append(" ");
    } while (::FindNextFileA(search, &data));
    ::FindClose(search);
    EXPECT_EQ(order, ". .. ! B a b \xC3\xA9 ");
}

TEST(PosixGap, WhatIsNoFileIsADeviceAndPipesAndSocketsDoNotOpen)
{
    ScratchFolder const folder;
    std::string const pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0666), 0);
    std::string const socket = folder / "socket";
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket.copy(address.sun_path, sizeof address.sun_path - 1);
    int const bound = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(bound, reinterpret_cast<::sockaddr*>(&address), sizeof address), 0);
    for (std::string const& path : {pipe, socket}) {
        EXPECT_EQ(::GetFileAttributesA(path.c_str()), FILE_ATTRIBUTE_DEVICE) << path;
        for (DWORD const access : {GENERIC_READ, GENERIC_WRITE}) {
            EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(Open(path, access, OPEN_EXISTING), INVALID_HANDLE_VALUE); }),
                      ERROR_ACCESS_DENIED)
                << path;
        }
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::CopyFileA(path.c_str(), (folder / "c").c_str(), TRUE)); }),
                  ERROR_ACCESS_DENIED);
    }
    ::close(bound);
}

TEST(PosixGap, AFullDeviceShowsAtTheWrite)
{
    EXPECT_EQ(::GetFileAttributesA("/dev/full"), FILE_ATTRIBUTE_DEVICE);
    for (DWORD const disposition : {OPEN_EXISTING, CREATE_ALWAYS}) {
        HANDLE const file = Open("/dev/full", GENERIC_WRITE, disposition);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD count = 99;
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::WriteFile(file, "abc", 3, &count, nullptr)); }),
                  ERROR_DISK_FULL);
        EXPECT_EQ(count, 0U);
        ::CloseHandle(file);
    }
}

TEST(PosixGap, AMutexNeedsAName)
{
    for (char const* const name : {static_cast<char const*>(nullptr), ""}) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(::CreateMutexA(nullptr, FALSE, name), nullptr); }),
                  ERROR_NOT_SUPPORTED);
    }
}

TEST(PosixGap, MutexesAloneCanBeWaitedFor)
{
    ScratchFolder const folder;
    HANDLE const file = Open(folder.Make("a"), GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(::WaitForSingleObject(file, 0), WAIT_FAILED); }), ERROR_INVALID_HANDLE);
    ::CloseHandle(file);
}

TEST(PosixGap, TwoNamesOfOneFileAreNotMovedOverEachOther)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "1");
    std::string const b = folder / "b";
    ASSERT_TRUE(::CreateHardLinkA(b.c_str(), a.c_str(), nullptr));
    EXPECT_TRUE(::MoveFileExA(a.c_str(), b.c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(ContentOf(a), "1");
    EXPECT_EQ(ContentOf(b), "1");
}

// As on Windows, but Wine lets the superuser write.
TEST(PosixReadOnly, FilesThatNobodyMayWriteToAreReadOnlyForTheSuperuserToo)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a", "old");
    std::string const other = folder.Make("b", "new");
    MakeReadOnly(path);
    for (DWORD const disposition : {OPEN_EXISTING, CREATE_ALWAYS}) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(Open(path, GENERIC_WRITE, disposition), INVALID_HANDLE_VALUE); }),
                  ERROR_ACCESS_DENIED);
    }
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::CopyFileA(other.c_str(), path.c_str(), FALSE)); }),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(
        ErrorOf([&] { EXPECT_FALSE(::MoveFileExA(other.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)); }),
        ERROR_ACCESS_DENIED);
    HANDLE const file = Open(path, GENERIC_READ, OPEN_EXISTING);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    ::CloseHandle(file);
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(ContentOf(other), "new");
    EXPECT_TRUE(::MoveFileExA(path.c_str(), (folder / "c").c_str(), 0)) << "its name may change";
}

// As on Windows, but Wine keeps the path of the opening.
TEST(PosixPath, FinalPathsFollowTheFileWhenItMoves)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a");
    HANDLE const file = Open(path, 0, OPEN_EXISTING);
    ASSERT_TRUE(::MoveFileExA(path.c_str(), (folder / "b").c_str(), 0));
    char buffer[1000] = "";
    EXPECT_NE(::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0), 0U);
    EXPECT_EQ(buffer, fs::canonical(folder / "b").string());
    ::CloseHandle(file);
}

TEST(PosixLink, AttributesAndOpeningFollowIt)
{
    ScratchFolder const folder;
    folder.Make("a", "1");
    folder.MakeFolder("f");
    fs::create_symlink("a", folder / "link");
    fs::create_symlink("f", folder / "folderlink");
    fs::create_symlink("none", folder / "dangling");
    fs::create_symlink("loop", folder / "loop");
    EXPECT_EQ(::GetFileAttributesA((folder / "link").c_str()), FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(::GetFileAttributesA((folder / "folderlink").c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(ErrorOf([&] { ::GetFileAttributesA((folder / "dangling").c_str()); }), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorOf([&] { ::GetFileAttributesA((folder / "loop").c_str()); }), ERROR_CANT_RESOLVE_FILENAME);
    HANDLE const file = Open(folder / "link", GENERIC_READ, OPEN_EXISTING);
    char buffer[1000] = "";
    EXPECT_NE(::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0), 0U);
    EXPECT_EQ(buffer, fs::canonical(folder / "a").string());
    ::CloseHandle(file);
}

TEST(PosixLink, DeletingAndMovingConcernTheLinkItself)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "1");
    fs::create_symlink("a", folder / "link");
    EXPECT_TRUE(::MoveFileExA((folder / "link").c_str(), (folder / "moved").c_str(), 0));
    EXPECT_TRUE(fs::is_symlink(folder / "moved"));
    EXPECT_TRUE(
        ::MoveFileExA(folder.Make("b", "2").c_str(), (folder / "moved").c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_FALSE(fs::is_symlink(folder / "moved"));
    fs::create_symlink("a", folder / "link");
    EXPECT_TRUE(::DeleteFileA((folder / "link").c_str()));
    EXPECT_EQ(ContentOf(a), "1");
}

TEST(PosixLink, FullPathsKeepTheParentBehindIt)
{
    ScratchFolder const folder;
    std::string const inner = folder.MakeFolder("f");
    folder.MakeFolder("f/g");
    fs::create_symlink("f/g", folder / "link");
    std::string const here = fs::current_path().string() + "/";
    char buffer[1000] = "";
    EXPECT_NE(::GetFullPathNameA((folder / "link/../a").c_str(), sizeof buffer, buffer, nullptr), 0U);
    EXPECT_EQ(buffer, here + (folder / "link/../a"));
    EXPECT_NE(::GetFullPathNameA((folder / "link/.././../x").c_str(), sizeof buffer, buffer, nullptr), 0U);
    EXPECT_EQ(buffer, here + (folder / "link/../../x"));
    EXPECT_NE(::GetFullPathNameA((folder / "f/g/../a").c_str(), sizeof buffer, buffer, nullptr), 0U);
    EXPECT_EQ(buffer, here + (folder / "f/a"));
}

TEST(PosixLink, ADeletedFileHasNoPath)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a");
    HANDLE const file = Open(path, GENERIC_READ, OPEN_EXISTING);
    ::DeleteFileA(path.c_str());
    char buffer[1000];
    EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0), 0U); }),
              ERROR_FILE_NOT_FOUND);
    ::CloseHandle(file);
}

TEST(PosixDescriptor, AreClosedInAnotherProgram)
{
    ScratchFolder const folder;
    HANDLE const file = Open(folder.Make("a"), GENERIC_READ, OPEN_EXISTING);
    HANDLE const mutex =
        ::CreateMutexA(nullptr, TRUE, ("quarn-test-descriptors-" + std::to_string(::getpid())).c_str());
    bool hasFile = false;
    bool hasMutex = false;
    for (auto const& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        std::string const target = fs::read_symlink(entry, ignored).string();
        bool const isFile = target.find(folder.Path()) != std::string::npos;
        bool const isMutex = target.find("quarn-test-descriptors") != std::string::npos;
        if (isFile || isMutex || target.find("/quarnutil.") != std::string::npos) {
            EXPECT_NE(::fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0) << target;
        }
        hasFile = hasFile || isFile;
        hasMutex = hasMutex || isMutex;
    }
    EXPECT_TRUE(hasFile && hasMutex) << "they have been looked at";
    ::ReleaseMutex(mutex);
    ::CloseHandle(mutex);
    ::CloseHandle(file);
}

} // namespace
