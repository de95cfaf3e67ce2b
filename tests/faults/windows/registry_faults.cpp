// The registry is the system's own here.
#include "tests/faults/registry_faults.h"

std::vector<Faults::Plan> RegistryPlans()
{
    return Faults::Plans();
}

void CloseRegistryFiles() {}
