#include "quarn/properties/win32/xml_library.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <new>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Quarn::detail {

namespace {

// The XML library's own memory, kept as long as the process. A start that runs out of memory half way can
// neither be finished nor undone, so what it takes is reserved beforehand.
class LibraryMemory final : public xercesc::MemoryManager
{
public:
    LibraryMemory() : m_reserve(new std::byte[ReserveSize]) {}

    void* allocate(XMLSize_t size) override
    {
        constexpr std::size_t Alignment = alignof(std::max_align_t);
        std::size_t const needed = (size + Alignment - 1) / Alignment * Alignment;
        if (m_isStarting && needed <= ReserveSize - m_used) {
            m_used += needed;
            return &m_reserve[m_used - needed];
        }
        void* const block = ::operator new(size, std::nothrow);
        if (block == nullptr) {
            throw xercesc::OutOfMemoryException();
        }
        return block;
    }

    void deallocate(void* block) override
    {
        auto* const byte = static_cast<std::byte*>(block);
        bool const isReserved =
            !std::less<>()(byte, m_reserve.get()) && std::less<>()(byte, m_reserve.get() + ReserveSize);
        if (!isReserved) {
            ::operator delete(block);
        }
    }

    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

    void EndStart() { m_isStarting = false; }

private:
    // Twice what a start takes.
    static constexpr std::size_t ReserveSize = std::size_t{1536} * 1024;

    std::unique_ptr<std::byte[]> m_reserve;
    std::size_t m_used = 0;
    bool m_isStarting = true;
};

// By itself the XML library ends the process where it cannot start.
class StartRefusal final : public xercesc::PanicHandler
{
public:
    void panic(PanicReasons reason) override { throw reason; }
};

// The XML library counts its users, but not safely between threads.
std::mutex& LibraryMutex()
{
    // Never destroyed: stores may be saved while the process ends.
    static auto& mutex = *new std::mutex;
    return mutex;
}

} // namespace

bool StartXmlLibrary() noexcept
{
    try {
        std::lock_guard const lock(LibraryMutex());
        // One start is never matched: starting anew takes longer than loading a file of thousands of values.
        static bool isKept = false;
        static bool isTried = false;
        if (!isTried) {
            auto memory = std::make_unique<LibraryMemory>();
            auto refusal = std::make_unique<StartRefusal>();
            isTried = true; // a start that has failed cannot be tried again
            LibraryMemory& kept = *memory.release();
            xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                                  refusal.release(), &kept);
            kept.EndStart();
            isKept = true;
        }
        if (!isKept) {
            return false;
        }
        xercesc::XMLPlatformUtils::Initialize();
        return true;
    } catch (...) {
        return false;
    }
}

void StopXmlLibrary() noexcept
{
    try {
        std::lock_guard const lock(LibraryMutex());
        xercesc::XMLPlatformUtils::Terminate();
    } catch (...) { // NOLINT(bugprone-empty-catch): nobody is left who could do anything about it
    }
}

} // namespace Quarn::detail
