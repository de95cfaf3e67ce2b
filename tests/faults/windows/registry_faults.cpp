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

bool EndsMoves(char const* function)
{
    return function != nullptr &&
           (std::strcmp(function, "RegEnumValueA") == 0 || std::strcmp(function, "RegSetValueExA") == 0);
}
