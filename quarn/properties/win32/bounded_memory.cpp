#include "quarn/properties/win32/bounded_memory.h"

#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace Quarn::detail {

namespace {

// In front of every block stands its size.
constexpr std::size_t BlockPrefix = alignof(std::max_align_t);
static_assert(BlockPrefix >= sizeof(std::size_t));

} // namespace

void* BoundedMemory::allocate(XMLSize_t size)
{
    if (size > m_left) {
        throw xercesc::OutOfMemoryException();
    }
    void* const start = ::operator new(size + BlockPrefix, std::nothrow);
    if (start == nullptr) {
        throw xercesc::OutOfMemoryException();
    }
    m_left -= size;
    new (start) std::size_t(size);
    return static_cast<char*>(start) + BlockPrefix;
}

void BoundedMemory::deallocate(void* block)
{
    if (block == nullptr) {
        return;
    }
    void* const start = static_cast<char*>(block) - BlockPrefix;
    m_left += *static_cast<std::size_t*>(start);
    ::operator delete(start);
}

xercesc::MemoryManager* BoundedMemory::getExceptionMemoryManager()
{
    return xercesc::XMLPlatformUtils::fgMemoryManager;
}

} // namespace Quarn::detail
