// Backups of a settings file: second names beside it, "_" and the time in hexadecimal before the extension.
#pragma once

#include "quarn/text/string.h"

namespace Quarn::detail {

// Copies the file, with its permissions, to a backup beside `path`, and writes the backup's path into
// `backupPath`, which has MAX_PATH bytes. The copy gets its name when it is complete and on the device.
// False, with the buffer as it was and no file made, where there is no file, where it cannot be read or is
// longer than a settings document can be, where nothing can be created beside it, where the backup's path
// does not fit, where a backup of this second exists, and for null.
bool BackupSettingsFile(string const& path, char* backupPath) noexcept;

// Puts the backup's content in the place of the file, which keeps its permissions; in one step, so that there
// is always the old file or the new one. The backup stays. False, and nothing has changed, where the backup
// cannot be loaded or is the file itself, and where the file is missing or could not be deleted.
bool RestoreSettingsFile(string const& path, string const& backupPath) noexcept;

// Deletes the file and all its backups, as far as that is possible: all files beside it whose names begin as
// its own does and have the same extension, but for those that begin with a dot.
void RemoveSettingsFiles(string const& path) noexcept;

} // namespace Quarn::detail
