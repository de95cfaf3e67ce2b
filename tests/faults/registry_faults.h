// What the registry's faults need of the system.
#pragma once

#include "tests/faults/fault_loop.h"

// The faults that fall between this program and the registry's files.
std::vector<Faults::Plan> RegistryPlans();

// The next use of the registry opens its files again.
void CloseRegistryFiles();

// Whether that function's failure can end an enumeration, which the reader of the registry deliberately takes
// for its end.
bool EndsEnumerations(char const* function);
// Whether it can end a move's copying of values, which deliberately does not keep the move from deleting
// them.
bool EndsMoves(char const* function);
