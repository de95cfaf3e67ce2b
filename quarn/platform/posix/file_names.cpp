// Files by their names on POSIX: attributes, deleting, moving, copying, linking.
#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/files.h"

#include <cerrno>
#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

constexpr std::size_t CopyStep = std::size_t{64} * 1024;

// Makes the names in the path's folder durable. A folder that this process may not read, or a file system
// that has no such call, cannot be synced; only a device's refusal counts as a failure.
bool SyncFolder(char const* path)
{
    FolderOf const folder(path);
    Descriptor const descriptor = Open(*folder.Path() != '\0' ? folder.Path() : ".", O_RDONLY | O_DIRECTORY);
    return !descriptor || ::fsync(descriptor.Get()) == 0 ||
           (errno != EIO && errno != ENOSPC && errno != EDQUOT);
}

bool IsDirectory(char const* path)
{
    struct ::stat status;
    return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// rename() that never overwrites; a hard link does it where the file system lacks the call, and where it has
// no links either, an empty file takes the name first.
int RenameNoReplace(char const* from, char const* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
    bool const isLinked = ::link(from, to) == 0;
    if (!isLinked && errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) {
        return -1;
    }
    if (!isLinked && !Open(to, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR)) {
        return -1;
    }
    if ((isLinked ? ::unlink(from) : std::rename(from, to)) != 0) {
        int const error = errno;
        ::unlink(to);
        errno = error;
        return -1;
    }
    return 0;
}

// Copies the bytes and the time of writing into an empty file.
bool CopyContents(Descriptor const& from, Descriptor const& to, struct ::stat const& status,
                  std::vector<char>& step)
{
    for (;;) {
        long const count = ReadAll(from.Get(), step.data(), step.size());
        if (count < 0) {
            return false;
        }
        auto const size = static_cast<std::size_t>(count);
        if (WriteAll(to.Get(), step.data(), size) != size) {
            return false;
        }
        if (size < step.size()) {
            break;
        }
    }
    ::timespec const times[] = {{0, UTIME_OMIT}, status.st_mtim};
    return ::futimens(to.Get(), times) == 0;
}

BOOL Copy(char const* from, char const* to, bool failIfExists)
{
    std::vector<char> step(CopyStep); // before there is a file that could stay behind
    Descriptor const source = Open(from, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct ::stat status;
    if (!source || ::fstat(source.Get(), &status) != 0) {
        return FailPath(from);
    }
    if (!S_ISREG(status.st_mode)) {
        return Fail(ERROR_ACCESS_DENIED);
    }
    mode_t const mode = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    Descriptor target = Open(to, O_WRONLY | O_CREAT | O_EXCL, static_cast<int>(mode));
    bool const created = static_cast<bool>(target);
    if (!created && errno == EEXIST && !failIfExists) {
        target = Open(to, O_WRONLY | O_NONBLOCK | O_NOCTTY);
    }
    if (!target) {
        return FailPath(to, ERROR_FILE_EXISTS);
    }
    if (!created) {
        struct ::stat old;
        if (::fstat(target.Get(), &old) != 0) {
            return FailErrno();
        }
        if (old.st_dev == status.st_dev && old.st_ino == status.st_ino) {
            return Fail(ERROR_SHARING_VIOLATION);
        }
        if (!S_ISREG(old.st_mode) || IsReadOnly(old)) {
            return Fail(ERROR_ACCESS_DENIED);
        }
        if (::ftruncate(target.Get(), 0) != 0) {
            return FailErrno();
        }
    }
    if (!CopyContents(source, target, status, step)) {
        FailErrno();
        if (created) {
            ::unlink(to);
        }
        return FALSE;
    }
    return TRUE;
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

DWORD GetFileAttributesA(char const* path)
{
    path = PathOrEmpty(path);
    struct ::stat status;
    if (::stat(path, &status) != 0) {
        FailPath(path);
        return INVALID_FILE_ATTRIBUTES;
    }
    return AttributesOf(status);
}

BOOL SetFileAttributesA(char const* path, DWORD attributes)
{
    path = PathOrEmpty(path);
    struct ::stat status;
    if (::stat(path, &status) != 0) {
        return FailPath(path);
    }
    bool const readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    if (!S_ISREG(status.st_mode) || IsReadOnly(status) == readOnly) {
        return TRUE;
    }
    constexpr mode_t All = S_IWUSR | S_IWGRP | S_IWOTH;
    mode_t const mode = status.st_mode & 07777;
    return ::chmod(path, readOnly ? mode & ~All : mode | S_IWUSR) == 0 ? TRUE : FailPath(path);
}

BOOL DeleteFileA(char const* path)
{
    path = PathOrEmpty(path);
    if (IsReadOnlyFile(path)) {
        return Fail(ERROR_ACCESS_DENIED);
    }
    return ::unlink(path) == 0 ? TRUE : FailPath(path);
}

BOOL MoveFileExA(char const* from, char const* to, DWORD flags)
{
    from = PathOrEmpty(from);
    to = PathOrEmpty(to);
    bool const replaces = (flags & MOVEFILE_REPLACE_EXISTING) != 0;
    if (replaces && (IsDirectory(to) || IsReadOnlyFile(to))) {
        struct ::stat status;
        return ::lstat(from, &status) == 0 ? Fail(ERROR_ACCESS_DENIED) : FailPath(from);
    }
    if ((replaces ? std::rename(from, to) : RenameNoReplace(from, to)) != 0) {
        struct ::stat status;
        // What is missing is the file, or else the folder of its new name.
        return FailPath(errno == ENOENT && ::lstat(from, &status) == 0 ? to : from);
    }
    if ((flags & MOVEFILE_WRITE_THROUGH) == 0) {
        return TRUE;
    }
    return SyncFolder(to) && SyncFolder(from) ? TRUE : FailErrno();
}

BOOL CopyFileA(char const* from, char const* to, BOOL failIfExists)
{
    return Guarded(FALSE, [&] { return Copy(from, to, failIfExists != FALSE); });
}

BOOL CreateHardLinkA(char const* name, char const* existing, _SECURITY_ATTRIBUTES* /*security*/)
{
    if (::linkat(AT_FDCWD, existing, AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0) {
        // On the device before anything that is done for the name's sake.
        BOOL const isFlushed = Guarded(FALSE, [&] { return SyncFolder(name) ? TRUE : FailErrno(); });
        if (isFlushed == FALSE) {
            ::unlink(name);
        }
        return isFlushed;
    }
    struct ::stat status;
    return FailPath(errno == ENOENT && ::stat(existing, &status) == 0 ? name : existing);
}

BOOL CreateDirectoryA(char const* path, _SECURITY_ATTRIBUTES* /*security*/)
{
    if (path != nullptr && ::mkdir(path, 0777) == 0) {
        return TRUE;
    }
    // A folder cannot be the missing file.
    return path == nullptr || errno == ENOENT ? Fail(ERROR_PATH_NOT_FOUND) : FailPath(path);
}
