// Path texts through the seam. What begins a path and parts it is the system's own; all else is the same.
#include "platform/scratch_folder.h"

#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

namespace {

#if defined(_WIN32)
constexpr char Separator = '\\';
#else
constexpr char Separator = '/';
#endif

std::string Native(std::string path)
{
    std::replace(path.begin(), path.end(), '/', Separator);
    return path;
}

std::string FullPath(std::string const& path)
{
    char buffer[1000];
    DWORD const length = ::GetFullPathNameA(path.c_str(), sizeof buffer, buffer, nullptr);
    return length != 0 ? std::string(buffer, length) : "";
}

std::string CurrentDirectory()
{
    return std::filesystem::current_path().string();
}

TEST(SeamPath, FullPathsAreAbsoluteAndShort)
{
    struct
    {
        char const* path;
        char const* expected; // behind the current directory
    } const cases[] = {
        {"a", "/a"},         {"a/b", "/a/b"}, {"./a/../b", "/b"}, {"a//b", "/a/b"},  {"a/", "/a/"},
        {"a/./b/.", "/a/b"}, {".", ""},       {"a/..", ""},       {"a/b/../..", ""}, {"..a/..b", "/..a/..b"},
    };
    for (auto const& test : cases) {
        EXPECT_EQ(FullPath(test.path), CurrentDirectory() + Native(test.expected)) << test.path;
    }
    std::string const parent = std::filesystem::current_path().parent_path().string();
    EXPECT_EQ(FullPath(".."), parent);
    std::string const root = std::filesystem::current_path().root_path().string();
    EXPECT_EQ(FullPath("/.."), root);
    EXPECT_EQ(FullPath("/../x/../y"), root + "y");
}

TEST(SeamPath, FullPathsTellWhereTheNameBegins)
{
    char buffer[1000];
    char* name = nullptr;
    ASSERT_NE(::GetFullPathNameA("a/name.x", sizeof buffer, buffer, &name), 0U);
    EXPECT_STREQ(name, "name.x");
    name = buffer;
    ASSERT_NE(::GetFullPathNameA("a/", sizeof buffer, buffer, &name), 0U);
    EXPECT_EQ(name, nullptr);
}

TEST(SeamPath, FullPathsNegotiateTheirBuffer)
{
    auto const length = static_cast<DWORD>(FullPath("name").size());
    std::string buffer(length + 2, '#');
    EXPECT_EQ(::GetFullPathNameA("name", 0, nullptr, nullptr), length + 1);
    EXPECT_EQ(::GetFullPathNameA("name", length, buffer.data(), nullptr), length + 1);
    EXPECT_EQ(::GetFullPathNameA("name", length + 1, buffer.data(), nullptr), length);
    EXPECT_EQ(buffer[length], '\0');
    EXPECT_EQ(buffer[length + 1], '#');
    EXPECT_EQ(::GetFullPathNameA("", 0, nullptr, nullptr), 0U);
    EXPECT_EQ(::GetFullPathNameA(nullptr, 0, nullptr, nullptr), 0U);
}

TEST(SeamPath, TheCurrentDirectoryNegotiatesItsBuffer)
{
    std::string const expected = CurrentDirectory();
    auto const length = static_cast<DWORD>(expected.size());
    std::string buffer(length + 2, '#');
    EXPECT_EQ(::GetCurrentDirectoryA(0, nullptr), length + 1);
    EXPECT_EQ(::GetCurrentDirectoryA(length, buffer.data()), length + 1);
    EXPECT_EQ(::GetCurrentDirectoryA(length + 1, buffer.data()), length);
    EXPECT_EQ(buffer.c_str(), expected);
    EXPECT_EQ(buffer[length + 1], '#');
}

HANDLE OpenForItsPath(std::string const& path)
{
    return ::CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

// Without what Windows puts in front.
std::string FinalPath(std::string const& path)
{
    HANDLE const file = OpenForItsPath(path);
    char buffer[1000] = "";
    DWORD const length =
        ::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    EXPECT_EQ(length, std::strlen(buffer));
    ::CloseHandle(file);
    std::string const final = buffer;
    return final.starts_with("\\\\?\\") ? final.substr(4) : final;
}

TEST(SeamPath, FinalPathsOfFilesAndFolders)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("a");
    EXPECT_EQ(FinalPath(file), FullPath(file));
    std::string const inner = folder.MakeFolder("f");
    EXPECT_EQ(FinalPath(inner + "/../a"), FullPath(file));
    EXPECT_EQ(FinalPath(inner), FullPath(inner));
}

TEST(SeamPath, FinalPathsNegotiateTheirBuffer)
{
    ScratchFolder const folder;
    HANDLE const file = OpenForItsPath(folder.Make("a"));
    char buffer[1000];
    DWORD const length = ::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0);
    ASSERT_NE(length, 0U);
    EXPECT_EQ(std::strlen(buffer), length);
    // Too small: some size that is not smaller than the length.
    EXPECT_GE(::GetFinalPathNameByHandleA(file, buffer, 5, 0), length);
    ::CloseHandle(file);
    EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(::GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0), 0U); }),
              ERROR_INVALID_HANDLE);
}

TEST(SeamPath, AddBackslashEndsAPathInItsSeparator)
{
    struct
    {
        std::string path;
        std::string expected;
    } const cases[] = {
        {"", ""},
        {"a", Native("a/")},
        {Native("a/"), Native("a/")},
        {Native("/"), Native("/")},
        {std::string(258, 'a'), Native(std::string(258, 'a') + "/")},
    };
    for (auto const& test : cases) {
        char buffer[MAX_PATH] = "";
        test.path.copy(buffer, sizeof buffer - 1);
        EXPECT_EQ(::PathAddBackslashA(buffer), buffer + test.expected.size()) << test.path;
        EXPECT_EQ(buffer, test.expected);
    }
    EXPECT_EQ(::PathAddBackslashA(nullptr), nullptr);
}

TEST(SeamPath, AddBackslashLeavesAPathThatHasNoRoom)
{
    char buffer[MAX_PATH + 40] = "";
    std::string const path(MAX_PATH, 'a');
    path.copy(buffer, sizeof buffer - 1);
    EXPECT_EQ(::PathAddBackslashA(buffer), nullptr);
    EXPECT_EQ(buffer, path);
}

} // namespace
