#include "tests/counted_memory.h"

#include <cstdlib>
#include <new>

CountedMemory g_memory;

namespace {

constexpr std::size_t HeaderSize = alignof(std::max_align_t);

} // namespace

// Each block remembers its size before its first byte.
void* operator new(std::size_t size)
{
    auto* const block = static_cast<std::size_t*>(std::malloc(size + HeaderSize));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    *block = size;
    ++g_memory.count;
    g_memory.live += size;
    g_memory.peak = g_memory.live > g_memory.peak ? g_memory.live : g_memory.peak;
    g_memory.largest = size > g_memory.largest ? size : g_memory.largest;
    return reinterpret_cast<char*>(block) + HeaderSize;
}

void operator delete(void* memory) noexcept
{
    if (memory != nullptr) {
        auto* const block = reinterpret_cast<std::size_t*>(static_cast<char*>(memory) - HeaderSize);
        g_memory.live -= *block;
        std::free(block);
    }
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    operator delete(memory);
}
