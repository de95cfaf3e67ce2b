// How much the program has allocated, in all of its libraries. Counted in one of three ways, one to a
// program: by the sanitizers' hooks, by functions in the place of the C library's own, or not at all. For one
// thread.
#pragma once

#include <cstddef>

namespace fuzz {

struct Allocations
{
    std::size_t live = 0;
    std::size_t peak = 0; // the most since it was last set

    void Add(std::size_t size)
    {
        live += size;
        peak = live > peak ? live : peak;
    }
    void Remove(std::size_t size) { live -= size; }
};

extern Allocations g_allocations;

} // namespace fuzz
