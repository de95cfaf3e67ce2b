// Memory for one run of the XML library, up to a bound: whatever a hostile document makes the parser collect,
// it ends in a refusal. One object serves one thread.
#pragma once

#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

namespace Quarn::detail {

class BoundedMemory final : public xercesc::MemoryManager
{
public:
    explicit BoundedMemory(std::size_t bound) : m_left(bound) {}

    // Throws xercesc::OutOfMemoryException beyond the bound.
    void* allocate(XMLSize_t size) override;
    void deallocate(void* block) override;
    // Exceptions may outlive this object, so they use the XML library's own memory.
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    std::size_t m_left;
};

} // namespace Quarn::detail
