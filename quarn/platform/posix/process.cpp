// The process and its clock on POSIX.
#include "quarn/platform/win32_api.h"

#include <cerrno>
#include <ctime>

#include <unistd.h>

DWORD GetCurrentProcessId()
{
    return static_cast<DWORD>(::getpid());
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
