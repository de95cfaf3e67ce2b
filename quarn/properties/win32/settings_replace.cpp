#include "quarn/properties/win32/settings_replace.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_handle.h"
#include "quarn/properties/win32/save_lock.h"
#include "quarn/properties/win32/settings_overwrite.h"
#include "quarn/properties/win32/settings_path.h"
#include "quarn/properties/win32/temporary_file.h"

namespace Quarn::detail {

namespace {

bool GiveSecondName(SettingsPath const& path, string& name)
{
    string const whole = path.Whole();
    for (std::uint32_t stamp = BackupStamp();; ++stamp) {
        name = BackupName(path.folder, path, stamp);
        if (::GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES) {
            continue;
        }
        if (::CreateHardLinkA(name.c_str(), whole.c_str(), nullptr)) {
            return true;
        }
        if (::GetLastError() == ERROR_ALREADY_EXISTS) {
            continue;
        }
        // Not every file system has links. The copy gets the name when it is whole.
        TemporaryFile copy(path);
        if (copy.Error() != ERROR_SUCCESS || !copy.TakePermissionsOf(whole) || !copy.TakeContentOf(whole)) {
            return false;
        }
        if (copy.MoveTo(name)) {
            return true;
        }
        if (IsMissing(name)) {
            return false;
        }
    }
}

} // namespace

bool ReplaceSettingsFile(string const& path, std::string_view content, bool& keepOld)
{
    SettingsPath resolved;
    if (!ResolveSettingsPath(path, resolved)) {
        return false;
    }
    SaveLock const lock(resolved);
    string const whole = resolved.Whole();
    bool const exists = !IsMissing(whole);
    if (exists && (::GetFileAttributesA(whole.c_str()) & Untouchable) != 0) {
        return false;
    }
    RemoveTemporaries(resolved, lock);
    TemporaryFile temporary(resolved);
    if (temporary.Error() == ERROR_ACCESS_DENIED && exists && !keepOld) {
        return OverwriteSettingsFile(resolved, content);
    }
    if (temporary.Error() != ERROR_SUCCESS || (exists && !temporary.TakePermissionsOf(whole)) ||
        !temporary.Write(content)) {
        return false;
    }
    string secondName;
    if (keepOld && exists) {
        if (!GiveSecondName(resolved, secondName)) {
            return false;
        }
        keepOld = false;
    }
    if (temporary.MoveOver(whole)) {
        return true;
    }
    // The name may lead to the same file, which a later save in place would change.
    if (!secondName.empty() && temporary.IsThere()) {
        keepOld = ::DeleteFileA(secondName.c_str()) != FALSE;
    }
    return false;
}

} // namespace Quarn::detail
