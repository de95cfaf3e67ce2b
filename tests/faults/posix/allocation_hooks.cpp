// The allocations of the whole program, the library's among them.
#include "tests/faults/fault_plan.h"

#include <cstdlib>
#include <new>

namespace {

void* Allocate(std::size_t size) noexcept
{
    if (Faults::Strikes(Faults::Kind::Memory, "operator new")) {
        return nullptr;
    }
    void* const block = std::malloc(size != 0 ? size : 1);
    Faults::CountBlocks(block != nullptr ? 1 : 0);
    return block;
}

void* AllocateOrThrow(std::size_t size)
{
    void* const block = Allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void Free(void* block) noexcept
{
    Faults::CountBlocks(block != nullptr ? -1 : 0);
    std::free(block);
}

} // namespace

void* operator new(std::size_t size)
{
    return AllocateOrThrow(size);
}

void* operator new[](std::size_t size)
{
    return AllocateOrThrow(size);
}

void* operator new(std::size_t size, std::nothrow_t const& /*tag*/) noexcept
{
    return Allocate(size);
}

void* operator new[](std::size_t size, std::nothrow_t const& /*tag*/) noexcept
{
    return Allocate(size);
}

void operator delete(void* block) noexcept
{
    Free(block);
}

void operator delete[](void* block) noexcept
{
    Free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    Free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    Free(block);
}

void operator delete(void* block, std::nothrow_t const& /*tag*/) noexcept
{
    Free(block);
}

void operator delete[](void* block, std::nothrow_t const& /*tag*/) noexcept
{
    Free(block);
}
