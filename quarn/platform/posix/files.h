// (private) What the file functions share.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <sys/stat.h>

namespace Quarn::detail {

// A null path, which no system call takes, as the empty one: both lead nowhere.
inline char const* PathOrEmpty(char const* path)
{
    return path != nullptr ? path : "";
}

// A file descriptor and its owner.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.m_descriptor) { other.m_descriptor = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept;
    // Leaves errno as it is.
    ~Descriptor();

    explicit operator bool() const { return m_descriptor >= 0; }
    int Get() const { return m_descriptor; }
    // Somebody else closes it now.
    int Release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor = -1;
};

// open() again after interruptions, close-on-exec.
Descriptor Open(char const* path, int flags, int mode = 0);

// Windows' read-only attribute: a regular file that nobody may write to.
bool IsReadOnly(struct ::stat const& status);

// Whether the path names such a file itself.
bool IsReadOnlyFile(char const* path);

// The FILE_ATTRIBUTE_ values of a file.
std::uint32_t AttributesOf(struct ::stat const& status);

// Writes the bytes and returns how many got written: fewer than `size` after an error, then in errno.
std::size_t WriteAll(int descriptor, void const* data, std::size_t size);
// Reads until `size` bytes or the end of the file; negative after an error.
long ReadAll(int descriptor, void* data, std::size_t size);

// Fills a caller's buffer in the way of the path functions and others: returns the length without the
// terminator, or, when `size` is too small, the size needed with it and leaves the buffer.
std::uint32_t PutPath(std::string const& path, std::uint32_t size, char* buffer);

} // namespace Quarn::detail
