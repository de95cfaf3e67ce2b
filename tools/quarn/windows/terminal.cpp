#include "terminal.h"

#include "quarn/platform/win32_api.h"

#include <cstdlib>

#include <io.h>

namespace tool {

namespace {

UINT g_codePage = 0;

void RestoreCodePage()
{
    ::SetConsoleOutputCP(g_codePage);
}

} // namespace

bool IsTerminal(std::FILE* stream)
{
    return ::_isatty(::_fileno(stream)) != 0;
}

void PrepareTerminal()
{
    HANDLE const console = ::GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (!::GetConsoleMode(console, &mode)) {
        return;
    }
    constexpr DWORD ColourSequences = 0x4; // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    ::SetConsoleMode(console, mode | ColourSequences);
    g_codePage = ::GetConsoleOutputCP();
    if (g_codePage != ::GetACP() && ::SetConsoleOutputCP(::GetACP())) {
        std::atexit(RestoreCodePage);
    }
}

} // namespace tool
