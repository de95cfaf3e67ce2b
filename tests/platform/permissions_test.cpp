// Carrying permissions from file to file through the seam, the same on both systems.
#include "platform/scratch_folder.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr SECURITY_INFORMATION List = DACL_SECURITY_INFORMATION;
constexpr SECURITY_INFORMATION All = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | List;

DWORD SizeOf(std::string const& path)
{
    DWORD needed = 0;
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::GetFileSecurityA(path.c_str(), All, nullptr, 0, &needed)); }),
              ERROR_INSUFFICIENT_BUFFER);
    return needed;
}

TEST(SeamPermissions, TheDescriptorNegotiatesItsSize)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a");
    DWORD const size = SizeOf(path);
    ASSERT_GT(size, 0U);
    std::vector<std::max_align_t> descriptor(size / sizeof(std::max_align_t) + 1);
    DWORD needed = 0;
    EXPECT_FALSE(::GetFileSecurityA(path.c_str(), All, descriptor.data(), size - 1, &needed));
    EXPECT_EQ(needed, size);
    EXPECT_TRUE(::GetFileSecurityA(path.c_str(), All, descriptor.data(), size, &needed));
    EXPECT_EQ(needed, size);
}

TEST(SeamPermissions, TheDescriptorGoesToAnotherFile)
{
    ScratchFolder const folder;
    std::string const from = folder.Make("a");
    std::string const to = folder.Make("b");
    DWORD size = SizeOf(from);
    std::vector<std::max_align_t> descriptor(size / sizeof(std::max_align_t) + 1);
    ASSERT_TRUE(::GetFileSecurityA(from.c_str(), All, descriptor.data(), size, &size));
    EXPECT_TRUE(::SetFileSecurityA(to.c_str(), List, descriptor.data()));
    EXPECT_EQ(ContentOf(to), "content");
    EXPECT_EQ(ErrorOf([&] {
                  EXPECT_FALSE(::SetFileSecurityA((folder / "none").c_str(), List, descriptor.data()));
              }),
              ERROR_FILE_NOT_FOUND);
}

TEST(SeamPermissions, MissingFilesAndForeignDescriptorsAreRefused)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a");
    DWORD needed = 0;
    std::vector<std::max_align_t> junk(64);
    auto const size = static_cast<DWORD>(junk.size() * sizeof(std::max_align_t));
    EXPECT_EQ(ErrorOf([&] {
                  EXPECT_FALSE(
                      ::GetFileSecurityA((folder / "none").c_str(), List, junk.data(), size, &needed));
              }),
              ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(::SetFileSecurityA(path.c_str(), List, nullptr));
    EXPECT_FALSE(::SetFileSecurityA(path.c_str(), List, junk.data()));
}

} // namespace
