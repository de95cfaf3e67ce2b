// Counts every byte that a program and the library allocate with operator new, for one thread.
#pragma once

#include <cstddef>

struct CountedMemory
{
    std::size_t live = 0;
    std::size_t peak = 0;
    std::size_t largest = 0;
    std::size_t count = 0; // of allocations
};

extern CountedMemory g_memory;
