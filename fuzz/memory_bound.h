// What a reader may take of memory: so many bytes, and so many more for each byte of its input. Each target
// states the bound of its reader, as small as is true, and has its reading watched: a reading that takes more
// ends the program.
#pragma once

#include "fuzz/allocations.h"

#include <cstddef>

namespace fuzz {

struct MemoryBound
{
    char const* reader;
    std::size_t fixed;
    std::size_t perByte;
};

// Ends the program with a message where `peak` is beyond the bound; else remembers the tightest of them.
void CheckPeak(MemoryBound const& bound, std::size_t size, std::size_t peak);

// Calls `read` and compares the most that was allocated meanwhile, at the same time and over what was
// allocated before, with the bound for an input of `size` bytes. What `read` throws passes through.
template<typename Read>
void Watch(MemoryBound const& bound, std::size_t size, Read read)
{
    class Watched
    {
    public:
        Watched(MemoryBound const& bound, std::size_t size) : m_bound(bound), m_size(size)
        {
            g_allocations.peak = m_before;
        }
        Watched(Watched const&) = delete;
        Watched& operator=(Watched const&) = delete;
        ~Watched() { CheckPeak(m_bound, m_size, g_allocations.peak - m_before); }

    private:
        MemoryBound const& m_bound;
        std::size_t m_size;
        std::size_t m_before = g_allocations.live;
    };
    Watched const watched(bound, size);
    read();
}

// Prints for each reader by how much its bound was used.
void PrintPeaks();

} // namespace fuzz
