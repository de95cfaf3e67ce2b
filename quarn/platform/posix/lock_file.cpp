#include "quarn/platform/posix/lock_file.h"

#include "quarn/platform/posix/files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <vector>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

constexpr off_t HolderByte = 0;
constexpr off_t PresenceByte = 1;

// Written into the file by the holder.
constexpr char Held = 1;
constexpr char Free = 0;

// Every open descriptor, known to the fork handlers.
struct OpenFiles
{
    std::mutex lock;
    std::vector<int> descriptors;
    std::atomic<unsigned> generation = 0;
};

OpenFiles& Files()
{
    // Never destroyed: locks may be released at exit.
    static OpenFiles& files = *[] {
        auto* const made = new OpenFiles;
        ::pthread_atfork([] { Files().lock.lock(); }, [] { Files().lock.unlock(); },
                         [] {
                             OpenFiles& inherited = Files();
                             for (int const descriptor : inherited.descriptors) {
                                 ::close(descriptor);
                             }
                             inherited.descriptors.clear();
                             ++inherited.generation;
                             inherited.lock.unlock();
                         });
        return made;
    }();
    return files;
}

// Creates the file with its final mode: it gets its name only then, and has none before, so that nothing
// stays behind.
int CreateLockFile(std::string const& path)
{
    std::string const folder = path.substr(0, path.rfind('/') + 1);
    Descriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!file || ::fchmod(file.Get(), 0666) != 0) {
        return -1;
    }
    std::string const self = "/proc/self/fd/" + std::to_string(file.Get());
    return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0 ? file.Release()
                                                                                            : -1;
}

// Without O_CREAT: systems refuse it for files of other users in folders that everybody may write to.
int OpenLockFile(std::string const& path)
{
    for (;;) {
        int descriptor = ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        if (descriptor < 0 && errno == ENOENT) {
            descriptor = CreateLockFile(path);
            if (descriptor < 0 && errno == EEXIST) {
                continue;
            }
        }
        if (descriptor < 0 && errno == EINTR) {
            continue;
        }
        struct ::stat status;
        if (descriptor >= 0 && (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
            ::close(descriptor);
            errno = EACCES;
            return -1;
        }
        return descriptor;
    }
}

// One operation on a range of the file. The locks are the open file description's, not the process's: another
// descriptor of the same file may be closed at any time.
bool SetLock(LockFile const& file, int command, short type, off_t start, off_t length)
{
    struct ::flock request
    {};
    request.l_type = type;
    request.l_whence = SEEK_SET;
    request.l_start = start;
    request.l_len = length;
    int result = 0;
    do {
        result = ::fcntl(file.Get(), command, &request);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool IsBusy(int error)
{
    return error == EAGAIN || error == EACCES;
}

// Whether the file still has its name; without it, nobody else can find the lock.
bool IsNamed(LockFile const& file)
{
    struct ::stat status;
    return ::fstat(file.Get(), &status) == 0 && status.st_nlink != 0;
}

// Tries until the deadline, in growing steps.
bool LockUntil(LockFile const& file, ULONGLONG deadline)
{
    for (DWORD step = 1;; step = std::min<DWORD>(step * 2, 16)) {
        if (SetLock(file, F_OFD_SETLK, F_WRLCK, HolderByte, 1)) {
            return true;
        }
        ULONGLONG const now = ::GetTickCount64();
        if (!IsBusy(errno) || now >= deadline) {
            return false;
        }
        ::Sleep(static_cast<DWORD>(std::min<ULONGLONG>(step, deadline - now)));
    }
}

} // namespace

std::string LockFilePath(std::string const& name)
{
    // Never TMPDIR: all processes must look in the same place.
    static char const* const folder = ::access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm/" : "/tmp/";
    std::uint64_t hash = 14695981039346656037U; // FNV-1a
    std::string readable;
    for (char const c : name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
        bool const isPlain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
        if (readable.size() < 64) {
            readable += isPlain ? c : '_';
        }
    }
    std::string path = folder;
    path.append("quarnutil.").append(readable).append(".");
    for (int shift = 60; shift >= 0; shift -= 4) {
        path += "0123456789abcdef"[hash >> shift & 0xF];
    }
    return path;
}

unsigned ForkGeneration() noexcept
{
    return Files().generation;
}

LockFile LockFile::Open(std::string const& path)
{
    OpenFiles& files = Files();
    std::lock_guard const guard(files.lock);
    files.descriptors.reserve(files.descriptors.size() + 1);
    LockFile file;
    file.m_descriptor = OpenLockFile(path);
    file.m_generation = files.generation;
    if (file.m_descriptor >= 0) {
        files.descriptors.push_back(file.m_descriptor);
    }
    return file;
}

LockFile::LockFile(LockFile&& other) noexcept
    : m_descriptor(other.m_descriptor),
      m_generation(other.m_generation)
{
    other.m_descriptor = -1;
}

LockFile& LockFile::operator=(LockFile&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_generation, other.m_generation);
    return *this;
}

LockFile::~LockFile()
{
    OpenFiles& files = Files();
    if (m_descriptor < 0) {
        return;
    }
    std::lock_guard const guard(files.lock);
    if (m_generation == files.generation) {
        std::erase(files.descriptors, m_descriptor);
        ::close(m_descriptor);
    }
}

LockFile::operator bool() const
{
    return m_descriptor >= 0 && m_generation == ForkGeneration();
}

bool Presence::Open(std::string const& path, bool& existed)
{
    m_path = path;
    for (;;) {
        m_file = LockFile::Open(path);
        if (!m_file) {
            return false;
        }
        // Both bytes: nobody holds the lock, and nobody has a share.
        existed = !SetLock(m_file, F_OFD_SETLK, F_WRLCK, HolderByte, 2);
        if (existed && !IsBusy(errno)) {
            return false;
        }
        if (!existed) {
            // A new lock: what a dead process left does not concern it.
            [[maybe_unused]] ssize_t const written = ::pwrite(m_file.Get(), &Free, 1, HolderByte);
        }
        if (!SetLock(m_file, F_OFD_SETLKW, F_RDLCK, PresenceByte, 1) ||
            !SetLock(m_file, F_OFD_SETLK, F_UNLCK, HolderByte, 1)) {
            return false;
        }
        if (IsNamed(m_file)) {
            return true;
        }
    }
}

Presence::operator bool() const
{
    return m_file && IsNamed(m_file);
}

Presence::~Presence()
{
    // The name is this file's while the file has one: only a holder of both bytes takes names away.
    if (m_file && SetLock(m_file, F_OFD_SETLK, F_WRLCK, HolderByte, 2) && IsNamed(m_file)) {
        ::unlink(m_path.c_str());
    }
}

DWORD AcquireLock(std::string const& path, DWORD milliseconds, LockFile& file)
{
    ULONGLONG const deadline = ::GetTickCount64() + milliseconds;
    for (;;) {
        LockFile opened = LockFile::Open(path);
        if (!opened) {
            return WAIT_FAILED;
        }
        if (milliseconds == INFINITE ? !SetLock(opened, F_OFD_SETLKW, F_WRLCK, HolderByte, 1)
                                     : !LockUntil(opened, deadline)) {
            return IsBusy(errno) ? WAIT_TIMEOUT : WAIT_FAILED;
        }
        if (!IsNamed(opened)) {
            continue;
        }
        char mark = Free;
        bool const abandoned = ::pread(opened.Get(), &mark, 1, HolderByte) == 1 && mark == Held;
        [[maybe_unused]] ssize_t const written = ::pwrite(opened.Get(), &Held, 1, HolderByte);
        file = std::move(opened);
        return abandoned ? WAIT_ABANDONED : WAIT_OBJECT_0;
    }
}

void ReleaseLock(LockFile& file)
{
    if (file) {
        [[maybe_unused]] ssize_t const written = ::pwrite(file.Get(), &Free, 1, HolderByte);
    }
    file = LockFile();
}

} // namespace Quarn::detail
