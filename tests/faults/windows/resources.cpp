#include "tests/faults/resources.h"

#include "quarn/platform/win32_api.h"

#include <cstdint>

// Files, mutexes, registry keys and the like, asked for one by one: the function that is made for counting
// them gives 0 under Wine, and the question for all handles of all processes can end Wine's server.
std::ptrdiff_t OpenFiles()
{
    constexpr std::uintptr_t Step = 4; // from one handle to the next
    constexpr int Gap = 128;           // so many that are none in a row, and there are no more
    std::ptrdiff_t count = 0;
    int missing = 0;
    for (std::uintptr_t handle = Step; missing < Gap; handle += Step) {
        DWORD flags = 0;
        bool const isOpen = ::GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE;
        count += isOpen ? 1 : 0;
        missing = isOpen ? 0 : missing + 1;
    }
    return count;
}

// The system keeps no files for locks here, and what is a lock's is among the open handles.
std::ptrdiff_t LockFiles(std::string const& /*settingsFile*/)
{
    return 0;
}
