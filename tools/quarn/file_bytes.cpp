#include "file_bytes.h"

#include "outcome.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace tool {

FileBytes::FileBytes(std::string const& path) : m_path(path)
{
    errno = 0;
    m_file.open(path, std::ios_base::binary);
    if (!m_file.is_open()) {
        throw Failure(CannotRead, ReadFailureText(path, errno));
    }
    m_file.seekg(0, std::ios_base::end);
    std::streamoff const end = m_file.tellg();
    if (end > 0) {
        m_size = static_cast<std::uint64_t>(end);
    }
    m_file.clear();
    m_file.seekg(0);
    m_file.clear(); // a pipe has no positions
}

std::string FileBytes::Read(std::size_t count)
{
    std::string bytes(count, '\0');
    errno = 0;
    m_file.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(m_file.gcount()));
    if (m_file.bad()) {
        throw Failure(CannotRead, ReadFailureText(m_path, errno));
    }
    return bytes;
}

std::string FileBytes::ReadAt(std::uint64_t offset, std::size_t count)
{
    m_file.clear();
    m_file.seekg(static_cast<std::streamoff>(std::min(offset, m_size)));
    if (m_file.fail()) {
        throw Failure(CannotRead, Printable(m_path) + ": has no offsets");
    }
    return Read(count);
}

std::string ReadFailureText(std::string const& path, int error)
{
    std::string const reason = error != 0 ? std::generic_category().message(error) : "no reason is known";
    return Printable(path) + ": cannot be read: " + reason;
}

} // namespace tool
