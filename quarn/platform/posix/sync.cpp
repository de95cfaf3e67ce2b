// Mutexes and critical sections on POSIX.
#include "quarn/platform/posix/handles.h"
#include "quarn/platform/posix/lock_file.h"

#include <map>
#include <mutex>
#include <string_view>

#include <pthread.h>

namespace Quarn::detail {

namespace {

class Mutex;

// What all mutexes of the process have in common.
struct Mutexes
{
    std::mutex lock; // for the members below and for the owners; never held while waiting
    std::map<std::string, std::weak_ptr<Mutex>> byPath;
    pthread_key_t owned; // of a thread: the first mutex that it owns
};

Mutexes& All();

// A thread for as long as it lives.
void const* ThisThread()
{
    thread_local char t_thread;
    return &t_thread;
}

// One per name and process, whatever the number of handles.
class Mutex final : public HandleObject, public std::enable_shared_from_this<Mutex>
{
public:
    explicit Mutex(std::string path) : m_path(std::move(path)) {}

    // False with errno set when there can be no such lock.
    bool Open(bool& existed) { return m_presence.Open(m_path, existed); }
    std::string const& Path() const { return m_path; }

    DWORD Wait(DWORD milliseconds);
    BOOL Release();
    // The owning thread has ended: the next owner is told.
    void Abandon();
    Mutex* NextOwned() const { return m_nextOwned; }

private:
    bool IsMine() const { return m_owner == ThisThread() && m_held; }
    std::shared_ptr<Mutex> ForgetOwner();

    std::string m_path;
    Presence m_presence;
    // Of the owner, all under the common lock. In a forked child the file is gone, and with it the owner.
    LockFile m_held;
    void const* m_owner = nullptr;
    unsigned m_count = 0;
    Mutex* m_nextOwned = nullptr;
    std::shared_ptr<Mutex> m_self; // an owned mutex outlives its handles
};

void AbandonOwned(void* first)
{
    for (auto* mutex = static_cast<Mutex*>(first); mutex != nullptr;) {
        Mutex* const next = mutex->NextOwned();
        mutex->Abandon();
        mutex = next;
    }
}

Mutexes& All()
{
    // Never destroyed: locks may be taken at exit.
    static Mutexes& all = *[] {
        // Before a fork the locks are taken in the reverse order of this: a LockFile's inside this one.
        ForkGeneration();
        auto* const made = new Mutexes;
        ::pthread_key_create(&made->owned, AbandonOwned);
        ::pthread_atfork([] { All().lock.lock(); }, [] { All().lock.unlock(); },
                         [] {
                             ::pthread_setspecific(All().owned, nullptr);
                             All().lock.unlock();
                         });
        return made;
    }();
    return all;
}

DWORD Mutex::Wait(DWORD milliseconds)
{
    Mutexes& all = All();
    {
        std::lock_guard const guard(all.lock);
        if (IsMine()) {
            ++m_count;
            return WAIT_OBJECT_0;
        }
        bool existed = false;
        if (!m_presence && !m_presence.Open(m_path, existed)) {
            FailErrno();
            return WAIT_FAILED;
        }
    }
    LockFile file;
    DWORD const result = AcquireLock(m_path, milliseconds, file);
    if (!file) {
        if (result == WAIT_FAILED) {
            FailErrno();
        }
        return result;
    }
    std::shared_ptr<Mutex> const inherited = [&] { // an owner before a fork
        std::lock_guard const guard(all.lock);
        std::shared_ptr<Mutex> before = std::move(m_self);
        m_held = std::move(file);
        m_owner = ThisThread();
        m_count = 1;
        m_self = shared_from_this();
        m_nextOwned = static_cast<Mutex*>(::pthread_getspecific(all.owned));
        ::pthread_setspecific(all.owned, this);
        return before;
    }();
    return result;
}

std::shared_ptr<Mutex> Mutex::ForgetOwner()
{
    m_owner = nullptr;
    m_count = 0;
    m_nextOwned = nullptr;
    return std::move(m_self);
}

BOOL Mutex::Release()
{
    Mutexes& all = All();
    std::shared_ptr<Mutex> self;
    LockFile held;
    {
        std::lock_guard const guard(all.lock);
        if (!IsMine()) {
            return Fail(ERROR_NOT_OWNER);
        }
        if (--m_count != 0) {
            return TRUE;
        }
        auto* const first = static_cast<Mutex*>(::pthread_getspecific(all.owned));
        if (first == this) {
            ::pthread_setspecific(all.owned, m_nextOwned);
        } else {
            Mutex* before = first;
            while (before->m_nextOwned != this) {
                before = before->m_nextOwned;
            }
            before->m_nextOwned = m_nextOwned;
        }
        self = ForgetOwner();
        held = std::move(m_held);
    }
    ReleaseLock(held);
    return TRUE;
}

void Mutex::Abandon()
{
    std::shared_ptr<Mutex> self;
    LockFile held;
    std::lock_guard const guard(All().lock);
    self = ForgetOwner();
    held = std::move(m_held);
}

// The process's mutex of that name, new or old.
HANDLE OpenMutex(std::string_view name, bool& existed)
{
    Mutexes& all = All();
    std::string path = LockFilePath(std::string(name));
    auto mutex = std::make_shared<Mutex>(path);
    if (!mutex->Open(existed)) {
        FailErrno();
        return nullptr;
    }
    std::shared_ptr<Mutex> const found = [&] {
        std::lock_guard const guard(all.lock);
        std::erase_if(all.byPath, [](auto const& entry) { return entry.second.expired(); });
        std::weak_ptr<Mutex>& known = all.byPath[std::move(path)];
        std::shared_ptr<Mutex> old = known.lock();
        if (!old) {
            known = mutex;
            old = mutex;
        }
        return old;
    }();
    return AddHandle(found);
}

// The storage of a critical section as what it holds.
pthread_mutex_t* Native(CRITICAL_SECTION* section)
{
    static_assert(sizeof(pthread_mutex_t) <= sizeof section->Storage);
    static_assert(alignof(pthread_mutex_t) <= alignof(CRITICAL_SECTION));
    return reinterpret_cast<pthread_mutex_t*>(section->Storage);
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

HANDLE CreateMutexA(_SECURITY_ATTRIBUTES* /*security*/, BOOL initialOwner, char const* name)
{
    constexpr std::string_view LocalPrefix = "Local\\";
    constexpr std::string_view GlobalPrefix = "Global\\";
    HANDLE const failure = nullptr;
    return Guarded(failure, [&]() -> HANDLE {
        std::string_view wanted = name != nullptr ? name : "";
        if (wanted.empty()) {
            Fail(ERROR_NOT_SUPPORTED);
            return nullptr;
        }
        if (wanted.size() > MAX_PATH) {
            Fail(ERROR_FILENAME_EXCED_RANGE);
            return nullptr;
        }
        // Names belong to the user's session unless they say otherwise.
        if (wanted.starts_with(LocalPrefix)) {
            wanted.remove_prefix(LocalPrefix.size());
        }
        std::size_t const prefix = wanted.starts_with(GlobalPrefix) ? GlobalPrefix.size() : 0;
        if (wanted.find('\\', prefix) != wanted.npos) {
            Fail(ERROR_PATH_NOT_FOUND);
            return nullptr;
        }
        if (wanted.size() == prefix) {
            Fail(ERROR_INVALID_NAME);
            return nullptr;
        }
        bool existed = false;
        HANDLE const handle = OpenMutex(wanted, existed);
        if (handle != nullptr) {
            if (initialOwner != FALSE && !existed) {
                ::WaitForSingleObject(handle, INFINITE);
            }
            ::SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
        }
        return handle;
    });
}

BOOL ReleaseMutex(HANDLE handle)
{
    std::shared_ptr<Mutex> const mutex = FindHandle<Mutex>(handle);
    return mutex ? mutex->Release() : FALSE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    return Guarded(WAIT_FAILED, [&] {
        std::shared_ptr<Mutex> const mutex = FindHandle<Mutex>(handle);
        return mutex ? mutex->Wait(milliseconds) : WAIT_FAILED;
    });
}

void InitializeCriticalSection(CRITICAL_SECTION* section)
{
    ::pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    ::pthread_mutex_init(new (section->Storage) pthread_mutex_t, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

void EnterCriticalSection(CRITICAL_SECTION* section)
{
    ::pthread_mutex_lock(Native(section));
}

void LeaveCriticalSection(CRITICAL_SECTION* section)
{
    ::pthread_mutex_unlock(Native(section));
}

void DeleteCriticalSection(CRITICAL_SECTION* section)
{
    ::pthread_mutex_destroy(Native(section));
}
