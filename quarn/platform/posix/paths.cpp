// Paths as texts on POSIX.
#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/files.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <string_view>

#include <unistd.h>

namespace Quarn::detail {

namespace {

// The current directory; empty after a failure.
std::string CurrentDirectory()
{
    char path[PATH_MAX];
    if (::getcwd(path, sizeof path) == nullptr) {
        FailPath("/");
        return {};
    }
    return path;
}

// Takes the last component off an absolute path, unless a symbolic link stands there: then ".." means the
// parent of what it leads to, and has been kept.
bool RemoveLast(std::string& path)
{
    struct ::stat status;
    if (path.ends_with("/..")) {
        return false;
    }
    if (::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) {
        return false;
    }
    path.erase(path.find_last_of('/'));
    return true;
}

// The path behind an absolute one without a last '/'.
std::string Append(std::string full, std::string_view path)
{
    while (!path.empty()) {
        std::size_t const end = path.find('/');
        std::string_view const part = path.substr(0, end);
        path.remove_prefix(end == path.npos ? path.size() : end + 1);
        bool const isParent = part == "..";
        if (part.empty() || part == "." || (isParent && (full.empty() || RemoveLast(full)))) {
            continue;
        }
        full.append("/").append(part);
    }
    return full;
}

} // namespace

std::uint32_t PutPath(std::string const& path, std::uint32_t size, char* buffer)
{
    if (path.size() >= size) {
        return static_cast<std::uint32_t>(path.size() + 1);
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return static_cast<std::uint32_t>(path.size());
}

} // namespace Quarn::detail

using namespace Quarn::detail;

DWORD GetCurrentDirectoryA(DWORD size, char* buffer)
{
    return Guarded(DWORD{0}, [&] {
        std::string const path = CurrentDirectory();
        return path.empty() ? 0 : PutPath(path, size, buffer);
    });
}

DWORD GetFullPathNameA(char const* path, DWORD size, char* buffer, char** filePart)
{
    if (path == nullptr || *path == '\0') {
        Fail(path == nullptr ? ERROR_INVALID_PARAMETER : ERROR_INVALID_NAME);
        return 0;
    }
    return Guarded(DWORD{0}, [&]() -> DWORD {
        std::string base = *path == '/' ? "/" : CurrentDirectory();
        if (base.empty()) {
            return 0;
        }
        std::string full = Append(base == "/" ? "" : std::move(base), path);
        if (full.empty() || path[std::strlen(path) - 1] == '/') {
            full += '/';
        }
        DWORD const length = PutPath(full, size, buffer);
        if (filePart != nullptr && length < size) {
            char* const name = std::strrchr(buffer, '/') + 1;
            *filePart = *name != '\0' ? name : nullptr;
        }
        return length;
    });
}
