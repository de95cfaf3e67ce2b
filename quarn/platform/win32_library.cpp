#include "quarn/platform/win32_library.h"

#include "quarn/platform/guards.h"
#include "quarn/platform/module_state.h"
#include "quarn/platform/win32_api.h"
#include "quarn/text/exception.h"

#include <new>

namespace Win32Quarn {

using Quarn::detail::LoadingMutex;

Quarn::string const Win32Library::LibrarySubdir = "bin";

Win32LibraryFactory const& Win32LibFactory = *new Win32LibraryFactory;

Win32Library::Win32Library(Quarn::string const& name, Quarn::string const& language) : Library(name, language)
{}

Win32Library::~Win32Library() = default;

bool Win32Library::Load()
{
    MutexWrapper const guard(LoadingMutex());
    if (m_refCount == 0) {
        m_hMod = LoadLib(GetLibName());
        m_refCount = m_hMod != nullptr ? 1 : 0;
        return m_hMod != nullptr;
    }
    if (m_hMod == nullptr) {
        Quarn::string message;
        message.Format("Win32Library::Load() Failed: Lib=%s, m_hMod = NULL, m_refCount=%lu",
                       GetLibName().c_str(), GetRefCount());
        throw Quarn::QuarnException(message);
    }
    return true;
}

bool Win32Library::Unload()
{
    MutexWrapper const guard(LoadingMutex());
    return m_refCount != 0;
}

void (*Win32Library::GetFunction(int ordinal) const)()
{
    MutexWrapper const guard(LoadingMutex());
    if (m_hMod == nullptr) {
        return nullptr;
    }
    // Any other number would be read as the address of a name.
    if (ordinal < 0 || ordinal > UINT16_MAX) {
        ::SetLastError(ERROR_INVALID_ORDINAL);
        return nullptr;
    }
    auto const* const name = reinterpret_cast<char const*>(static_cast<std::uintptr_t>(ordinal));
    return reinterpret_cast<void (*)()>(::GetProcAddress(m_hMod, name));
}

void (*Win32Library::GetFunction(Quarn::string const& name) const)()
{
    MutexWrapper const guard(LoadingMutex());
    if (m_hMod == nullptr) {
        return nullptr;
    }
    auto const function = reinterpret_cast<void (*)()>(::GetProcAddress(m_hMod, name.c_str()));
    if (function == nullptr) {
        m_lastError = ::GetLastError();
    }
    return function;
}

bool Win32Library::IsLoaded() const
{
    return m_hMod != nullptr;
}

Win32Library::operator HINSTANCE() const
{
    return m_hMod;
}

unsigned long Win32Library::GetRefCount() const
{
    return m_refCount;
}

unsigned long Win32Library::GetLastError() const
{
    return m_lastError;
}

Quarn::Library* Win32LibraryFactory::MakeLibrary(Quarn::string const& name,
                                                 Quarn::string const& language) const
{
    try {
        return new Win32Library(name, language);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

void Win32LibraryFactory::DeleteLibrary(Quarn::Library* library) const
{
    delete library;
}

} // namespace Win32Quarn
