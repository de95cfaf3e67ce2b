#include "quarn/properties/win32/temporary_file.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_permissions.h"
#include "quarn/properties/win32/file_search.h"

#include <atomic>

namespace Quarn::detail {

namespace {

constexpr ULONGLONG BusyWait = 2000;
// Readers have the file open for moments alone, and a rare look would miss the moments between them.
constexpr DWORD BusyStep = 1;

void Remove(string const& name)
{
    if (::DeleteFileA(name.c_str()) == FALSE &&
        ::SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_NORMAL) != FALSE) {
        ::DeleteFileA(name.c_str());
    }
}

} // namespace

TemporaryFile::~TemporaryFile()
{
    if (m_exists) {
        m_file.Close();
        Remove(m_name);
    }
}

bool TemporaryFile::TakePermissionsOf(string const& name)
{
    return CopyPermissions(name, m_name);
}

bool TemporaryFile::Write(std::string_view content)
{
    bool const written = m_file.WriteToEnd(content);
    return m_file.Close() && written;
}

bool TemporaryFile::TakeContentOf(string const& name)
{
    if (!m_file.Close() || ::CopyFileA(name.c_str(), m_name.c_str(), FALSE) == FALSE) {
        return false;
    }
    FileHandle file(::CreateFileA(m_name.c_str(), GENERIC_WRITE, ShareAll, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    bool const isFlushed = file.IsOpen() && ::FlushFileBuffers(file.Get()) != FALSE;
    return file.Close() && isFlushed;
}

bool TemporaryFile::MakeReadOnly()
{
    return ::SetFileAttributesA(m_name.c_str(), FILE_ATTRIBUTE_READONLY) != FALSE;
}

bool TemporaryFile::MoveOver(string const& name)
{
    return Move(name, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool TemporaryFile::MoveTo(string const& name)
{
    if (Move(name, MOVEFILE_WRITE_THROUGH)) {
        return true;
    }
    if (IsMissing(m_name)) {
        Remove(name);
    }
    return false;
}

bool TemporaryFile::IsThere() const
{
    return ::GetFileAttributesA(m_name.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool TemporaryFile::Move(string const& name, DWORD flags)
{
    ULONGLONG const start = ::GetTickCount64();
    while (::MoveFileExA(m_name.c_str(), name.c_str(), flags) == FALSE) {
        DWORD const error = ::GetLastError();
        if ((error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) ||
            ::GetTickCount64() - start >= BusyWait) {
            return false;
        }
        ::Sleep(BusyStep);
    }
    m_exists = false;
    return true;
}

HANDLE TemporaryFile::Create(SettingsPath const& path)
{
    static std::atomic<unsigned int> number = 0;
    constexpr int Attempts = 100;
    HANDLE file = INVALID_HANDLE_VALUE;
    for (int i = 0; i < Attempts && file == INVALID_HANDLE_VALUE; ++i) {
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

void RemoveTemporaries(SettingsPath const& path, SaveLock const& lock)
{
    if (!lock.IsOwned()) {
        return;
    }
    // In this order: who is not seen any more has nothing in the list that is needed.
    std::vector<string> const names = FindFiles(TemporaryPattern(path));
    if (lock.IsDoneWithout()) {
        return;
    }
    for (string const& name : names) {
        Remove(path.folder + name);
    }
}

} // namespace Quarn::detail
