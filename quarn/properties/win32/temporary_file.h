// A file that is made beside a settings file, to be put in its place or beside it under a name that lasts.
#pragma once

#include "quarn/properties/win32/file_handle.h"
#include "quarn/properties/win32/save_lock.h"
#include "quarn/properties/win32/settings_path.h"

#include <string_view>

namespace Quarn::detail {

// Deleted with its owner unless it has been moved away. Operations throw std::bad_alloc.
class TemporaryFile
{
public:
    // A new, empty file in the folder of `path`, under one of its temporary names.
    explicit TemporaryFile(SettingsPath const& path) : m_file(Create(path)) {}
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile();

    // The error of the creation, 0 where the file is there.
    DWORD Error() const { return m_error; }

    // Before anything is written: what only some may read is never readable by others.
    bool TakePermissionsOf(string const& name);
    // Writes the content, or that of another file, flushes it to the device and closes the file; once.
    bool Write(std::string_view content);
    bool TakeContentOf(string const& name);
    // What has been written becomes a read-only file.
    bool MakeReadOnly();

    // Moves the file, durably, over another one, or to a name that is free. Another program may hold one of
    // them for a moment: that is waited for, 2 s at most. A file that has moved, but perhaps not durably, is
    // a failure: the other file is gone then, the free name free again.
    bool MoveOver(string const& name);
    bool MoveTo(string const& name);
    // The file still has its temporary name.
    bool IsThere() const;

private:
    HANDLE Create(SettingsPath const& path);
    bool Move(string const& name, DWORD flags);

    string m_name;
    DWORD m_error = ERROR_SUCCESS;
    bool m_exists = false;
    FileHandle m_file;
};

// For the owner of the lock, while nobody does without: removes the temporary files of dead savers. Throws
// std::bad_alloc.
void RemoveTemporaries(SettingsPath const& path, SaveLock const& lock);

} // namespace Quarn::detail
