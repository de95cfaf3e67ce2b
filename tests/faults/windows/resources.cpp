#include "tests/faults/resources.h"

#include "quarn/platform/win32_api.h"

std::ptrdiff_t OpenFiles()
{
    DWORD count = 0;
    EXPECT_TRUE(::GetProcessHandleCount(::GetCurrentProcess(), &count));
    return static_cast<std::ptrdiff_t>(count);
}

// The system keeps no files for locks here, and what is a lock's is among the open handles.
std::ptrdiff_t LockFiles(std::string const& /*settingsFile*/)
{
    return 0;
}
