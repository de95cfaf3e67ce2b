#include "quarn/properties/win32/save_lock.h"

#include "quarn/platform/win32_api.h"

namespace Quarn::detail {

namespace {

constexpr DWORD LockWait = 5000;

// There as long as somebody has it open, and so it ends with its processes.
HANDLE OpenSign(string const& lockName)
{
    return ::CreateMutexA(nullptr, FALSE, (lockName + "-without").c_str());
}

} // namespace

SaveLock::SaveLock(SettingsPath const& path)
    : m_name(LockName(path)),
      m_mutex(::CreateMutexA(nullptr, FALSE, m_name.c_str()))
{
    if (m_mutex != nullptr) {
        DWORD const result = ::WaitForSingleObject(m_mutex, LockWait);
        m_owned = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    }
    if (!m_owned) {
        m_sign = OpenSign(m_name);
    }
}

bool SaveLock::IsDoneWithout() const
{
    HANDLE const sign = OpenSign(m_name);
    DWORD const error = ::GetLastError();
    if (sign == nullptr) {
        return error == ERROR_ACCESS_DENIED; // another user's
    }
    ::CloseHandle(sign);
    return error == ERROR_ALREADY_EXISTS;
}

SaveLock::~SaveLock()
{
    if (m_owned) {
        ::ReleaseMutex(m_mutex);
    }
    if (m_mutex != nullptr) {
        ::CloseHandle(m_mutex);
    }
    if (m_sign != nullptr) {
        ::CloseHandle(m_sign);
    }
}

} // namespace Quarn::detail
