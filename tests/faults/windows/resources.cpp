#include "tests/faults/resources.h"

#include "quarn/platform/win32_api.h"

#include <algorithm>

namespace {

// The answer to the question for all handles of all processes.
struct SystemHandles
{
    struct Entry
    {
        USHORT process;
        USHORT traceIndex;
        UCHAR type;
        UCHAR attributes;
        USHORT handle;
        void* object;
        ULONG access;
    };
    ULONG count;
    Entry entries[1];
};

using QuerySystem = LONG(WINAPI*)(int question, void* answer, ULONG size, ULONG* needed);

} // namespace

// Files, mutexes, registry keys and the like. The function that is made for this gives 0 under Wine.
std::ptrdiff_t OpenFiles()
{
    constexpr int HandleQuestion = 16;
    static auto const query = reinterpret_cast<QuerySystem>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    static SystemHandles answer[65'536]; // nothing that would be counted as memory
    ULONG needed = 0;
    EXPECT_EQ(query(HandleQuestion, answer, sizeof answer, &needed), 0);
    SystemHandles::Entry const* const first = answer[0].entries;
    DWORD const process = ::GetCurrentProcessId();
    return std::count_if(first, first + answer[0].count, [process](SystemHandles::Entry const& entry) {
        return entry.process == static_cast<USHORT>(process);
    });
}

// The system keeps no files for locks here, and what is a lock's is among the open handles.
std::ptrdiff_t LockFiles(std::string const& /*settingsFile*/)
{
    return 0;
}
