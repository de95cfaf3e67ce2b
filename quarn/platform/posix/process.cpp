// The process, its environment and its clock on POSIX.
#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/files.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <unistd.h>

using namespace Quarn::detail;

DWORD GetCurrentProcessId()
{
    return static_cast<DWORD>(::getpid());
}

DWORD GetEnvironmentVariableA(char const* name, char* buffer, DWORD size)
{
    return Guarded(DWORD{0}, [&]() -> DWORD {
        char const* const value = name != nullptr ? std::getenv(name) : nullptr;
        return value != nullptr ? PutPath(value, size, buffer)
                                : static_cast<DWORD>(Fail(ERROR_ENVVAR_NOT_FOUND));
    });
}

int _putenv_s(char const* name, char const* value)
{
    if (name == nullptr || value == nullptr) {
        return EINVAL;
    }
    int const result = *value != '\0' ? ::setenv(name, value, 1) : ::unsetenv(name);
    return result == 0 ? 0 : errno;
}

void Sleep(DWORD milliseconds)
{
    ::timespec left{static_cast<std::time_t>(milliseconds / 1000),
                    static_cast<long>(milliseconds % 1000) * 1'000'000};
    do {
        while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
        }
    } while (milliseconds == INFINITE);
}

ULONGLONG GetTickCount64()
{
    ::timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now); // time asleep counts
    return static_cast<ULONGLONG>(now.tv_sec) * 1000 + static_cast<ULONGLONG>(now.tv_nsec) / 1'000'000;
}
