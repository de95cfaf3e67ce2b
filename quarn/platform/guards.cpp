#include "quarn/platform/guards.h"

#include "quarn/platform/win32_api.h"

namespace Win32Quarn {

CSWrapper::CSWrapper(CRITICAL_SECTION& section) : m_section(&section)
{
    ::EnterCriticalSection(m_section);
}

CSWrapper::~CSWrapper()
{
    Leave();
}

void CSWrapper::Leave()
{
    if (m_section != nullptr) {
        ::LeaveCriticalSection(m_section);
        m_section = nullptr;
    }
}

MutexWrapper::MutexWrapper(HANDLE mutex) : m_mutex(mutex), m_owned(false)
{
    if (m_mutex != nullptr) {
        ::WaitForSingleObject(m_mutex, INFINITE);
    }
}

MutexWrapper::MutexWrapper(char const* name) : MutexWrapper(::CreateMutexA(nullptr, FALSE, name))
{
    m_owned = true; // NOLINT(cppcoreguidelines-prefer-member-initializer): the other constructor is done
}

MutexWrapper::~MutexWrapper()
{
    Release();
}

void MutexWrapper::Release()
{
    if (m_mutex == nullptr) {
        return;
    }
    DWORD const error = ::GetLastError();
    ::ReleaseMutex(m_mutex);
    if (m_owned) {
        ::CloseHandle(m_mutex);
    }
    m_mutex = nullptr;
    ::SetLastError(error);
}

WaitCursor::WaitCursor() : m_previous(::SetCursor(::LoadCursorA(nullptr, IDC_WAIT))) {}

WaitCursor::~WaitCursor()
{
    ::SetCursor(m_previous);
}

} // namespace Win32Quarn
