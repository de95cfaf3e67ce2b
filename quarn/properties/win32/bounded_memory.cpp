#include "quarn/properties/win32/bounded_memory.h"

#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace Quarn::detail {

BoundedMemory::~BoundedMemory()
{
    while (m_blocks != nullptr) {
        deallocate(m_blocks + 1);
    }
}

void* BoundedMemory::allocate(XMLSize_t size)
{
    if (size > m_left) {
        throw xercesc::OutOfMemoryException();
    }
    void* const start = ::operator new(size + sizeof(Block), std::nothrow);
    if (start == nullptr) {
        throw xercesc::OutOfMemoryException();
    }
    m_left -= size;
    auto* const block = new (start) Block{nullptr, m_blocks, size};
    if (m_blocks != nullptr) {
        m_blocks->previous = block;
    }
    m_blocks = block;
    return block + 1;
}

void BoundedMemory::deallocate(void* memory)
{
    if (memory == nullptr) {
        return;
    }
    Block* const block = static_cast<Block*>(memory) - 1;
    (block->previous != nullptr ? block->previous->next : m_blocks) = block->next;
    if (block->next != nullptr) {
        block->next->previous = block->previous;
    }
    m_left += block->size;
    ::operator delete(block);
}

xercesc::MemoryManager* BoundedMemory::getExceptionMemoryManager()
{
    return xercesc::XMLPlatformUtils::fgMemoryManager;
}

} // namespace Quarn::detail
