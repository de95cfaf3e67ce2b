// The seam: the Win32 functions, types and constants that the library calls, under their own names. On
// Windows they come from the system; elsewhere this header declares the same subset, implemented in
// platform/posix/. No other file of the library includes a system interface or asks for the system.
//
// Elsewhere the functions behave as on Windows, results and error codes included; comments here name what
// differs. All of them may be called from any thread.
#pragma once

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601
#endif
#include <windows.h>
// These two need the types of the first.
#include <shlobj.h>
#include <shlwapi.h>
// The runtime library's functions that are named below.
#include <stdlib.h>
#include <time.h>

#else

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"

#include <cstdint>
#include <ctime>

// NOLINTBEGIN: names, types and values are those of the Win32 interface.

// The functions have C++ linkage on purpose: their mangled names cannot collide with those of another library
// in the process that brings Win32 names of its own as plain C symbols.

// ---- types, of Windows' widths

using BOOL = int;
using WORD = std::uint16_t;
using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using HRESULT = LONG;
using WCHAR = char16_t;
using PSECURITY_DESCRIPTOR = void*;
using SECURITY_INFORMATION = DWORD;

struct HWND__;
using HWND = HWND__*;

// Never defined: these parameters take null alone.
struct _OVERLAPPED;
struct _SECURITY_ATTRIBUTES;

struct LARGE_INTEGER
{
    LONGLONG QuadPart;
};

// Steps of 100 ns since 1601-01-01 UTC.
struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

// A broken-down time.
struct _SYSTEMTIME
{
    WORD wYear;
    WORD wMonth;     // 1 to 12
    WORD wDayOfWeek; // 0 is Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;
constexpr int MAX_PATH = 260;
inline HANDLE const INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(std::intptr_t{-1});

// ---- errors

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_INVALID_DATA = 13;
constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
constexpr DWORD ERROR_NO_MORE_FILES = 18;
constexpr DWORD ERROR_WRITE_PROTECT = 19;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_NOT_SUPPORTED = 50;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
constexpr DWORD ERROR_BAD_PATHNAME = 161;
constexpr DWORD ERROR_BUSY = 170;
constexpr DWORD ERROR_INVALID_ORDINAL = 182;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
constexpr DWORD ERROR_ENVVAR_NOT_FOUND = 203;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_FILE_TOO_LARGE = 223;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_NOT_OWNER = 288;
constexpr DWORD ERROR_NOACCESS = 998;
constexpr DWORD ERROR_INVALID_FLAGS = 1004;
constexpr DWORD ERROR_REGISTRY_CORRUPT = 1015;
constexpr DWORD ERROR_REGISTRY_IO_FAILED = 1016;
constexpr DWORD ERROR_NOT_REGISTRY_FILE = 1017;
constexpr DWORD ERROR_KEY_DELETED = 1018;
constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
constexpr DWORD ERROR_IO_DEVICE = 1117;
constexpr DWORD ERROR_TOO_MANY_LINKS = 1142;
constexpr DWORD ERROR_INVALID_SECURITY_DESCR = 1338;
constexpr DWORD ERROR_RESOURCE_DATA_NOT_FOUND = 1812;
constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;
constexpr DWORD ERROR_CANT_RESOLVE_FILENAME = 1921;

constexpr HRESULT S_OK = 0;
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);

constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}
constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}

// The calling thread's code. A function that succeeds may leave the code of an earlier failure.
QUARN_API DWORD GetLastError();
QUARN_API void SetLastError(DWORD code);

// ---- handles of files and mutexes

QUARN_API BOOL CloseHandle(HANDLE handle);

// ---- files: contents

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 0x1;
constexpr DWORD FILE_SHARE_WRITE = 0x2;
constexpr DWORD FILE_SHARE_DELETE = 0x4;
constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
constexpr DWORD FILE_ATTRIBUTE_DEVICE = 0x40;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
// Needed to open a folder.
constexpr DWORD FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;

// Access 0 needs no permission for the file itself and serves to ask for its path, size and the like. Sharing
// is not enforced: every open file can be opened, moved and deleted, as if all the share flags were
// given. Of the flags only FILE_FLAG_BACKUP_SEMANTICS counts; paths may be longer than MAX_PATH. Pipes and
// sockets are refused. Regular files without any write permission are read-only files: they are not
// opened for writing, deleted or replaced by anybody, the superuser included.
QUARN_API HANDLE CreateFileA(char const* path, DWORD access, DWORD share, _SECURITY_ATTRIBUTES* security,
                             DWORD disposition, DWORD flags, HANDLE pattern);
QUARN_API BOOL ReadFile(HANDLE file, void* data, DWORD size, DWORD* read, _OVERLAPPED* overlapped);
QUARN_API BOOL WriteFile(HANDLE file, void const* data, DWORD size, DWORD* written, _OVERLAPPED* overlapped);
QUARN_API BOOL SetEndOfFile(HANDLE file);
QUARN_API BOOL FlushFileBuffers(HANDLE file);
QUARN_API BOOL GetFileSizeEx(HANDLE file, LARGE_INTEGER* size);

// ---- files: names

constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x1;
constexpr DWORD MOVEFILE_WRITE_THROUGH = 0x8;

// The attributes of what a symbolic link leads to. FILE_ATTRIBUTE_DEVICE stands for all that is neither file
// nor folder.
QUARN_API DWORD GetFileAttributesA(char const* path);
// FILE_ATTRIBUTE_READONLY of regular files alone counts: it takes the permission to write from everybody, its
// absence gives it to the owner of a file that nobody may write.
QUARN_API BOOL SetFileAttributesA(char const* path, DWORD attributes);
QUARN_API BOOL DeleteFileA(char const* path);
// MOVEFILE_WRITE_THROUGH syncs the folders of both names. A symbolic link is moved or replaced itself. Two
// hard links of one file are left as they are, with success.
QUARN_API BOOL MoveFileExA(char const* from, char const* to, DWORD flags);
QUARN_API BOOL CopyFileA(char const* from, char const* to, BOOL failIfExists);
QUARN_API BOOL CreateHardLinkA(char const* name, char const* existing, _SECURITY_ATTRIBUTES* security);
QUARN_API BOOL CreateDirectoryA(char const* path, _SECURITY_ATTRIBUTES* security);

struct WIN32_FIND_DATAA
{
    DWORD dwFileAttributes;
    FILETIME ftCreationTime; // always 0
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    char cFileName[MAX_PATH];
    char cAlternateFileName[14]; // always empty
};

// `*` and `?` count in the last component alone; names compare exactly. In byte order, "." and ".." first;
// what has been deleted since the first call is left out.
QUARN_API HANDLE FindFirstFileA(char const* pattern, WIN32_FIND_DATAA* data);
QUARN_API BOOL FindNextFileA(HANDLE search, WIN32_FIND_DATAA* data);
QUARN_API BOOL FindClose(HANDLE search);

// ---- files: paths

constexpr DWORD FILE_NAME_NORMALIZED = 0x0;
constexpr DWORD VOLUME_NAME_DOS = 0x0;

QUARN_API DWORD GetCurrentDirectoryA(DWORD size, char* buffer);
// ".." behind a symbolic link stays as it is: the result always names the same file.
QUARN_API DWORD GetFullPathNameA(char const* path, DWORD size, char* buffer, char** filePart);
// The path as it is now, without symbolic links. On Windows it begins with "\\?\".
QUARN_API DWORD GetFinalPathNameByHandleA(HANDLE file, char* buffer, DWORD size, DWORD flags);

// ---- files: permissions

constexpr SECURITY_INFORMATION OWNER_SECURITY_INFORMATION = 0x1;
constexpr SECURITY_INFORMATION GROUP_SECURITY_INFORMATION = 0x2;
constexpr SECURITY_INFORMATION DACL_SECURITY_INFORMATION = 0x4;

// The descriptor is a private record of mode, owner, group and access control list, good for carrying from
// one file to another with the second function. Where the list goes to a file of another group, the group
// gets no more than everybody.
QUARN_API BOOL GetFileSecurityA(char const* path, SECURITY_INFORMATION information,
                                PSECURITY_DESCRIPTOR descriptor, DWORD size, DWORD* needed);
QUARN_API BOOL SetFileSecurityA(char const* path, SECURITY_INFORMATION information,
                                PSECURITY_DESCRIPTOR descriptor);

// ---- text

// The process code page, UTF-8.
constexpr UINT CP_ACP = 0;
constexpr DWORD MB_ERR_INVALID_CHARS = 0x8;
constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x400;

// CP_ACP alone. What is no UTF-8 or no UTF-16 becomes U+FFFD, which counts as the default character; another
// default character is refused (ERROR_INVALID_PARAMETER).
QUARN_API int MultiByteToWideChar(UINT codePage, DWORD flags, char const* text, int length, WCHAR* buffer,
                                  int size);
QUARN_API int WideCharToMultiByte(UINT codePage, DWORD flags, WCHAR const* text, int length, char* buffer,
                                  int size, char const* defaultCharacter, BOOL* usedDefault);

// ---- folders

constexpr int CSIDL_PERSONAL = 0x05;
constexpr int CSIDL_APPDATA = 0x1a;
constexpr int CSIDL_LOCAL_APPDATA = 0x1c;
constexpr int CSIDL_COMMON_APPDATA = 0x23;
constexpr int CSIDL_PROGRAM_FILES = 0x26;
constexpr int CSIDL_COMMON_DOCUMENTS = 0x2e;

// `path` has MAX_PATH bytes; it is empty after a failure. Common documents: none. Common application data:
// the folder that QUARNUTIL_MACHINE_DIR names, else /var/lib/quarnutil; none where that folder does not
// exist. Application data: $XDG_CONFIG_HOME or ~/.config; local application data: $XDG_DATA_HOME or
// ~/.local/share; both are made when they are missing. Personal: the home folder, $HOME or the user data
// base's. Program files: /opt. Environment values that are no absolute path do not count, and none does in a
// program that runs with another user's rights.
QUARN_API HRESULT SHGetFolderPathA(HWND owner, int folder, HANDLE token, DWORD flags, char* path);
// Appends '/' where the path does not end in one.
QUARN_API char* PathAddBackslashA(char* path);

// ---- processes and clocks

QUARN_API DWORD GetCurrentProcessId();
QUARN_API DWORD GetEnvironmentVariableA(char const* name, char* buffer, DWORD size);
// The C runtime's, under its name on Windows: the empty value removes the variable. No other thread may use
// the environment at the same time.
QUARN_API int _putenv_s(char const* name, char const* value);
QUARN_API void Sleep(DWORD milliseconds);
QUARN_API ULONGLONG GetTickCount64();

// The clock, in UTC and in the process's time zone.
QUARN_API void GetSystemTime(SYSTEMTIME* time);
QUARN_API void GetLocalTime(SYSTEMTIME* time);
// Years 1601 to 30827; what is no date of the Gregorian calendar is refused (ERROR_INVALID_PARAMETER). The
// day of the week is not read.
QUARN_API BOOL SystemTimeToFileTime(SYSTEMTIME const* time, FILETIME* fileTime);
QUARN_API BOOL FileTimeToSystemTime(FILETIME const* fileTime, SYSTEMTIME* time);
// These two go by the zone's distance to UTC in force now, whatever the date.
QUARN_API BOOL FileTimeToLocalFileTime(FILETIME const* fileTime, FILETIME* local);
QUARN_API BOOL LocalFileTimeToFileTime(FILETIME const* local, FILETIME* fileTime);

// ---- the C runtime's time conversions, under their names on Windows

using __time64_t = std::int64_t;

// The result lies in one record that both share: one thread at a time. Null where the runtime refuses the
// seconds; on Windows those before 1970 and after 3000, elsewhere only those whose year is no int.
QUARN_API std::tm* _gmtime64(__time64_t const* seconds);
QUARN_API std::tm* _localtime64(__time64_t const* seconds);
// Normalises the record. tm_isdst is read as -1: a repeated hour is standard time, a skipped one counts on
// from the hour before it. On Windows -1 before 1970 and after 3000.
QUARN_API __time64_t _mktime64(std::tm* time);

// ---- locks

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_ABANDONED = 0x80;
constexpr DWORD WAIT_TIMEOUT = 0x102;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// Every mutex needs a name (ERROR_NOT_SUPPORTED), and is shared by all users of the machine. A forked child
// has the handles but owns nothing. The last handle of a process does not give up what a thread of it owns.
QUARN_API HANDLE CreateMutexA(_SECURITY_ATTRIBUTES* security, BOOL initialOwner, char const* name);
QUARN_API BOOL ReleaseMutex(HANDLE mutex);
// Mutexes alone can be waited for.
QUARN_API DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

struct _RTL_CRITICAL_SECTION
{
    alignas(void*) unsigned char Storage[64];
};

QUARN_API void InitializeCriticalSection(CRITICAL_SECTION* section);
QUARN_API void EnterCriticalSection(CRITICAL_SECTION* section);
QUARN_API void LeaveCriticalSection(CRITICAL_SECTION* section);
QUARN_API void DeleteCriticalSection(CRITICAL_SECTION* section);

// ---- modules and their resources

using HMODULE = HINSTANCE;

// The executable, for null; no other module is looked up (ERROR_MOD_NOT_FOUND).
QUARN_API HMODULE GetModuleHandleA(char const* name);
// The full path of a module's file, of the executable for null. A path that does not fit is cut off, with
// ERROR_INSUFFICIENT_BUFFER and the result `size`.
QUARN_API DWORD GetModuleFileNameA(HMODULE module, char* buffer, DWORD size);
// Loads a module, or counts one reference more. A name without a dot gets ".so". A name without '/' is looked
// for beside the executable, by the system, in the current directory and along PATH.
QUARN_API HMODULE LoadLibraryA(char const* path);

using FARPROC = std::intptr_t (*)();

// What the module itself exports under this name. There are no ordinals (ERROR_INVALID_ORDINAL).
QUARN_API FARPROC GetProcAddress(HMODULE module, char const* name);

// A text that does not fit is cut off behind a whole character. `size` 0, which on Windows hands out the
// resource itself, does nothing, with the result -1.
QUARN_API int LoadStringA(HINSTANCE module, UINT id, char* buffer, int size);

// `path` is not looked for anywhere else. 64-bit ELF modules with resources count beside Windows' own files.
// GetFileVersionInfoA needs the whole size (ERROR_INSUFFICIENT_BUFFER). Of several languages the neutral one
// is taken, else US English, else the first. What lies deeper than the texts of a string table is not found.
QUARN_API DWORD GetFileVersionInfoSizeA(char const* path, DWORD* handle);
QUARN_API BOOL GetFileVersionInfoA(char const* path, DWORD handle, DWORD size, void* block);
QUARN_API BOOL VerQueryValueA(void const* block, char const* path, void** value, UINT* size);

// ---- user interface

inline char const* const IDC_WAIT = reinterpret_cast<char const*>(std::uintptr_t{32514});

// There are no cursors: null.
QUARN_API HCURSOR LoadCursorA(HINSTANCE module, char const* name);
QUARN_API HCURSOR SetCursor(HCURSOR cursor);

// ---- registry

using BYTE = unsigned char;
using LSTATUS = LONG;
using REGSAM = DWORD;

// The roots of the user and of the machine. HKEY_CLASSES_ROOT and HKEY_USERS are trees of their own, no views
// of parts of the others.
inline HKEY const HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::intptr_t{-0x80000000LL});
inline HKEY const HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::intptr_t{-0x7FFFFFFFLL});
inline HKEY const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::intptr_t{-0x7FFFFFFELL});
inline HKEY const HKEY_USERS = reinterpret_cast<HKEY>(std::intptr_t{-0x7FFFFFFDLL});

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_QWORD = 11;

constexpr REGSAM KEY_QUERY_VALUE = 0x1;
constexpr REGSAM KEY_SET_VALUE = 0x2;
constexpr REGSAM KEY_CREATE_SUB_KEY = 0x4;
constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x8;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

// The user's keys are kept in $XDG_DATA_HOME/quarnutil/registry.db (~/.local/share when that is not set), the
// machine's in registry.db in the folder of the common application data; where there is no such folder, in
// machine.db beside the user's. A file is made by the first write. A machine's file that the user may not
// write can be read. ERROR_BUSY: another process has kept the file locked for 30 s. A damaged file gives
// ERROR_REGISTRY_CORRUPT or ERROR_NOT_REGISTRY_FILE and is left as it is.
//
// Names are UTF-8; other bytes are taken as they are. Key names have up to 255, value names up to 16,383
// UTF-16 units, and there are up to 512 levels of keys (ERROR_INVALID_PARAMETER beyond). Sub-keys
// enumerate in the order of their upper-case names, values in the order of their creation. Keys keep no
// class, no time and no security; every option but REG_OPTION_NON_VOLATILE is refused. A text that is stored
// without its terminator gets one.
QUARN_API LSTATUS RegOpenKeyExA(HKEY key, char const* subKey, DWORD options, REGSAM access, HKEY* result);
QUARN_API LSTATUS RegCreateKeyExA(HKEY key, char const* subKey, DWORD reserved, char* className,
                                  DWORD options, REGSAM access, _SECURITY_ATTRIBUTES const* security,
                                  HKEY* result, DWORD* disposition);
QUARN_API LSTATUS RegCloseKey(HKEY key);
QUARN_API LSTATUS RegDeleteKeyA(HKEY key, char const* subKey);
QUARN_API LSTATUS RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved,
                                char* className, DWORD* classSize, FILETIME* lastWritten);

QUARN_API LSTATUS RegQueryValueExA(HKEY key, char const* name, DWORD* reserved, DWORD* type, BYTE* data,
                                   DWORD* size);
QUARN_API LSTATUS RegSetValueExA(HKEY key, char const* name, DWORD reserved, DWORD type, BYTE const* data,
                                 DWORD size);
QUARN_API LSTATUS RegDeleteValueA(HKEY key, char const* name);
QUARN_API LSTATUS RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* reserved,
                                DWORD* type, BYTE* data, DWORD* dataSize);

// ---- messages

constexpr UINT MB_OK = 0x0;
constexpr UINT MB_ICONSTOP = 0x10;
constexpr int IDOK = 1;

// Writes caption and text to standard error; where standard input is a terminal and the process is in its
// foreground group, waits for a line there. Always IDOK.
QUARN_API int MessageBoxA(HWND owner, char const* text, char const* caption, UINT type);

// Dropped, unless a debugger is attached or the environment holds QUARN_DEBUG_OUTPUT=1: then standard error.
QUARN_API void OutputDebugStringA(char const* text);

// NOLINTEND

#endif
