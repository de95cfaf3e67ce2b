// The system's functions and the C library's file functions, as the library and the standard library call
// them.
#include "quarn/platform/win32_api.h"

#include "tests/faults/fault_plan.h"
#include "tests/faults/windows/imports.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <io.h>
#include <sys/stat.h>

namespace {

// The system's code for what the plan calls by its errno.
DWORD Code()
{
    switch (Faults::Error()) {
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EACCES:
        return ERROR_ACCESS_DENIED;
    case EBUSY:
        return ERROR_SHARING_VIOLATION;
    case ENOSPC:
        return ERROR_DISK_FULL;
    default:
        return ERROR_IO_DEVICE;
    }
}

// What every failing call leaves, at its very end.
template<typename Result>
Result Failed(Result result)
{
    errno = Faults::Error();
    ::SetLastError(Code());
    return result;
}

bool FallsOn(char const* function)
{
    return Faults::Strikes(Faults::Kind::Files, function);
}

bool IsDeniedTemporary(char const* path, DWORD disposition)
{
    return Faults::TemporariesAreDenied() && disposition == CREATE_NEW &&
           std::strstr(path, "\\.~") != nullptr;
}

} // namespace

// NOLINTBEGIN(cppcoreguidelines-macro-usage): one line for each function

#define QUARN_HOOK(result, failure, name, parameters, arguments)                                             \
    static result Hook_##name parameters                                                                     \
    {                                                                                                        \
        return FallsOn(#name) ? Failed<result>(failure) : ::name arguments;                                  \
    }                                                                                                        \
    static Faults::Hook const g_hook_##name(#name, reinterpret_cast<void*>(Hook_##name));

// What does its work all the same, as what fails to close is closed.
#define QUARN_CLOSE_HOOK(result, failure, name, type)                                                        \
    static result Hook_##name(type object)                                                                   \
    {                                                                                                        \
        bool const fails = FallsOn(#name);                                                                   \
        result const answer = ::name(object);                                                                \
        return fails ? Failed<result>(failure) : answer;                                                     \
    }                                                                                                        \
    static Faults::Hook const g_hook_##name(#name, reinterpret_cast<void*>(Hook_##name));

QUARN_HOOK(BOOL, FALSE, CreateDirectoryA, (char const* path, SECURITY_ATTRIBUTES* security), (path, security))
QUARN_HOOK(HANDLE, nullptr, CreateMutexA, (SECURITY_ATTRIBUTES * security, BOOL owned, char const* name),
           (security, owned, name))
QUARN_HOOK(BOOL, FALSE, DeleteFileA, (char const* path), (path))
QUARN_HOOK(HANDLE, INVALID_HANDLE_VALUE, FindFirstFileA, (char const* pattern, WIN32_FIND_DATAA* found),
           (pattern, found))
QUARN_HOOK(BOOL, FALSE, FindNextFileA, (HANDLE search, WIN32_FIND_DATAA* found), (search, found))
QUARN_HOOK(BOOL, FALSE, GetFileSecurityA,
           (char const* path, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR security, DWORD size,
            DWORD* needed),
           (path, parts, security, size, needed))
QUARN_HOOK(DWORD, INVALID_FILE_ATTRIBUTES, GetFileAttributesA, (char const* path), (path))
QUARN_HOOK(BOOL, FALSE, GetFileSizeEx, (HANDLE file, LARGE_INTEGER* size), (file, size))
QUARN_HOOK(DWORD, 0, GetFinalPathNameByHandleA, (HANDLE file, char* path, DWORD size, DWORD flags),
           (file, path, size, flags))
QUARN_HOOK(DWORD, 0, GetFullPathNameA, (char const* path, DWORD size, char* full, char** name),
           (path, size, full, name))
QUARN_HOOK(DWORD, 0, GetModuleFileNameA, (HMODULE module, char* path, DWORD size), (module, path, size))
QUARN_HOOK(BOOL, FALSE, ReadFile, (HANDLE file, void* data, DWORD size, DWORD* read, OVERLAPPED* overlapped),
           (file, data, size, read, overlapped))
QUARN_HOOK(BOOL, FALSE, SetEndOfFile, (HANDLE file), (file))
QUARN_HOOK(BOOL, FALSE, SetFileAttributesA, (char const* path, DWORD attributes), (path, attributes))
QUARN_HOOK(BOOL, FALSE, SetFileSecurityA,
           (char const* path, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR security),
           (path, parts, security))
QUARN_HOOK(DWORD, WAIT_FAILED, WaitForSingleObject, (HANDLE object, DWORD milliseconds),
           (object, milliseconds))
QUARN_CLOSE_HOOK(BOOL, FALSE, CloseHandle, HANDLE)

static HANDLE Hook_CreateFileA(char const* path, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                               DWORD disposition, DWORD flags, HANDLE pattern)
{
    if (IsDeniedTemporary(path, disposition)) {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return FallsOn("CreateFileA")
               ? Failed(INVALID_HANDLE_VALUE)
               : ::CreateFileA(path, access, sharing, security, disposition, flags, pattern);
}
static Faults::Hook const g_hook_CreateFileA("CreateFileA", reinterpret_cast<void*>(Hook_CreateFileA));

// What fails to write has written a half.
static BOOL Hook_WriteFile(HANDLE file, void const* data, DWORD size, DWORD* written, OVERLAPPED* overlapped)
{
    bool const fails = FallsOn("WriteFile");
    BOOL const done = ::WriteFile(file, data, fails ? size / 2 : size, written, overlapped);
    return fails ? Failed(FALSE) : done;
}
static Faults::Hook const g_hook_WriteFile("WriteFile", reinterpret_cast<void*>(Hook_WriteFile));

// A device that breaks may have moved the file before, and not have the new name for good.
static BOOL Hook_MoveFileExA(char const* from, char const* to, DWORD flags)
{
    bool const fails = FallsOn("MoveFileExA");
    if (fails && Faults::Error() != EIO) {
        return Failed(FALSE);
    }
    BOOL const done = ::MoveFileExA(from, to, flags);
    return fails ? Failed(FALSE) : done;
}
static Faults::Hook const g_hook_MoveFileExA("MoveFileExA", reinterpret_cast<void*>(Hook_MoveFileExA));

static BOOL Hook_CreateHardLinkA(char const* name, char const* file, SECURITY_ATTRIBUTES* security)
{
    if (Faults::LinksAreRefused()) {
        ::SetLastError(ERROR_INVALID_FUNCTION);
        return FALSE;
    }
    return FallsOn("CreateHardLinkA") ? Failed(FALSE) : ::CreateHardLinkA(name, file, security);
}
static Faults::Hook const g_hook_CreateHardLinkA("CreateHardLinkA",
                                                 reinterpret_cast<void*>(Hook_CreateHardLinkA));

// What fails to copy leaves a half, as Wine does; Windows takes that away again.
static BOOL Hook_CopyFileA(char const* from, char const* to, BOOL keeps)
{
    bool const fails = FallsOn("CopyFileA");
    BOOL const done = ::CopyFileA(from, to, keeps);
    if (!fails) {
        return done;
    }
    std::error_code ignored;
    std::filesystem::resize_file(to, std::filesystem::file_size(from, ignored) / 2, ignored);
    return Failed(FALSE);
}
static Faults::Hook const g_hook_CopyFileA("CopyFileA", reinterpret_cast<void*>(Hook_CopyFileA));

// No power fails here, so nothing has to reach the disk.
static BOOL Hook_FlushFileBuffers(HANDLE /*file*/)
{
    return FallsOn("FlushFileBuffers") ? Failed(FALSE) : TRUE;
}
static Faults::Hook const g_hook_FlushFileBuffers("FlushFileBuffers",
                                                  reinterpret_cast<void*>(Hook_FlushFileBuffers));

// Whether there is a folder does not change from call to call, so this one only lacks memory at times. The
// user's own data folder is this program's.
static HRESULT Hook_SHGetFolderPathA(HWND owner, int folder, HANDLE token, DWORD flags, char* path)
{
    if (FallsOn("SHGetFolderPathA")) {
        return Failed<HRESULT>(E_OUTOFMEMORY);
    }
    char const* const machine = std::getenv("QUARN_TEST_MACHINE");
    if (folder != CSIDL_LOCAL_APPDATA || machine == nullptr) {
        return ::SHGetFolderPathA(owner, folder, token, flags, path);
    }
    std::filesystem::path const user = std::filesystem::path(machine) / "user";
    std::filesystem::create_directories(user);
    std::strcpy(path, user.string().c_str());
    return S_OK;
}
static Faults::Hook const g_hook_SHGetFolderPathA("SHGetFolderPathA",
                                                  reinterpret_cast<void*>(Hook_SHGetFolderPathA));

// The registry.
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegCreateKeyExA,
           (HKEY key, char const* path, DWORD reserved, char* type, DWORD options, REGSAM access,
            SECURITY_ATTRIBUTES* security, HKEY* result, DWORD* disposition),
           (key, path, reserved, type, options, access, security, result, disposition))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegDeleteKeyA, (HKEY key, char const* path), (key, path))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegDeleteValueA, (HKEY key, char const* name), (key, name))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegEnumKeyExA,
           (HKEY key, DWORD index, char* name, DWORD* size, DWORD* reserved, char* type, DWORD* typeSize,
            FILETIME* written),
           (key, index, name, size, reserved, type, typeSize, written))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegEnumValueA,
           (HKEY key, DWORD index, char* name, DWORD* size, DWORD* reserved, DWORD* type, BYTE* data,
            DWORD* dataSize),
           (key, index, name, size, reserved, type, data, dataSize))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegOpenKeyExA,
           (HKEY key, char const* path, DWORD options, REGSAM access, HKEY* result),
           (key, path, options, access, result))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegQueryValueExA,
           (HKEY key, char const* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size),
           (key, name, reserved, type, data, size))
QUARN_HOOK(LONG, static_cast<LONG>(Code()), RegSetValueExA,
           (HKEY key, char const* name, DWORD reserved, DWORD type, BYTE const* data, DWORD size),
           (key, name, reserved, type, data, size))
QUARN_CLOSE_HOOK(LONG, static_cast<LONG>(Code()), RegCloseKey, HKEY)

// The log and the file streams of the standard library.
QUARN_HOOK(::FILE*, nullptr, fopen, (char const* path, char const* mode), (path, mode))
QUARN_HOOK(int, EOF, fflush, (::FILE * file), (file))
QUARN_HOOK(int, EOF, fputc, (int c, ::FILE* file), (c, file))
QUARN_HOOK(int, EOF, fputs, (char const* text, ::FILE* file), (text, file))
QUARN_HOOK(std::size_t, 0, fwrite, (void const* data, std::size_t size, std::size_t count, ::FILE* file),
           (data, size, count, file))
QUARN_HOOK(long long, -1, _lseeki64, (int file, long long offset, int origin), (file, offset, origin))
QUARN_HOOK(int, -1, _read, (int file, void* data, unsigned int size), (file, data, size))
QUARN_CLOSE_HOOK(int, EOF, fclose, ::FILE*)

static int Hook__write(int file, void const* data, unsigned int size)
{
    bool const fails = FallsOn("_write");
    int const written = ::_write(file, data, fails ? size / 2 : size);
    return fails ? Failed(-1) : written;
}
static Faults::Hook const g_hook__write("_write", reinterpret_cast<void*>(Hook__write));

// Time passes without waiting.

static void Hook_Sleep(DWORD milliseconds)
{
    if (Faults::IsArmed()) {
        Faults::Wait(std::uint64_t{milliseconds} * 1'000'000);
    } else {
        ::Sleep(milliseconds);
    }
}
static Faults::Hook const g_hook_Sleep("Sleep", reinterpret_cast<void*>(Hook_Sleep));

static ULONGLONG Hook_GetTickCount64()
{
    return ::GetTickCount64() + Faults::Waited() / 1'000'000;
}
static Faults::Hook const g_hook_GetTickCount64("GetTickCount64",
                                                reinterpret_cast<void*>(Hook_GetTickCount64));

// NOLINTEND(cppcoreguidelines-macro-usage)
