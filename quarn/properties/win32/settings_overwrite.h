// The one way of saving that is not atomic: for a file in a folder where this process may create nothing.
#pragma once

#include "quarn/properties/win32/settings_path.h"

#include <string_view>

namespace Quarn::detail {

// Overwrites the file where it stands. Its old content is first copied, flushed to the device, to the user's
// own data folder under a backup's name; the copy goes away once the file is whole again. False where the
// file could not be saved: the old content has then been put back, or, where that failed too, is in the copy.
// Throws std::bad_alloc.
bool OverwriteSettingsFile(SettingsPath const& path, std::string_view content);

} // namespace Quarn::detail
