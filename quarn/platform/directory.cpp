#include "quarn/platform/directory.h"

#include "quarn/platform/path_parts.h"
#include "quarn/platform/win32_api.h"

#include <algorithm>

namespace Win32Quarn {

bool CreateDirectoryA(char const* path)
{
    using Quarn::detail::PathSeparator;
    Quarn::detail::PathParts const parts = Quarn::detail::SplitPath(path != nullptr ? path : "");
    std::string directory = parts.directory + parts.name;
    std::replace(directory.begin(), directory.end(), '/', PathSeparator);
    if (directory.empty() || directory.back() != PathSeparator) {
        directory += PathSeparator;
    }
    for (std::size_t end = directory.find(PathSeparator, 1); end != directory.npos;
         end = directory.find(PathSeparator, end + 1)) {
        std::string const level = parts.drive + directory.substr(0, end + 1);
        if (!::CreateDirectoryA(level.c_str(), nullptr) && ::GetLastError() != ERROR_ALREADY_EXISTS) {
            return false;
        }
    }
    return true;
}

} // namespace Win32Quarn
