#include "quarn/properties/win32/settings_backup.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/file_handle.h"
#include "quarn/properties/win32/file_reading.h"
#include "quarn/properties/win32/file_search.h"
#include "quarn/properties/win32/save_lock.h"
#include "quarn/properties/win32/settings_file.h"
#include "quarn/properties/win32/settings_path.h"
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/temporary_file.h"
#include "quarn/properties/win32/xml_library.h"

#include <utility>

namespace Quarn::detail {

namespace {

bool CanBeLoaded(std::string_view document)
{
    XmlLibraryUse const library;
    PropertyCollection tree;
    if (!library.Started()) {
        return false;
    }
    ReadResult const result = ReadSettings(document, tree);
    return result == ReadResult::Whole || result == ReadResult::Partial;
}

bool CreateBackup(string const& path, string& backup)
{
    SettingsPath const parts = DivideSettingsPath(path);
    SettingsPath resolved;
    std::string content;
    if (!ResolveSettingsPath(path, resolved)) {
        return false;
    }
    SaveLock const lock(resolved);
    backup = BackupName(parts.folder, parts, BackupStamp());
    DWORD const attributes = ::GetFileAttributesA(path.c_str());
    if (backup.size() >= MAX_PATH || attributes == INVALID_FILE_ATTRIBUTES ||
        ::GetFileAttributesA(backup.c_str()) != INVALID_FILE_ATTRIBUTES || !ReadWholeFile(path, content)) {
        return false;
    }
    RemoveTemporaries(parts, lock);
    TemporaryFile temporary(parts);
    return temporary.Error() == ERROR_SUCCESS && temporary.TakePermissionsOf(path) &&
           temporary.Write(content) &&
           ((attributes & FILE_ATTRIBUTE_READONLY) == 0 || temporary.MakeReadOnly()) &&
           temporary.MoveTo(backup);
}

bool Restore(string const& path, string const& backupPath)
{
    if ((::GetFileAttributesA(path.c_str()) & Untouchable) != 0) {
        return false;
    }
    SettingsPath resolved;
    SettingsPath backup;
    std::string content;
    if (!ResolveSettingsPath(path, resolved) || !ResolveSettingsPath(backupPath, backup) ||
        resolved.Whole() == backup.Whole() || !ReadWholeFile(backupPath, content) || !CanBeLoaded(content)) {
        return false;
    }
    SaveLock const lock(resolved);
    RemoveTemporaries(resolved, lock);
    string const whole = resolved.Whole();
    TemporaryFile temporary(resolved);
    return temporary.Error() == ERROR_SUCCESS && temporary.TakePermissionsOf(whole) &&
           temporary.Write(content) && temporary.MoveOver(whole);
}

} // namespace

void RemoveSettingsFiles(string const& path) noexcept
{
    try {
        SettingsPath const parts = DivideSettingsPath(path);
        for (string const& name : FindFiles(parts.folder + parts.base + "*" + parts.extension)) {
            if (name[0] != '.') {
                ::DeleteFileA((parts.folder + name).c_str());
            }
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): nobody learns what has been deleted
    }
}

} // namespace Quarn::detail

namespace Quarn::Win32 {

bool BackupSettingsFile(Quarn::string const& path, Quarn::string& backupPath) noexcept
{
    try {
        Quarn::string backup;
        if (!detail::CreateBackup(path, backup)) {
            return false;
        }
        backupPath = std::move(backup);
        return true;
    } catch (...) {
        return false;
    }
}

bool RestoreSettingsFile(Quarn::string const& path, Quarn::string const& backupPath) noexcept
{
    try {
        return detail::Restore(path, backupPath);
    } catch (...) {
        return false;
    }
}

} // namespace Quarn::Win32
