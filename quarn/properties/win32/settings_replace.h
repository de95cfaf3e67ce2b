// Putting a new content in the place of a settings file without ever losing the old one.
#pragma once

#include "quarn/text/string.h"

#include <string_view>

namespace Quarn::detail {

// Makes `content` the content of the file: written to a temporary file beside it, flushed to the device and
// moved over it, with the old file's permissions. A reader sees the old file or the new one, whole; a saver
// that dies leaves one of the two. Only where no file may be created in the folder, the file itself is
// overwritten, after the old content has been copied to the user's own data folder.
//
// `keepOld` asks for a second name for the old file, after the pattern of backups, before it is replaced; it
// is cleared once that name is there. False where the file could not be saved: it is then as it was, or holds
// the new content and only its folder could not be flushed. Saves of one file wait for each other, between
// processes too, for 5 s at most. Throws std::bad_alloc.
bool ReplaceSettingsFile(string const& path, std::string_view content, bool& keepOld);

} // namespace Quarn::detail
