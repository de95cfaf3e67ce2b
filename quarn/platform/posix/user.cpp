// The user interface functions of the seam on POSIX: standard error is the only window.
#include "quarn/platform/win32_api.h"

#include <cstdio>

#include <unistd.h>

int MessageBoxA(HWND /*owner*/, char const* text, char const* caption, UINT /*type*/)
{
    std::fprintf(stderr, "%s\n%s\n", caption != nullptr ? caption : "Error", text != nullptr ? text : "");
    std::fflush(stderr);
    if (::isatty(STDIN_FILENO) == 1 && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp()) {
        std::fprintf(stderr, "[Enter] ");
        for (int c = std::getchar(); c != '\n' && c != EOF; c = std::getchar()) {
        }
    }
    return IDOK;
}

HCURSOR LoadCursorA(HINSTANCE /*module*/, char const* /*name*/)
{
    return nullptr;
}

HCURSOR SetCursor(HCURSOR /*cursor*/)
{
    return nullptr;
}
