// Counts in the C library's place: these functions serve the program and all of its libraries.
#include "fuzz/allocations.h"

#include <cerrno>

#include <malloc.h>

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's own names

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace fuzz {

constinit Allocations g_allocations;

namespace {

void* Counted(void* block)
{
    g_allocations.Add(::malloc_usable_size(block));
    return block;
}

} // namespace

} // namespace fuzz

extern "C" {

void* malloc(std::size_t size)
{
    return fuzz::Counted(::__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return fuzz::Counted(::__libc_calloc(count, size));
}

// While it moves, both blocks are there.
void* realloc(void* block, std::size_t size)
{
    std::size_t const before = ::malloc_usable_size(block);
    void* const moved = ::__libc_realloc(block, size);
    if (moved != nullptr || size == 0) {
        fuzz::Counted(moved);
        fuzz::g_allocations.Remove(before);
    }
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return fuzz::Counted(::__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block)
{
    fuzz::g_allocations.Remove(::malloc_usable_size(block));
    ::__libc_free(block);
}
}

// NOLINTEND(bugprone-reserved-identifier)
