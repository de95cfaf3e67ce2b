#include "quarn/platform/posix/file_source.h"

#include "quarn/platform/posix/errors.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

// pread() until all of the bytes are there; fewer at the end of the file or after an error.
std::size_t ReadAt(int descriptor, std::uint64_t offset, unsigned char* data, std::size_t size)
{
    std::size_t done = 0;
    while (done < size) {
        ::ssize_t const count =
            ::pread(descriptor, data + done, size - done, static_cast<::off_t>(offset + done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return done;
}

} // namespace

std::unique_ptr<FileSource> FileSource::Open(char const* path)
{
    Descriptor descriptor = detail::Open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct ::stat status;
    if (!descriptor || ::fstat(descriptor.Get(), &status) != 0) {
        FailPath(path);
        return nullptr;
    }
    if (!S_ISREG(status.st_mode)) {
        Fail(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    return std::unique_ptr<FileSource>(
        new FileSource(std::move(descriptor), static_cast<std::uint64_t>(status.st_size)));
}

FileSource::FileSource(Descriptor descriptor, std::uint64_t size)
    : ByteSource(size),
      m_descriptor(std::move(descriptor))
{}

bool FileSource::DoRead(std::uint64_t offset, void* data, std::size_t size)
{
    auto* const bytes = static_cast<unsigned char*>(data);
    if (size > sizeof m_window) {
        return ReadAt(m_descriptor.Get(), offset, bytes, size) == size;
    }
    if (offset < m_windowBegin || offset + size > m_windowEnd) {
        m_windowBegin = offset;
        m_windowEnd = offset + ReadAt(m_descriptor.Get(), offset, m_window, sizeof m_window);
        if (offset + size > m_windowEnd) {
            return false;
        }
    }
    std::memcpy(bytes, m_window + (offset - m_windowBegin), size);
    return true;
}

} // namespace Quarn::detail
