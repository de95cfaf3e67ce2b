// The allocations of the library, of the standard library and of this program: every `operator new` ends in
// the `malloc` that the standard library's DLL imports, and so does what it needs itself, exceptions
// included. The C library's and the system's own allocations are none of these.
#include "tests/faults/fault_plan.h"
#include "tests/faults/windows/imports.h"

#include <cerrno>
#include <cstdlib>

namespace {

// One name for all, for they fail together.
bool IsRefused()
{
    if (!Faults::Strikes(Faults::Kind::Memory, "malloc")) {
        return false;
    }
    errno = ENOMEM;
    return true;
}

void* Counted(void* block)
{
    Faults::CountBlocks(block != nullptr ? 1 : 0);
    return block;
}

void* HookedMalloc(std::size_t size)
{
    return IsRefused() ? nullptr : Counted(std::malloc(size));
}

void* HookedCalloc(std::size_t count, std::size_t size)
{
    return IsRefused() ? nullptr : Counted(std::calloc(count, size));
}

void* HookedRealloc(void* block, std::size_t size)
{
    if (IsRefused()) {
        return nullptr;
    }
    void* const moved = std::realloc(block, size);
    return block == nullptr ? Counted(moved) : moved;
}

void HookedFree(void* block)
{
    Faults::CountBlocks(block != nullptr ? -1 : 0);
    std::free(block);
}

Faults::Hook const g_malloc("malloc", reinterpret_cast<void*>(HookedMalloc));
Faults::Hook const g_calloc("calloc", reinterpret_cast<void*>(HookedCalloc));
Faults::Hook const g_realloc("realloc", reinterpret_cast<void*>(HookedRealloc));
Faults::Hook const g_free("free", reinterpret_cast<void*>(HookedFree));

} // namespace
