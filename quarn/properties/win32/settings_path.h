// Where a settings file really lies, and the names of the files that come and go beside it.
#pragma once

#include "quarn/text/string.h"

#include <cstdint>

namespace Quarn::detail {

struct SettingsPath
{
    string folder; // up to and with the last separator
    string base;   // the file's name up to its last dot
    string extension;

    string Whole() const { return folder + base + extension; }
};

// There is nothing under the path. What cannot be told, as on a broken disk, is taken for a file.
bool IsMissing(string const& path) noexcept;

// The path as it stands, divided. Throws std::bad_alloc.
SettingsPath DivideSettingsPath(string const& path);

// The file that `path` leads to, symbolic links followed, or where it would come to lie. False where the
// folder is missing, the file cannot be opened at all or, on Windows, a link leads nowhere. Throws
// std::bad_alloc.
bool ResolveSettingsPath(string const& path, SettingsPath& resolved);

// The name of the lock that serialises the saves of a file: the same for every way to it.
string LockName(SettingsPath const& path);

// Temporary files of this file's savers; `number` makes them differ within the process. The names do not
// begin as the file's does, so they are never taken for backups.
string TemporaryName(SettingsPath const& path, unsigned int number);
// A search pattern for those of all savers.
string TemporaryPattern(SettingsPath const& path);

// The present time as backups are stamped: seconds since 2008-04-16 14:44:30 UTC, modulo 2^32.
std::uint32_t BackupStamp();
// The file's name as a backup of that stamp has it, in `folder`.
string BackupName(string const& folder, SettingsPath const& path, std::uint32_t stamp);

} // namespace Quarn::detail
