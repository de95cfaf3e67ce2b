// The seam: the Win32 functions, types and constants that the library calls, under their own names. On
// Windows they come from the system; elsewhere this header declares the same subset, implemented in
// platform/posix/. No other file of the library includes a system interface or asks for the system.
#pragma once

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#else

#include "quarn/platform/win32_types.h"

// NOLINTBEGIN: names, types and values are those of the Win32 interface.

struct HWND__;
using HWND = HWND__*;
using UINT = unsigned int;

constexpr UINT MB_OK = 0x0;
constexpr UINT MB_ICONSTOP = 0x10;
constexpr int IDOK = 1;

extern "C" {

// Writes caption and text to standard error; where standard input is a terminal and the process is in its
// foreground group, waits for a line there. Always IDOK.
int MessageBoxA(HWND owner, char const* text, char const* caption, UINT type);
}

// NOLINTEND

#endif
