// Debugger output on POSIX: standard error, for somebody who asked for it.
#include "quarn/platform/win32_api.h"

#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

// The kernel names the process that traces this one, 0: none.
bool IsDebugged()
{
    int const file = ::open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    char text[4096];
    ::ssize_t const length = ::read(file, text, sizeof text - 1);
    ::close(file);
    text[length > 0 ? length : 0] = '\0';
    char const* const line = std::strstr(text, "\nTracerPid:");
    return line != nullptr && std::strtol(std::strchr(line, ':') + 1, nullptr, 10) != 0;
}

bool IsWanted()
{
    char const* const wish = std::getenv("QUARN_DEBUG_OUTPUT");
    return (wish != nullptr && std::strcmp(wish, "1") == 0) || IsDebugged();
}

} // namespace

} // namespace Quarn::detail

// Without stdio, which may be gone when a process ends.
void OutputDebugStringA(char const* text)
{
    if (text == nullptr || !Quarn::detail::IsWanted()) {
        return;
    }
    for (std::size_t left = std::strlen(text); left > 0;) {
        ::ssize_t const count = ::write(STDERR_FILENO, text, left);
        if (count <= 0) {
            return;
        }
        text += count;
        left -= static_cast<std::size_t>(count);
    }
}
