#include "quarn/properties/win32/save_lock.h"

#include "quarn/platform/win32_api.h"

namespace Quarn::detail {

namespace {

constexpr DWORD LockWait = 5000;

} // namespace

SaveLock::SaveLock(SettingsPath const& path) : m_mutex(::CreateMutexA(nullptr, FALSE, LockName(path).c_str()))
{
    if (m_mutex != nullptr) {
        DWORD const result = ::WaitForSingleObject(m_mutex, LockWait);
        m_owned = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    }
}

SaveLock::~SaveLock()
{
    if (m_owned) {
        ::ReleaseMutex(m_mutex);
    }
    if (m_mutex != nullptr) {
        ::CloseHandle(m_mutex);
    }
}

} // namespace Quarn::detail
