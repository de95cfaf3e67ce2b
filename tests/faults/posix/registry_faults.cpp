// The registry lies in data bases here, whose library allocates by itself.
#include "tests/faults/registry_faults.h"

#include <cstring>

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

::sqlite3_mem_methods g_methods;

void* Allocate(int size)
{
    return Faults::Strikes(Faults::Kind::Memory, "operator new") ? nullptr : g_methods.xMalloc(size);
}

void* Reallocate(void* block, int size)
{
    return Faults::Strikes(Faults::Kind::Memory, "operator new") ? nullptr : g_methods.xRealloc(block, size);
}

// Before the library opens a data base.
int const g_configured = [] {
    ::sqlite3_config(SQLITE_CONFIG_GETMALLOC, &g_methods);
    ::sqlite3_mem_methods hooked = g_methods;
    hooked.xMalloc = Allocate;
    hooked.xRealloc = Reallocate;
    return ::sqlite3_config(SQLITE_CONFIG_MALLOC, &hooked);
}();

} // namespace

std::vector<Faults::Plan> RegistryPlans()
{
    EXPECT_EQ(g_configured, SQLITE_OK);
    using Faults::Kind;
    using Faults::Span;
    // A lock that fails is taken for one that others hold, and waited for: only once here.
    return {{Kind::Memory, Span::One, 1, ENOMEM},
            {Kind::Memory, Span::Rest, 1, ENOMEM},
            {Kind::Files, Span::One, 1, EACCES},
            {Kind::Files, Span::One, 1, ENOSPC},
            {Kind::Files, Span::One, 1, EIO}};
}

void CloseRegistryFiles()
{
    // No child gets them, and so a fork closes them.
    ::pid_t const child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

// The files are open, and what has been read of them is known: only memory can be missing.
bool EndsEnumerations(char const* function)
{
    return function != nullptr && std::strcmp(function, "operator new") == 0;
}

// Whatever the registry's files need to be read and written.
bool EndsMoves(char const* function)
{
    return function != nullptr;
}
