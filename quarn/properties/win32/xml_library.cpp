#include "quarn/properties/win32/xml_library.h"

#include <mutex>

#include <xercesc/util/PlatformUtils.hpp>

namespace Quarn::detail {

namespace {

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
        if (!isKept) {
            xercesc::XMLPlatformUtils::Initialize();
            isKept = true;
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
