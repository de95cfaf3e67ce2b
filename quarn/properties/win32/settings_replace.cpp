#include "quarn/properties/win32/settings_replace.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_handle.h"
#include "quarn/properties/win32/file_permissions.h"
#include "quarn/properties/win32/settings_overwrite.h"
#include "quarn/properties/win32/settings_path.h"

#include <atomic>

namespace Quarn::detail {

namespace {

constexpr DWORD kLockWait = 5000;
constexpr ULONGLONG kBusyWait = 2000;
constexpr DWORD kBusyStep = 20;

// The lock of a file's savers. It is a courtesy: a save without it is still whole.
class SaveLock
{
public:
    explicit SaveLock(SettingsPath const& path)
        : m_mutex(::CreateMutexA(nullptr, FALSE, LockName(path).c_str()))
    {
        if (m_mutex != nullptr) {
            DWORD const result = ::WaitForSingleObject(m_mutex, kLockWait);
            m_owned = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
        }
    }
    SaveLock(SaveLock const&) = delete;
    SaveLock& operator=(SaveLock const&) = delete;
    ~SaveLock()
    {
        if (m_owned) {
            ::ReleaseMutex(m_mutex);
        }
        if (m_mutex != nullptr) {
            ::CloseHandle(m_mutex);
        }
    }

    bool IsOwned() const { return m_owned; }

private:
    HANDLE m_mutex;
    bool m_owned = false;
};

// Whoever holds the lock knows that the savers of these files are dead.
void RemoveTemporaries(SettingsPath const& path)
{
    WIN32_FIND_DATAA found;
    HANDLE const search = ::FindFirstFileA(TemporaryPattern(path).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        ::DeleteFileA((path.folder + found.cFileName).c_str());
    } while (::FindNextFileA(search, &found) != FALSE);
    ::FindClose(search);
}

// A file that is deleted with its owner unless it has been moved away.
class Temporary
{
public:
    explicit Temporary(SettingsPath const& path) : m_file(Create(path)) {}
    Temporary(Temporary const&) = delete;
    Temporary& operator=(Temporary const&) = delete;
    ~Temporary()
    {
        if (m_exists) {
            m_file.Close();
            ::DeleteFileA(m_name.c_str());
        }
    }

    // The error of the creation, 0 where the file is there.
    DWORD Error() const { return m_error; }

    // Before anything is written: what only some may read is never readable by others.
    bool TakePermissionsOf(string const& name) { return CopyPermissions(name, m_name); }

    bool Write(std::string_view content)
    {
        bool const written = m_file.WriteToEnd(content);
        return m_file.Close() && written;
    }

    // Another program may hold the old file for a moment.
    bool MoveOver(string const& name)
    {
        ULONGLONG const start = ::GetTickCount64();
        while (!::MoveFileExA(m_name.c_str(), name.c_str(),
                              MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            DWORD const error = ::GetLastError();
            if ((error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) ||
                ::GetTickCount64() - start >= kBusyWait) {
                return false;
            }
            ::Sleep(kBusyStep);
        }
        m_exists = false;
        return true;
    }

private:
    HANDLE Create(SettingsPath const& path)
    {
        static std::atomic<unsigned int> number = 0;
        constexpr int kAttempts = 100;
        HANDLE file = INVALID_HANDLE_VALUE;
        for (int i = 0; i < kAttempts && file == INVALID_HANDLE_VALUE; ++i) {
            m_name = TemporaryName(path, ++number);
            file = ::CreateFileA(m_name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
            m_error = file == INVALID_HANDLE_VALUE ? ::GetLastError() : ERROR_SUCCESS;
            if (m_error != ERROR_FILE_EXISTS) {
                break;
            }
        }
        m_exists = file != INVALID_HANDLE_VALUE;
        return file;
    }

    string m_name;
    DWORD m_error = ERROR_SUCCESS;
    bool m_exists = false;
    FileHandle m_file;
};

// A copy whose bytes have reached the device.
bool CopyFlushed(string const& from, string const& to)
{
    if (!::CopyFileA(from.c_str(), to.c_str(), TRUE)) {
        return false;
    }
    FileHandle file(::CreateFileA(to.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.IsOpen() && ::FlushFileBuffers(file.Get())) {
        return true;
    }
    file.Close();
    ::DeleteFileA(to.c_str());
    return false;
}

bool GiveSecondName(SettingsPath const& path)
{
    string const whole = path.Whole();
    for (std::uint32_t stamp = BackupStamp();; ++stamp) {
        string const name = BackupName(path.folder, path, stamp);
        if (::GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES) {
            continue;
        }
        if (::CreateHardLinkA(name.c_str(), whole.c_str(), nullptr)) {
            return true;
        }
        if (::GetLastError() != ERROR_ALREADY_EXISTS) {
            if (CopyFlushed(whole, name)) {
                return true;
            }
            if (::GetLastError() != ERROR_FILE_EXISTS) {
                return false;
            }
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
    DWORD const attributes = ::GetFileAttributesA(whole.c_str());
    bool const exists = attributes != INVALID_FILE_ATTRIBUTES;
    constexpr DWORD kUntouchable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;
    if (exists && (attributes & kUntouchable) != 0) {
        return false;
    }
    if (lock.IsOwned()) {
        RemoveTemporaries(resolved);
    }
    Temporary temporary(resolved);
    if (temporary.Error() == ERROR_ACCESS_DENIED && exists && !keepOld) {
        return OverwriteSettingsFile(resolved, content);
    }
    if (temporary.Error() != ERROR_SUCCESS || (exists && !temporary.TakePermissionsOf(whole)) ||
        !temporary.Write(content)) {
        return false;
    }
    if (keepOld && exists) {
        if (!GiveSecondName(resolved)) {
            return false;
        }
        keepOld = false;
    }
    return temporary.MoveOver(whole);
}

} // namespace Quarn::detail
