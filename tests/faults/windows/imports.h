// The functions that the library and its standard library import from other modules. Their addresses stand in
// a table of each module, where hooks take the places of the system's: the modules stay those that are
// shipped. Out of reach is what a module behind them does for itself: the allocations of the system, of the C
// library, of the threads' and the compiler's library. So is what is got by ::GetProcAddress: the functions
// of companion libraries and, for the runtime, the system's clock.
#pragma once

#include <string>
#include <vector>

namespace Faults {

// Stands, from its construction on, for the function of that name in the tables of both modules.
class Hook
{
public:
    Hook(char const* name, void* function);
};

// The hooks that stand for nothing.
std::vector<std::string> IdleHooks();

// What the library imports from the system and no hook stands for.
std::vector<std::string> UnhookedImports();

} // namespace Faults
