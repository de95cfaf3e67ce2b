// What a file's permissions are on POSIX, and how they go to another file.
#include "platform/scratch_folder.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr SECURITY_INFORMATION List = DACL_SECURITY_INFORMATION;
constexpr SECURITY_INFORMATION Group = GROUP_SECURITY_INFORMATION;
constexpr SECURITY_INFORMATION Owner = OWNER_SECURITY_INFORMATION;

BOOL Carry(std::string const& from, std::string const& to, SECURITY_INFORMATION information)
{
    DWORD size = 0;
    ::GetFileSecurityA(from.c_str(), information, nullptr, 0, &size);
    std::vector<std::max_align_t> descriptor(size / sizeof(std::max_align_t) + 1);
    EXPECT_TRUE(::GetFileSecurityA(from.c_str(), information, descriptor.data(), size, &size));
    return ::SetFileSecurityA(to.c_str(), information, descriptor.data());
}

struct ::stat StatusOf(std::string const& path)
{
    struct ::stat status
    {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status;
}

unsigned ModeOf(std::string const& path)
{
    return StatusOf(path).st_mode & 07777;
}

TEST(PosixPermissions, TheModeIsCarried)
{
    ScratchFolder const folder;
    std::string const from = folder.Make("a");
    std::string const to = folder.Make("b");
    for (unsigned const mode : {0644U, 0600U, 0660U, 0777U, 0400U, 0604U}) {
        ASSERT_EQ(::chmod(from.c_str(), mode), 0);
        EXPECT_TRUE(Carry(from, to, List | Group | Owner));
        EXPECT_EQ(ModeOf(to), mode);
    }
    EXPECT_EQ(StatusOf(to).st_uid, StatusOf(from).st_uid);
}

TEST(PosixPermissions, TheGroupsRightsDoNotGoToAnotherGroup)
{
    ScratchFolder const folder;
    std::string const from = folder.Make("a");
    std::string const to = folder.Make("b");
    if (::chown(from.c_str(), static_cast<uid_t>(-1), 65534) != 0) {
        GTEST_SKIP() << "needs the right to give a file to another group";
    }
    ASSERT_EQ(::chmod(from.c_str(), 0664), 0);
    EXPECT_TRUE(Carry(from, to, List));
    EXPECT_EQ(ModeOf(to), 0644U);
    EXPECT_TRUE(Carry(from, to, Group | List));
    EXPECT_EQ(ModeOf(to), 0664U);
    EXPECT_EQ(StatusOf(to).st_gid, 65534U);
}

// A list in the system's own form: version 2, then entries of tag, rights and id.
std::vector<unsigned char> MakeList(unsigned userRights)
{
    std::vector<unsigned char> list{2, 0, 0, 0};
    auto const add = [&list](unsigned tag, unsigned rights, std::uint32_t id) {
        for (unsigned const value : {tag, rights}) {
            list.push_back(static_cast<unsigned char>(value));
            list.push_back(0);
        }
        for (int shift = 0; shift < 32; shift += 8) {
            list.push_back(static_cast<unsigned char>(id >> shift));
        }
    };
    constexpr std::uint32_t None = 0xFFFFFFFF;
    add(0x01, 6, None);           // the owner
    add(0x02, userRights, 12345); // a user
    add(0x04, 0, None);           // the group
    add(0x10, 6, None);           // the mask
    add(0x20, 0, None);           // all others
    return list;
}

std::vector<unsigned char> ListOf(std::string const& path)
{
    std::vector<unsigned char> list(1000);
    ssize_t const size = ::getxattr(path.c_str(), "system.posix_acl_access", list.data(), list.size());
    list.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return list;
}

TEST(PosixPermissions, TheAccessControlListIsCarriedAndTakenAway)
{
    ScratchFolder const folder;
    std::string const plain = folder.Make("plain");
    std::string const from = folder.Make("a");
    std::string const to = folder.Make("b");
    std::vector<unsigned char> const list = MakeList(6);
    if (::setxattr(from.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0) {
        GTEST_SKIP() << "needs a file system with access control lists";
    }
    EXPECT_TRUE(Carry(from, to, List));
    EXPECT_EQ(ListOf(to), list);
    EXPECT_EQ(ModeOf(to), ModeOf(from));
    ASSERT_EQ(::chmod(plain.c_str(), 0640), 0);
    EXPECT_TRUE(Carry(plain, to, List));
    EXPECT_EQ(ListOf(to).size(), 0U);
    EXPECT_EQ(ModeOf(to), 0640U);
}

} // namespace
