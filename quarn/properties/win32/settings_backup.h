// The end of a settings file with its backups; properties/win32/settings_file.h makes them and restores them.
#pragma once

#include "quarn/text/string.h"

namespace Quarn::detail {

// Deletes the file and all its backups, as far as that is possible: all files beside it whose names begin as
// its own does and have the same extension, but for those that begin with a dot.
void RemoveSettingsFiles(string const& path) noexcept;

} // namespace Quarn::detail
