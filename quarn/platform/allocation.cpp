#include "quarn/platform/allocation.h"

#include <cstdlib>

namespace Quarn {

void* malloc(std::size_t size)
{
    return std::malloc(size); // NOLINT(cppcoreguidelines-no-malloc)
}

void free(void* memory)
{
    std::free(memory); // NOLINT(cppcoreguidelines-no-malloc)
}

} // namespace Quarn
