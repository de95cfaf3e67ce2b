// The shell's folders and path helpers on POSIX.
#include "quarn/platform/posix/errors.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

// The absolute path in the environment; empty where there is none that counts.
std::string PathVariable(char const* name)
{
    // secure_getenv: whoever starts a program that runs with other rights must not choose its folders.
    char const* const value = ::secure_getenv(name);
    return value != nullptr && *value == '/' ? value : "";
}

std::string HomeFolder()
{
    std::string home = PathVariable("HOME");
    if (!home.empty()) {
        return home;
    }
    std::vector<char> buffer(1024);
    ::passwd entry;
    ::passwd* found = nullptr;
    while (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    return found != nullptr && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

// Whether the error says that there is no such folder, rather than that nobody can tell now.
bool MeansNone(int error)
{
    return error == ENOENT || error == ENOTDIR || error == EACCES || error == EPERM || error == EROFS ||
           error == ELOOP || error == ENAMETOOLONG;
}

// What cannot be told is taken for a folder: looking elsewhere would show another store, an empty one.
bool IsFolder(std::string const& path)
{
    struct ::stat status;
    return ::stat(path.c_str(), &status) == 0 ? S_ISDIR(status.st_mode) : !MeansNone(errno);
}

// The folder that the variable names, else the one under the home folder, which must exist: nobody makes
// homes.
std::string UserFolder(char const* variable, char const* underHome)
{
    std::string folder = PathVariable(variable);
    if (folder.empty()) {
        folder = HomeFolder();
        if (!IsFolder(folder)) {
            return {};
        }
        folder.append("/").append(underHome);
    }
    return folder;
}

// Makes the folder and its missing parents, for the user alone.
bool MakeFolder(std::string const& path)
{
    for (std::size_t end = 1; end != path.npos;) {
        end = path.find('/', end + 1);
        if (::mkdir(path.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST && !MeansNone(errno)) {
            return true; // as full as a disk may be now, this is its place
        }
    }
    return IsFolder(path);
}

// Empty where there is none.
std::string FindFolder(int folder)
{
    std::string path;
    switch (folder) {
    case CSIDL_PERSONAL:
        path = HomeFolder();
        break;
    case CSIDL_APPDATA:
        path = UserFolder("XDG_CONFIG_HOME", ".config");
        break;
    case CSIDL_LOCAL_APPDATA:
        path = UserFolder("XDG_DATA_HOME", ".local/share");
        break;
    case CSIDL_COMMON_APPDATA:
        path = PathVariable("QUARNUTIL_MACHINE_DIR");
        if (path.empty()) {
            path = "/var/lib/quarnutil";
        }
        break;
    case CSIDL_PROGRAM_FILES:
        path = "/opt";
        break;
    default: // common documents
        break;
    }
    // Folders come without a trailing separator.
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    if (path.size() >= MAX_PATH) {
        return {};
    }
    bool const isMade = folder == CSIDL_APPDATA || folder == CSIDL_LOCAL_APPDATA;
    return !path.empty() && (IsFolder(path) || (isMade && MakeFolder(path))) ? path : std::string();
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

HRESULT SHGetFolderPathA(HWND /*owner*/, int folder, HANDLE /*token*/, DWORD /*flags*/, char* path)
{
    *path = '\0';
    switch (folder) {
    case CSIDL_PERSONAL:
    case CSIDL_APPDATA:
    case CSIDL_LOCAL_APPDATA:
    case CSIDL_COMMON_APPDATA:
    case CSIDL_PROGRAM_FILES:
    case CSIDL_COMMON_DOCUMENTS:
        break;
    default:
        return E_INVALIDARG;
    }
    return Guarded(E_OUTOFMEMORY, [&] {
        std::string const found = FindFolder(folder);
        std::memcpy(path, found.c_str(), found.size() + 1);
        return found.empty() ? E_FAIL : S_OK;
    });
}

char* PathAddBackslashA(char* path)
{
    if (path == nullptr) {
        return nullptr;
    }
    std::size_t const length = std::strlen(path);
    if (length >= MAX_PATH - 1) {
        return nullptr;
    }
    char* const end = path + length;
    if (length == 0 || end[-1] == '/') {
        return end;
    }
    end[0] = '/';
    end[1] = '\0';
    return end + 1;
}
