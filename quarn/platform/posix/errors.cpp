#include "quarn/platform/posix/errors.h"

#include <cerrno>
#include <string_view>

#include <sys/stat.h>

namespace {

thread_local DWORD t_lastError = ERROR_SUCCESS;

} // namespace

DWORD GetLastError()
{
    return t_lastError;
}

void SetLastError(DWORD code)
{
    t_lastError = code;
}

namespace Quarn::detail {

BOOL Fail(DWORD code)
{
    t_lastError = code;
    return FALSE;
}

DWORD ErrorFromErrno(int error)
{
    switch (error) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case EACCES:
    case EPERM:
    case EISDIR:
    case ENXIO:
        return ERROR_ACCESS_DENIED;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EXDEV:
        return ERROR_NOT_SAME_DEVICE;
    case EROFS:
        return ERROR_WRITE_PROTECT;
    case EBUSY:
    case ETXTBSY:
        return ERROR_SHARING_VIOLATION;
    case ENOSYS:
    case EOPNOTSUPP:
        return ERROR_NOT_SUPPORTED;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case EFBIG:
        return ERROR_FILE_TOO_LARGE;
    case EIO:
        return ERROR_IO_DEVICE;
    case EMLINK:
        return ERROR_TOO_MANY_LINKS;
    case ELOOP:
        return ERROR_CANT_RESOLVE_FILENAME;
    default:
        return ERROR_GEN_FAILURE;
    }
}

FolderOf::FolderOf(char const* path)
{
    std::string_view folder = path;
    folder = folder.substr(0, folder.find_last_not_of('/') + 1);
    folder = folder.substr(0, folder.find_last_of('/') + 1);
    if (folder.size() < sizeof m_path) {
        folder.copy(m_path, folder.size());
    }
}

BOOL FailErrno()
{
    return Fail(ErrorFromErrno(errno));
}

BOOL FailPath(char const* path, DWORD existing)
{
    int const error = errno;
    if (error == EEXIST) {
        return Fail(existing);
    }
    if (error == EFAULT) { // a null path
        return Fail(ERROR_PATH_NOT_FOUND);
    }
    if (error == ENOENT) {
        FolderOf const folder(path);
        struct ::stat status;
        bool const missing = *folder.Path() != '\0' && ::stat(folder.Path(), &status) != 0;
        return Fail(missing || *path == '\0' ? ERROR_PATH_NOT_FOUND : ERROR_FILE_NOT_FOUND);
    }
    return Fail(ErrorFromErrno(error));
}

} // namespace Quarn::detail
