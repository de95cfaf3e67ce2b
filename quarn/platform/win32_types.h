// The handle and record types that public headers name, without the system's header: a client's translation
// unit gets no system macros from the library. They are the system's own types, so <windows.h> may come
// before or after. A client that calls the system itself includes platform/win32_api.h.
#pragma once

// NOLINTBEGIN: names and tags are those of the Win32 interface.

struct HICON__;
struct HINSTANCE__;
struct HKEY__;
struct _RTL_CRITICAL_SECTION;
struct _SYSTEMTIME;

using HANDLE = void*;
using HCURSOR = HICON__*;
using HINSTANCE = HINSTANCE__*;
using HKEY = HKEY__*;
using CRITICAL_SECTION = _RTL_CRITICAL_SECTION;
using SYSTEMTIME = _SYSTEMTIME;

// NOLINTEND
