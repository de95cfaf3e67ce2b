// Scoped guards: a critical section, a mutex and the wait cursor, each acquired by the constructor and given
// back by the destructor. A guard belongs to the thread that made it. None of them throws.
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"

#include <concepts>
#include <cstddef>

namespace Win32Quarn {

// Holds a critical section, which must outlive the guard.
class QUARN_API CSWrapper
{
public:
    // Enters the section, waiting as long as another thread is in it.
    CSWrapper(CRITICAL_SECTION& section);
    CSWrapper(CSWrapper const&) = delete;
    CSWrapper& operator=(CSWrapper const&) = delete;
    ~CSWrapper();

    // Leaves the section now; again, it does nothing.
    void Leave();

private:
    CRITICAL_SECTION* m_section;
};

// Holds a mutex, between threads and, by its name, between processes. The result of the wait is not tested: a
// guard on a null or failed handle goes on without the lock.
class QUARN_API MutexWrapper
{
public:
    // Waits, without limit, for a mutex that stays the caller's and must outlive the guard.
    MutexWrapper(HANDLE mutex);
    // Creates or opens the mutex of this name (null: one without a name) and waits for it, without limit; the
    // guard closes the handle. Names are compared exactly.
    MutexWrapper(char const* name);
    // The null handle: no lock. So that neither nullptr nor 0 is ambiguous; a number is no handle.
    MutexWrapper(std::nullptr_t) : MutexWrapper(HANDLE{}) {}
    template<std::integral T>
    MutexWrapper(T) : MutexWrapper(HANDLE{})
    {}
    MutexWrapper(MutexWrapper const&) = delete;
    MutexWrapper& operator=(MutexWrapper const&) = delete;
    ~MutexWrapper();

    // Gives the mutex up now; again, it does nothing. A failure, such as that of a mutex that another thread
    // holds, is ignored; the thread's last error stays that of the work before.
    void Release();

private:
    HANDLE m_mutex;
    bool m_owned;
};

// Shows the system's wait cursor. Where there is no cursor, does nothing.
class QUARN_API WaitCursor
{
public:
    // Shows the wait cursor.
    WaitCursor();
    WaitCursor(WaitCursor const&) = delete;
    WaitCursor& operator=(WaitCursor const&) = delete;
    // Shows the cursor of before.
    ~WaitCursor();

private:
    HCURSOR m_previous;
};

} // namespace Win32Quarn
