// Where companion libraries are found.
#include "quarn/platform/guards.h"
#include "quarn/platform/module_state.h"
#include "quarn/platform/path_parts.h"
#include "quarn/platform/version_info.h"
#include "quarn/platform/win32_api.h"
#include "quarn/platform/win32_library.h"

#include <string>
#include <string_view>

namespace Win32Quarn {

using Quarn::detail::PathSeparator;

namespace {

constinit bool g_searchPathExtended = false;

std::string ProcessPath()
{
    std::string path;
    DWORD size = ::GetEnvironmentVariableA("PATH", nullptr, 0);
    while (size > path.size()) { // the size that it takes, else the length
        path.resize(size);
        size = ::GetEnvironmentVariableA("PATH", path.data(), size);
    }
    path.resize(size);
    return path;
}

// Not the system's call: programs see PATH through the runtime library too.
void ExtendSearchPath()
{
    Quarn::string const common = GetCommonDirectory(Win32Library::LibrarySubdir);
    g_searchPathExtended = true;
    std::string path = ProcessPath();
    if (path.find(common) == path.npos) {
        path.append(1, Quarn::detail::PathListSeparator).append(common);
        ::_putenv_s("PATH", path.c_str());
    }
}

// Whether the name says where the file is.
bool NamesItsPlace(std::string_view fileName)
{
    return fileName.find_first_of(Quarn::detail::DriveMarks) != fileName.npos ||
           Quarn::detail::PathSeparators.find(fileName.front()) != std::string_view::npos;
}

// Absolute, where it fits: the system would look for a relative name in all of its own places.
std::string CurrentDirectory()
{
    char path[MAX_PATH];
    DWORD const length = ::GetCurrentDirectoryA(MAX_PATH, path);
    return length > 0 && length < MAX_PATH ? std::string(path, length) : ".";
}

// Null also where there is no such folder.
HINSTANCE LoadFrom(std::string const& folder, std::string const& fileName)
{
    return !folder.empty() ? ::LoadLibraryA((folder + PathSeparator + fileName).c_str()) : nullptr;
}

} // namespace

HINSTANCE LoadLib(Quarn::string const& fileName)
{
    MutexWrapper const guard(Quarn::detail::LoadingMutex());
    if (fileName.empty()) {
        return nullptr;
    }
    if (!g_searchPathExtended) {
        ExtendSearchPath();
    }
    if (NamesItsPlace(fileName)) {
        return ::LoadLibraryA(fileName.c_str());
    }
    HINSTANCE module = LoadFrom(CurrentDirectory(), fileName);
    if (module == nullptr) {
        module = LoadFrom(GetCommonDirectory(Win32Library::LibrarySubdir), fileName);
    }
    return module != nullptr ? module : ::LoadLibraryA(fileName.c_str());
}

Quarn::string GetCommonDirectory(Quarn::string const& /*subdir*/)
{
    char folder[MAX_PATH];
    if (FAILED(::SHGetFolderPathA(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, folder)) ||
        ::PathAddBackslashA(folder) == nullptr) {
        return {};
    }
    return folder + CVersionInfo().GetCompanyName();
}

} // namespace Win32Quarn
