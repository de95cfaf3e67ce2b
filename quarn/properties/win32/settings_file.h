// A settings file by its path, wherever it lies: whether it would load and, if not, what stands against it
// and where; its backup and its restoring. For programs that look after the files of others; an application
// has its store (properties/win32/property_stores.h).
//
// Nothing is thrown or reported beyond the results. Any thread may call the functions.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <cstdint>

namespace Quarn::Win32 {

// What XMLPropPersist::Populate would make of a file.
struct SettingsReport
{
    // How much of a file loads.
    enum Result
    {
        Loads,       // all of it
        LoadsInPart, // Populate is true, but something of the file is not in the collection
        DoesNotLoad, // Populate is false
    };

    Result result = DoesNotLoad; // how much of this one does
    // The first thing that is not loaded, in English or as the XML library words it; empty for Loads.
    Quarn::string reason;
    // The line where that is, counted from 1: where the reader stood when it met it. 0 where there is no
    // place, as for a missing file.
    std::uint64_t line = 0;
    std::uint64_t column = 0; // the column there, counted likewise
};

// Reads the file as XMLPropPersist::Populate does, and keeps nothing.
QUARN_API SettingsReport CheckSettingsFile(Quarn::string const& path) noexcept;

// Copies the file, with its permissions, to a backup beside it and stores the backup's path, which is made as
// by QuarnProperties::BackupXML; the copy gets its name when it is complete and on the device. The file need
// not be one that loads. False, with `backupPath` as it was and no file made, where there is no file, where
// it cannot be read or is longer than a settings document can be, where nothing can be created beside it,
// where the backup's path has 260 characters or more and where a backup of this second exists.
QUARN_API bool BackupSettingsFile(Quarn::string const& path, Quarn::string& backupPath) noexcept;

// Puts the backup's content in the place of the file, which keeps its permissions; in one step, so that there
// is always the old file or the new one. The backup stays. False, and nothing has changed, where the backup
// cannot be loaded or is the file itself, and where the file is missing or could not be deleted.
QUARN_API bool RestoreSettingsFile(Quarn::string const& path, Quarn::string const& backupPath) noexcept;

} // namespace Quarn::Win32
