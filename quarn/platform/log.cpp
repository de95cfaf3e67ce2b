#include "quarn/platform/log.h"

#include "quarn/platform/data_folder.h"
#include "quarn/platform/log_file.h"
#include "quarn/platform/path_parts.h"
#include "quarn/platform/win32_api.h"
#include "quarn/text/format_without_arguments.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include <stdio.h>

namespace Win32Quarn::Log {

namespace {

constexpr unsigned int CloseAfterwards = 1;
constexpr unsigned int WithTime = 2;
constexpr unsigned int WithDate = 4;
constexpr unsigned int Truncate = 8;
constexpr unsigned int WithLineFeed = 16;

enum Result : int
{
    Success = 0,
    Refused = -1, // a path, or by the file that is closed
    NotOpen = -2,
    WriteFailed = -3,
    CloseFailed = -4,
    ErrorIsSet = -5,
    NoDefaultPath = -6
};

struct State
{
    int level = 0;
    unsigned int options = CloseAfterwards | WithLineFeed;
    char path[MAX_PATH] = "";
    ::FILE* file = nullptr;
    bool hasError = false;
    unsigned long errorInformation = 0;
};

constinit State g_log;

void SetError(int number)
{
    g_log.hasError = true;
    g_log.errorInformation = static_cast<unsigned long>(number);
}

bool TakeDefaultPath()
{
    char executable[MAX_PATH];
    DWORD const length = ::GetModuleFileNameA(nullptr, executable, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) { // a name that was cut off is another's
        g_log.errorInformation = length == 0 ? ::GetLastError() : ERROR_INSUFFICIENT_BUFFER;
        return false;
    }
    char folder[MAX_PATH];
    if (!Quarn::detail::FindDataFolder(folder)) {
        return false;
    }
    std::string path = folder;
    if (path.empty() || path.back() != Quarn::detail::PathSeparator) {
        path += Quarn::detail::PathSeparator;
    }
    std::string const name = Quarn::detail::SplitPath({executable, length}).name;
    path.append(name, 0, name.find('.')).append(".log");
    if (path.size() >= sizeof g_log.path) {
        g_log.errorInformation = ERROR_FILENAME_EXCED_RANGE;
        return false;
    }
    std::memcpy(g_log.path, path.c_str(), path.size() + 1);
    return true;
}

bool HasPath()
{
    try {
        return g_log.path[0] != '\0' || TakeDefaultPath();
    } catch (std::bad_alloc const&) {
        g_log.errorInformation = ERROR_NOT_ENOUGH_MEMORY;
        return false;
    }
}

bool Open(unsigned int options)
{
    if (g_log.file == nullptr) {
        bool const truncates = (options & (CloseAfterwards | Truncate)) != 0;
        g_log.file = Quarn::detail::OpenLogFile(g_log.path, truncates);
    }
    return g_log.file != nullptr;
}

bool CloseFile()
{
    return ::fclose(std::exchange(g_log.file, nullptr)) == 0;
}

bool WriteDate(SYSTEMTIME const& now)
{
    return ::fprintf(g_log.file, "%02d-%02d-%02d ", now.wYear - 2000, now.wMonth, now.wDay) >= 0;
}

// Succeeds where nothing was written: deliberately, see the header.
bool WriteTime(SYSTEMTIME const& now)
{
    return ::fprintf(g_log.file, "%02d:%02d:%02d ", now.wHour, now.wMinute, now.wSecond) == 0;
}

bool WriteStamp(unsigned int options)
{
    if ((options & (WithDate | WithTime)) == 0) {
        return true;
    }
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    bool const isWritten =
        ((options & WithDate) == 0 || WriteDate(now)) && ((options & WithTime) == 0 || WriteTime(now));
    if (!isWritten) {
        SetError(errno);
    }
    // Behind a failed stamp, too.
    if (::fputs("| ", g_log.file) < 0 && isWritten) {
        SetError(errno);
        return false;
    }
    return isWritten;
}

bool WriteText(char const* text)
{
    if (text == nullptr) {
        SetError(EINVAL);
        return false;
    }
    try {
        if (Quarn::detail::FormatWithoutArguments(text, [](char const* piece, std::size_t size) {
                return ::fwrite(piece, 1, size, g_log.file) == size;
            })) {
            return true;
        }
        SetError(errno);
    } catch (std::bad_alloc const&) {
        SetError(ENOMEM);
    }
    return false;
}

bool WriteMessage(unsigned int options, char const* text)
{
    if (!WriteStamp(options) || !WriteText(text)) {
        return false;
    }
    if ((options & WithLineFeed) != 0 && ::fputc('\n', g_log.file) == EOF) {
        SetError(errno);
        return false;
    }
    return true;
}

} // namespace

int SetPath(char const* path)
{
    if (g_log.file != nullptr || path == nullptr) {
        return Refused;
    }
    std::size_t const length = std::strlen(path);
    if (length >= sizeof g_log.path) {
        return Refused;
    }
    std::memmove(g_log.path, path, length + 1);
    g_log.hasError = false;
    return Success;
}

char const* GetPath()
{
    return g_log.path;
}

void SetOutputLevel(int level)
{
    g_log.level = level;
}

int GetOutputLevel()
{
    return g_log.level;
}

void SetOutputOptions(unsigned int options)
{
    g_log.options = options;
}

unsigned int GetOutputOptions()
{
    return g_log.options;
}

int Output(int level, char const* text)
{
    return Output(level, static_cast<int>(g_log.options), text);
}

int Output(int level, int options, char const* text)
{
    if (level > g_log.level) {
        return Success;
    }
    if (g_log.hasError) {
        return ErrorIsSet;
    }
    if (!HasPath()) {
        return NoDefaultPath;
    }
    auto const bits = static_cast<unsigned int>(options);
    if (!Open(bits)) {
        SetError(errno);
        return NotOpen;
    }
    bool const isWritten = WriteMessage(bits, text);
    if ((!isWritten || (bits & CloseAfterwards) != 0) && !CloseFile()) {
        SetError(errno);
        return CloseFailed;
    }
    return isWritten ? Success : WriteFailed;
}

int Close()
{
    if (g_log.file == nullptr) {
        return NotOpen;
    }
    if (!CloseFile()) {
        SetError(errno);
        return Refused;
    }
    return Success;
}

void ClearError()
{
    g_log.hasError = false;
}

unsigned long GetErrorInformation()
{
    return g_log.errorInformation;
}

} // namespace Win32Quarn::Log
