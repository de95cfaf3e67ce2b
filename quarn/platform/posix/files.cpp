// The contents of files on POSIX.
#include "quarn/platform/posix/files.h"

#include "quarn/platform/posix/handles.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>

#include <fcntl.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

class File final : public HandleObject
{
public:
    File(Descriptor descriptor, DWORD access) : m_descriptor(std::move(descriptor)), m_access(access) {}

    int Get() const { return m_descriptor.Get(); }
    bool CanRead() const { return (m_access & GENERIC_READ) != 0; }
    bool CanWrite() const { return (m_access & GENERIC_WRITE) != 0; }

private:
    Descriptor m_descriptor;
    DWORD m_access;
};

// The file of a handle that allows writing; null after a failure.
std::shared_ptr<File> FindWritable(HANDLE handle)
{
    std::shared_ptr<File> file = FindHandle<File>(handle);
    if (file && !file->CanWrite()) {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    return file;
}

// Whether what has been opened may be used as a file; sets the error otherwise.
BOOL CheckKind(Descriptor const& descriptor, bool writes, DWORD flags)
{
    struct ::stat status;
    if (::fstat(descriptor.Get(), &status) != 0) {
        return FailErrno();
    }
    if (S_ISDIR(status.st_mode)) {
        return (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0 ? TRUE : Fail(ERROR_ACCESS_DENIED);
    }
    if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode)) {
        return Fail(ERROR_ACCESS_DENIED);
    }
    return writes && IsReadOnly(status) ? Fail(ERROR_ACCESS_DENIED) : TRUE;
}

// Takes a file away again that has been created, unless all is well in the end.
class CreatedFile
{
public:
    CreatedFile() = default;
    CreatedFile(CreatedFile const&) = delete;
    CreatedFile& operator=(CreatedFile const&) = delete;
    ~CreatedFile()
    {
        if (m_path != nullptr) {
            ::unlink(m_path);
        }
    }

    void Take(char const* path) { m_path = path; }
    void Keep() { m_path = nullptr; }

private:
    char const* m_path = nullptr;
};

HANDLE OpenFile(char const* path, DWORD access, DWORD disposition, DWORD flags)
{
    bool const reads = (access & GENERIC_READ) != 0;
    // Emptying a file needs the right to write, whatever the handle allows.
    bool const writes = (access & GENERIC_WRITE) != 0 || disposition == CREATE_ALWAYS;
    // Without blocking: a pipe is opened only to be refused.
    int const mode = (writes  ? (reads ? O_RDWR : O_WRONLY)
                      : reads ? O_RDONLY
                              : O_PATH) |
                     O_NONBLOCK | O_NOCTTY;
    CreatedFile ours; // closed before it is taken away, for it comes first
    Descriptor descriptor;
    bool created = false;
    if (disposition != CREATE_NEW) {
        descriptor = Open(path, mode);
    }
    if (!descriptor && (disposition == CREATE_NEW || (disposition == CREATE_ALWAYS && errno == ENOENT))) {
        descriptor = Open(path, mode | O_CREAT | (disposition == CREATE_NEW ? O_EXCL : O_TRUNC), 0666);
        created = true;
        ours.Take(descriptor && disposition == CREATE_NEW ? path : nullptr);
    }
    if (!descriptor) {
        FailPath(path, ERROR_FILE_EXISTS);
        return INVALID_HANDLE_VALUE;
    }
    if (!created && !CheckKind(descriptor, writes, flags)) {
        return INVALID_HANDLE_VALUE;
    }
    if (((reads || writes) && ::fcntl(descriptor.Get(), F_SETFL, 0) != 0) ||
        (disposition == CREATE_ALWAYS && !created && ::ftruncate(descriptor.Get(), 0) != 0 &&
         errno != EINVAL)) { // a device has no length
        FailErrno();
        return INVALID_HANDLE_VALUE;
    }
    HANDLE const handle = AddHandle(std::make_shared<File>(std::move(descriptor), access));
    ::SetLastError(disposition == CREATE_ALWAYS && !created ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    ours.Keep();
    return handle;
}

} // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0) {
        int const error = errno;
        ::close(m_descriptor);
        errno = error;
    }
}

Descriptor Open(char const* path, int flags, int mode)
{
    int descriptor = -1;
    do {
        descriptor = ::open(path, flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return Descriptor(descriptor);
}

bool IsReadOnly(struct ::stat const& status)
{
    return S_ISREG(status.st_mode) && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

bool IsReadOnlyFile(char const* path)
{
    struct ::stat status;
    return ::lstat(path, &status) == 0 && IsReadOnly(status);
}

std::uint32_t AttributesOf(struct ::stat const& status)
{
    if (S_ISDIR(status.st_mode)) {
        return FILE_ATTRIBUTE_DIRECTORY;
    }
    if (!S_ISREG(status.st_mode)) {
        return FILE_ATTRIBUTE_DEVICE;
    }
    return FILE_ATTRIBUTE_ARCHIVE | (IsReadOnly(status) ? FILE_ATTRIBUTE_READONLY : 0);
}

std::size_t WriteAll(int descriptor, void const* data, std::size_t size)
{
    std::size_t done = 0;
    while (done < size) {
        ssize_t const count = ::write(descriptor, static_cast<char const*>(data) + done, size - done);
        if (count < 0 && errno != EINTR) {
            break;
        }
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return done;
}

long ReadAll(int descriptor, void* data, std::size_t size)
{
    std::size_t done = 0;
    while (done < size) {
        ssize_t const count = ::read(descriptor, static_cast<char*>(data) + done, size - done);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            return -1;
        }
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return static_cast<long>(done);
}

} // namespace Quarn::detail

using namespace Quarn::detail;

HANDLE CreateFileA(char const* path, DWORD access, DWORD /*share*/, _SECURITY_ATTRIBUTES* /*security*/,
                   DWORD disposition, DWORD flags, HANDLE /*pattern*/)
{
    if (disposition < CREATE_NEW || disposition > OPEN_EXISTING) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    if (path == nullptr || *path == '\0') {
        ::SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    HANDLE const failure = INVALID_HANDLE_VALUE;
    return Guarded(failure, [&] { return OpenFile(path, access, disposition, flags); });
}

BOOL ReadFile(HANDLE handle, void* data, DWORD size, DWORD* read, _OVERLAPPED* /*overlapped*/)
{
    *read = 0;
    std::shared_ptr<File> const file = FindHandle<File>(handle);
    if (!file) {
        return FALSE;
    }
    if (!file->CanRead()) {
        return Fail(ERROR_ACCESS_DENIED);
    }
    long const count = ReadAll(file->Get(), data, size);
    if (count < 0) {
        return FailErrno();
    }
    *read = static_cast<DWORD>(count);
    return TRUE;
}

BOOL WriteFile(HANDLE handle, void const* data, DWORD size, DWORD* written, _OVERLAPPED* /*overlapped*/)
{
    *written = 0;
    std::shared_ptr<File> const file = FindWritable(handle);
    if (!file) {
        return FALSE;
    }
    *written = static_cast<DWORD>(WriteAll(file->Get(), data, size));
    return *written == size ? TRUE : FailErrno();
}

BOOL SetEndOfFile(HANDLE handle)
{
    std::shared_ptr<File> const file = FindWritable(handle);
    if (!file) {
        return FALSE;
    }
    off_t const position = ::lseek(file->Get(), 0, SEEK_CUR);
    return position >= 0 && ::ftruncate(file->Get(), position) == 0 ? TRUE : FailErrno();
}

BOOL FlushFileBuffers(HANDLE handle)
{
    std::shared_ptr<File> const file = FindWritable(handle);
    if (!file) {
        return FALSE;
    }
    return ::fsync(file->Get()) == 0 ? TRUE : FailErrno();
}

BOOL GetFileSizeEx(HANDLE handle, LARGE_INTEGER* size)
{
    std::shared_ptr<File> const file = FindHandle<File>(handle);
    struct ::stat status;
    if (!file) {
        return FALSE;
    }
    if (::fstat(file->Get(), &status) != 0) {
        return FailErrno();
    }
    size->QuadPart = status.st_size;
    return TRUE;
}

DWORD GetFinalPathNameByHandleA(HANDLE handle, char* buffer, DWORD size, DWORD /*flags*/)
{
    std::shared_ptr<File> const file = FindHandle<File>(handle);
    if (!file) {
        return 0;
    }
    return Guarded(DWORD{0}, [&]() -> DWORD {
        std::string const link = "/proc/self/fd/" + std::to_string(file->Get());
        char path[PATH_MAX];
        ssize_t const length = ::readlink(link.c_str(), path, sizeof path);
        if (length < 0) {
            FailErrno();
            return 0;
        }
        std::string const name(path, static_cast<std::size_t>(length));
        struct ::stat opened;
        struct ::stat named;
        // A deleted file's name leads nowhere, or to another file.
        if (::fstat(file->Get(), &opened) != 0 || ::stat(name.c_str(), &named) != 0 ||
            opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) {
            Fail(ERROR_FILE_NOT_FOUND);
            return 0;
        }
        return PutPath(name, size, buffer);
    });
}
