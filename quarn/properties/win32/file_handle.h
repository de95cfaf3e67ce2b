// An open file of the platform, closed with its owner.
#pragma once

#include "quarn/platform/win32_api.h"

#include <string_view>

namespace Quarn::detail {

// Readers keep nobody from opening, moving or deleting the file. Windows refuses all the same to replace a
// file that is open: a reader delays a save there, by 2 s at most; then the save fails and the old file
// stays.
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// The attributes of what no settings file takes the place of. A missing file, by its answer, has them all.
constexpr DWORD Untouchable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;

class FileHandle
{
public:
    // What ::CreateFileA has returned.
    explicit FileHandle(HANDLE file) noexcept : m_file(file) {}
    FileHandle(FileHandle const&) = delete;
    FileHandle& operator=(FileHandle const&) = delete;
    ~FileHandle() { Close(); }

    HANDLE Get() const noexcept { return m_file; }
    bool IsOpen() const noexcept { return m_file != INVALID_HANDLE_VALUE; }

    // False where the system reports a failure; the file is closed in every case.
    bool Close() noexcept
    {
        bool const closed = !IsOpen() || ::CloseHandle(m_file) != FALSE;
        m_file = INVALID_HANDLE_VALUE;
        return closed;
    }

    // Writes at the file's position, ends the file there and flushes it to the device.
    bool WriteToEnd(std::string_view content) noexcept
    {
        DWORD written = 0;
        BOOL const done =
            ::WriteFile(m_file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
        return done != FALSE && written == content.size() && ::SetEndOfFile(m_file) != FALSE &&
               ::FlushFileBuffers(m_file) != FALSE;
    }

private:
    HANDLE m_file;
};

} // namespace Quarn::detail
