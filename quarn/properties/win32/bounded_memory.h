// Memory for one run of the XML library, up to a bound: whatever a hostile document makes the parser collect,
// it ends in a refusal. What the XML library has not freed in the end, as it does after an allocation that
// failed, goes with the object. One object serves one thread.
#pragma once

#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

namespace Quarn::detail {

class BoundedMemory final : public xercesc::MemoryManager
{
public:
    explicit BoundedMemory(std::size_t bound) : m_left(bound) {}
    BoundedMemory(BoundedMemory const&) = delete;
    BoundedMemory& operator=(BoundedMemory const&) = delete;
    ~BoundedMemory() override;

    // Throws xercesc::OutOfMemoryException beyond the bound.
    void* allocate(XMLSize_t size) override;
    void deallocate(void* memory) override;
    // Exceptions may outlive this object, so they use the XML library's own memory.
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    struct alignas(std::max_align_t) Block // stands before the bytes that are given out
    {
        Block* previous;
        Block* next;
        std::size_t size;
    };

    std::size_t m_left;
    Block* m_blocks = nullptr;
};

} // namespace Quarn::detail
