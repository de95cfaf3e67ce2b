#include "quarn/stream/file_stream.h"

#include "quarn/platform/win32_api.h"
#include "quarn/stream/stream_exception.h"
#include "quarn/text/narrowing.h"

#include <cstdint>

namespace Quarn {

namespace {

// POSIX opens a folder for reading like a file.
bool IsFolder(char const* path)
{
    DWORD const attributes = ::GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

template<typename Stream>
void Open(Stream& stream, string& storedPath, char const* path, int mode, std::ios_base::openmode direction)
{
    storedPath = path != nullptr ? path : "";
    if (path == nullptr || IsFolder(path)) {
        stream.setstate(std::ios_base::failbit);
        return;
    }
    stream.open(path, static_cast<std::ios_base::openmode>(mode) | direction);
}

// The standard's direction for ours; false where there is none.
bool Direction(unsigned int direction, std::ios_base::seekdir& standard)
{
    switch (direction) {
    case 0:
        standard = std::ios_base::beg;
        return true;
    case 1:
        standard = std::ios_base::cur;
        return true;
    case 2:
        standard = std::ios_base::end;
        return true;
    default:
        return false;
    }
}

std::streamoff Offset(unsigned long offset)
{
    return static_cast<std::uint32_t>(offset);
}

} // namespace

ifstream::ifstream()
{
    m_stream.setstate(std::ios_base::failbit);
}

ifstream::ifstream(char const* path, int mode)
{
    open(path, mode);
}

ifstream::~ifstream() = default;

void ifstream::open(char const* path, int mode)
{
    Open(m_stream, m_path, path, mode, std::ios_base::in);
}

void ifstream::close()
{
    m_stream.close();
}

unsigned int ifstream::gcount() const
{
    return detail::NarrowCount(static_cast<std::size_t>(m_stream.gcount()));
}

unsigned int ifstream::readsome(unsigned char* buffer, unsigned long n)
{
    std::streamsize const count = m_stream.readsome(reinterpret_cast<char*>(buffer), detail::NarrowCount(n));
    return detail::NarrowCount(static_cast<std::size_t>(count));
}

unsigned int ifstream::peek()
{
    return static_cast<unsigned int>(m_stream.peek());
}

istream& ifstream::putback(unsigned char c)
{
    m_stream.putback(static_cast<char>(c));
    return *this;
}

istream& ifstream::unget()
{
    m_stream.unget();
    return *this;
}

int ifstream::sync()
{
    return m_stream.sync();
}

istream& ifstream::seekg(unsigned long offset, unsigned int direction)
{
    std::ios_base::seekdir standard = std::ios_base::beg;
    if (Direction(direction, standard)) {
        m_stream.seekg(Offset(offset), standard);
    } else {
        m_stream.setstate(std::ios_base::failbit);
    }
    return *this;
}

istream& ifstream::seekg(std::streampos position)
{
    m_stream.seekg(position);
    return *this;
}

std::streampos ifstream::tellg()
{
    return m_stream.tellg();
}

bool ifstream::IsValidInput() const
{
    return !m_stream.fail();
}

void ifstream::clearstate()
{
    bool const atEnd = m_stream.eof();
    m_stream.clear();
    if (atEnd) {
        // Some runtimes remember the end until the next seek, while another program may have added to the
        // file.
        m_stream.seekg(0, std::ios_base::cur);
        m_stream.clear();
    }
}

istream& ifstream::input(unsigned char* buffer, unsigned long n)
{
    m_stream.read(reinterpret_cast<char*>(buffer), detail::NarrowCount(n));
    if (m_stream.fail()) {
        throw StreamException(StreamException::GenericRead);
    }
    return *this;
}

void ofstream::MarkUnopened()
{
    m_stream.setstate(std::ios_base::failbit);
}

ofstream::~ofstream() = default;

void ofstream::open(char const* path, int mode)
{
    Open(m_stream, m_path, path, mode, std::ios_base::out);
}

void ofstream::close()
{
    m_stream.close();
}

ostream& ofstream::flush()
{
    m_stream.flush();
    return *this;
}

ostream& ofstream::seekp(unsigned long offset, unsigned int direction)
{
    std::ios_base::seekdir standard = std::ios_base::beg;
    if (Direction(direction, standard)) {
        m_stream.seekp(Offset(offset), standard);
    } else {
        m_stream.setstate(std::ios_base::failbit);
    }
    return *this;
}

ostream& ofstream::seekp(std::streampos position)
{
    m_stream.seekp(position);
    return *this;
}

std::streampos ofstream::tellp()
{
    return m_stream.tellp();
}

char const* ofstream::get_path()
{
    return m_path.c_str();
}

bool ofstream::IsValidOutput() const
{
    return !m_stream.fail();
}

void ofstream::clearstate()
{
    m_stream.clear();
}

ostream& ofstream::output(unsigned char const* data, unsigned long n)
{
    m_stream.write(reinterpret_cast<char const*>(data), detail::NarrowCount(n));
    if (m_stream.fail()) {
        throw StreamException(StreamException::GenericWrite);
    }
    return *this;
}

} // namespace Quarn
