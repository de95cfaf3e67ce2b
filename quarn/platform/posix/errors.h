// (private) How the seam reports: the one translation from errno to the system's codes, and the guard that
// keeps exceptions inside.
#pragma once

#include "quarn/platform/win32_api.h"

#include <climits>
#include <new>
#include <utility>

namespace Quarn::detail {

// Sets the thread's code and returns false, for `return Fail(...)`.
BOOL Fail(DWORD code);

// The code for an errno value.
DWORD ErrorFromErrno(int error);

// Fail with the code for the current errno.
BOOL FailErrno();

// The same for an operation on a path: a missing folder (ERROR_PATH_NOT_FOUND) is told from a missing file
// (ERROR_FILE_NOT_FOUND), and what exists already is reported as `existing`.
BOOL FailPath(char const* path, DWORD existing = ERROR_ALREADY_EXISTS);

// The folder in a path, up to and with the last '/' before the last component; empty for a name alone, and
// for what no system call takes. Needs no memory.
class FolderOf
{
public:
    explicit FolderOf(char const* path);
    char const* Path() const { return m_path; }

private:
    char m_path[PATH_MAX] = "";
};

// What `operation` returns, or `failure` with ERROR_NOT_ENOUGH_MEMORY when there is no memory for it.
template<typename Result, typename Operation>
Result Guarded(Result failure, Operation&& operation) noexcept
{
    try {
        return std::forward<Operation>(operation)();
    } catch (std::bad_alloc const&) {
        ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}

} // namespace Quarn::detail
