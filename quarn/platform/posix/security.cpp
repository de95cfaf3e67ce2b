// Carrying a file's permissions to another file on POSIX.
#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/files.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include <sys/xattr.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

constexpr char const* AclName = "system.posix_acl_access";

// The descriptor: this record, then the access control list as the system keeps it.
struct Permissions
{
    static constexpr std::uint32_t Mark = 0x50535551;

    std::uint32_t mark;
    std::uint32_t mode;
    std::uint32_t owner;
    std::uint32_t group;
    std::uint32_t listSize;
};

// The file's list, empty where it has none or the file system knows none; false after an error.
bool ReadList(char const* path, std::vector<char>& list)
{
    for (;;) {
        ssize_t const size = ::getxattr(path, AclName, nullptr, 0);
        if (size < 0) {
            return errno == ENODATA || errno == EOPNOTSUPP;
        }
        list.resize(static_cast<std::size_t>(size));
        ssize_t const read = ::getxattr(path, AclName, list.data(), list.size());
        if (read >= 0) {
            list.resize(static_cast<std::size_t>(read));
            return true;
        }
        if (errno != ERANGE) { // else it has grown
            list.clear();
            return errno == ENODATA;
        }
    }
}

bool WriteList(char const* path, void const* list, std::size_t size)
{
    if (size != 0) {
        return ::setxattr(path, AclName, list, size, 0) == 0;
    }
    return ::removexattr(path, AclName) == 0 || errno == ENODATA || errno == EOPNOTSUPP;
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

BOOL GetFileSecurityA(char const* path, SECURITY_INFORMATION /*information*/, PSECURITY_DESCRIPTOR descriptor,
                      DWORD size, DWORD* needed)
{
    return Guarded(FALSE, [&] {
        struct ::stat status;
        std::vector<char> list;
        *needed = 0;
        if (::stat(path, &status) != 0 || !ReadList(path, list)) {
            return FailPath(path);
        }
        *needed = static_cast<DWORD>(sizeof(Permissions) + list.size());
        if (size < *needed) {
            return Fail(ERROR_INSUFFICIENT_BUFFER);
        }
        Permissions const permissions{Permissions::Mark, status.st_mode & 07777, status.st_uid, status.st_gid,
                                      static_cast<std::uint32_t>(list.size())};
        std::memcpy(descriptor, &permissions, sizeof permissions);
        if (!list.empty()) {
            std::memcpy(static_cast<char*>(descriptor) + sizeof permissions, list.data(), list.size());
        }
        return TRUE;
    });
}

BOOL SetFileSecurityA(char const* path, SECURITY_INFORMATION information, PSECURITY_DESCRIPTOR descriptor)
{
    Permissions permissions{};
    if (descriptor != nullptr) {
        std::memcpy(&permissions, descriptor, sizeof permissions);
    }
    if (permissions.mark != Permissions::Mark) {
        return Fail(ERROR_INVALID_SECURITY_DESCR);
    }
    bool const setsOwner = (information & OWNER_SECURITY_INFORMATION) != 0;
    bool const setsGroup = (information & GROUP_SECURITY_INFORMATION) != 0;
    if ((setsOwner || setsGroup) && ::chown(path, setsOwner ? permissions.owner : static_cast<uid_t>(-1),
                                            setsGroup ? permissions.group : static_cast<gid_t>(-1)) != 0) {
        return FailPath(path);
    }
    if ((information & DACL_SECURITY_INFORMATION) == 0) {
        return TRUE;
    }
    struct ::stat status;
    if (::stat(path, &status) != 0) {
        return FailPath(path);
    }
    mode_t mode = permissions.mode;
    std::size_t listSize = permissions.listSize;
    if (status.st_gid != permissions.group) {
        // The rights were meant for another group; the list names its rights too.
        mode = (mode & ~static_cast<mode_t>(S_IRWXG | S_ISGID)) | ((mode & S_IRWXO) << 3);
        listSize = 0;
    }
    if (status.st_uid != permissions.owner) {
        mode &= ~static_cast<mode_t>(S_ISUID);
    }
    // The list first: removing one leaves its mask in the group's place, and the mode corrects that.
    void const* const list = static_cast<char const*>(descriptor) + sizeof permissions;
    if (!WriteList(path, list, listSize) || ::chmod(path, mode) != 0) {
        return FailPath(path);
    }
    return TRUE;
}
