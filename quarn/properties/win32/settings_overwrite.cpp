#include "quarn/properties/win32/settings_overwrite.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_handle.h"
#include "quarn/properties/win32/file_permissions.h"
#include "quarn/properties/win32/file_reading.h"

namespace Quarn::detail {

namespace {

bool Overwrite(string const& name, std::string_view content)
{
    FileHandle file(::CreateFileA(name.c_str(), GENERIC_WRITE, ShareAll, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    bool const written = file.IsOpen() && file.WriteToEnd(content);
    return file.Close() && written;
}

// The name of a new file in the user's own data folder; empty where none can be made.
string CreateForUser(SettingsPath const& path)
{
    char folder[MAX_PATH];
    if (FAILED(::SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, folder)) ||
        ::PathAddBackslashA(folder) == nullptr) {
        return {};
    }
    for (std::uint32_t stamp = BackupStamp();; ++stamp) {
        string name = BackupName(folder, path, stamp);
        FileHandle const file(::CreateFileA(name.c_str(), GENERIC_WRITE, ShareAll, nullptr, CREATE_NEW,
                                            FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file.IsOpen()) {
            return name;
        }
        if (::GetLastError() != ERROR_FILE_EXISTS) {
            return {};
        }
    }
}

} // namespace

bool OverwriteSettingsFile(SettingsPath const& path, std::string_view content)
{
    string const whole = path.Whole();
    std::string old;
    if (!ReadWholeFile(whole, old)) {
        return false;
    }
    string const copy = CreateForUser(path);
    if (copy.empty()) {
        return false;
    }
    if (!CopyPermissions(whole, copy) || !Overwrite(copy, old)) {
        ::DeleteFileA(copy.c_str());
        return false;
    }
    bool const written = Overwrite(whole, content);
    if (written || Overwrite(whole, old)) {
        ::DeleteFileA(copy.c_str());
    }
    return written;
}

} // namespace Quarn::detail
