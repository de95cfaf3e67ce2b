#include "quarn/platform/allocation.h"

#include <cstdlib>

namespace Quarn {

void* malloc(std::size_t size)
{
    return std::malloc(size);
}

void free(void* memory)
{
    std::free(memory);
}

} // namespace Quarn
