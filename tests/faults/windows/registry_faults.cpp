// The registry is the system's own here.
#include "tests/faults/registry_faults.h"

#include <cstring>

std::vector<Faults::Plan> RegistryPlans()
{
    return Faults::Plans();
}

void CloseRegistryFiles() {}

bool EndsEnumerations(char const* function)
{
    return function != nullptr && std::strncmp(function, "Reg", 3) == 0;
}
