// Directories with their parents. Any thread may call the function.
#pragma once

#include "quarn/export.h"

namespace Win32Quarn {

// Creates a directory and all of its parents that are missing. The path is divided into drive, directory,
// name and extension as on Windows, and the extension is dropped, deliberately: of "a/data.old" and
// "a/data.new" the directory "a/data" is made, of "a/.hidden" just "a". On Windows '/' and '\' separate;
// elsewhere '/' alone does, and there is no drive. Null and the empty path have no directory to make: true.
//
// True when every level was created or existed, as a file too where it is the last one. At the first level
// that can be neither it stops, with false; the levels made by then stay, and ::GetLastError() tells why.
QUARN_API bool CreateDirectoryA(char const* path);

} // namespace Win32Quarn
