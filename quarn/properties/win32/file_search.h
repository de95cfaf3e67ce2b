// The files of a folder.
#pragma once

#include "quarn/text/string.h"

#include <vector>

namespace Quarn::detail {

// The names, without their folder, of the files (not folders) that match a search pattern of the platform.
// None where the folder cannot be read. Throws std::bad_alloc.
std::vector<string> FindFiles(string const& pattern);

} // namespace Quarn::detail
