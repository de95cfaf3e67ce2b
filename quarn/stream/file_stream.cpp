#include "quarn/stream/file_stream.h"

#include "quarn/platform/win32_api.h"
#include "quarn/stream/stream_exception.h"
#include "quarn/text/narrowing.h"

#include <cstdint>
#include <typeinfo>

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

// The buffer of a file, which the standard shows to derived classes alone: the bytes at hand for reading, and
// the room for writing.
struct AtHand : std::filebuf
{
    static unsigned char* First(std::filebuf const& buffer)
    {
        return reinterpret_cast<unsigned char*>((buffer.*&AtHand::gptr)());
    }
    static unsigned char* Last(std::filebuf const& buffer)
    {
        return reinterpret_cast<unsigned char*>((buffer.*&AtHand::egptr)());
    }
    static void Skip(std::filebuf& buffer, std::ptrdiff_t count)
    {
        (buffer.*&AtHand::gbump)(static_cast<int>(count));
    }

    static unsigned char* FirstRoom(std::filebuf const& buffer)
    {
        return reinterpret_cast<unsigned char*>((buffer.*&AtHand::pptr)());
    }
    static unsigned char* LastRoom(std::filebuf const& buffer)
    {
        return reinterpret_cast<unsigned char*>((buffer.*&AtHand::epptr)());
    }
    static void Fill(std::filebuf& buffer, std::ptrdiff_t count)
    {
        (buffer.*&AtHand::pbump)(static_cast<int>(count));
    }
};

} // namespace

ifstream::ifstream()
{
    SetWindow(&m_window);
    m_stream.setstate(std::ios_base::failbit);
}

ifstream::ifstream(char const* path, int mode)
{
    SetWindow(&m_window);
    open(path, mode);
}

ifstream::~ifstream() = default;

// A class derived from this one may have an `input` of its own, which must see every byte. The types are
// compared by address: there is one of each, and the operator compares the names of others.
void ifstream::OpenWindow()
{
    if (m_stream.good() && &typeid(*this) == &typeid(ifstream)) {
        m_window.next = AtHand::First(*m_stream.rdbuf());
        m_window.end = AtHand::Last(*m_stream.rdbuf());
    }
}

void ifstream::CloseWindow()
{
    if (m_window.next != nullptr) {
        AtHand::Skip(*m_stream.rdbuf(), m_window.next - AtHand::First(*m_stream.rdbuf()));
        m_window.next = nullptr;
        m_window.end = nullptr;
    }
}

void ifstream::open(char const* path, int mode)
{
    CloseWindow();
    Open(m_stream, m_path, path, mode, std::ios_base::in);
}

void ifstream::close()
{
    CloseWindow();
    m_stream.close();
}

unsigned int ifstream::readsome(unsigned char* buffer, unsigned long n)
{
    CloseWindow();
    std::streamsize const count = m_stream.readsome(reinterpret_cast<char*>(buffer), detail::NarrowCount(n));
    return m_window.lastRead = detail::NarrowCount(static_cast<std::size_t>(count));
}

unsigned int ifstream::peek()
{
    CloseWindow();
    m_window.lastRead = 0;
    return static_cast<unsigned int>(m_stream.peek());
}

istream& ifstream::putback(unsigned char c)
{
    CloseWindow();
    m_window.lastRead = 0;
    m_stream.putback(static_cast<char>(c));
    return *this;
}

istream& ifstream::unget()
{
    CloseWindow();
    m_window.lastRead = 0;
    m_stream.unget();
    return *this;
}

int ifstream::sync()
{
    CloseWindow();
    return m_stream.sync();
}

istream& ifstream::seekg(unsigned long offset, unsigned int direction)
{
    CloseWindow();
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
    CloseWindow();
    m_stream.seekg(position);
    return *this;
}

std::streampos ifstream::tellg()
{
    CloseWindow();
    return m_stream.tellg();
}

bool ifstream::IsValidInput() const
{
    return !m_stream.fail();
}

void ifstream::clearstate()
{
    CloseWindow();
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
    CloseWindow();
    m_stream.read(reinterpret_cast<char*>(buffer), detail::NarrowCount(n));
    m_window.lastRead = detail::NarrowCount(static_cast<std::size_t>(m_stream.gcount()));
    if (m_stream.fail()) {
        throw StreamException(StreamException::GenericRead);
    }
    OpenWindow();
    return *this;
}

void ofstream::MarkUnopened()
{
    SetWindow(&m_window);
    m_stream.setstate(std::ios_base::failbit);
}

ofstream::~ofstream()
{
    CloseWindow();
}

// As that of ifstream.
void ofstream::OpenWindow()
{
    if (m_stream.good() && &typeid(*this) == &typeid(ofstream)) {
        m_window.next = AtHand::FirstRoom(*m_stream.rdbuf());
        m_window.end = AtHand::LastRoom(*m_stream.rdbuf());
    }
}

void ofstream::CloseWindow()
{
    if (m_window.next != nullptr) {
        AtHand::Fill(*m_stream.rdbuf(), m_window.next - AtHand::FirstRoom(*m_stream.rdbuf()));
        m_window.next = nullptr;
        m_window.end = nullptr;
    }
}

void ofstream::open(char const* path, int mode)
{
    SetWindow(&m_window);
    CloseWindow();
    Open(m_stream, m_path, path, mode, std::ios_base::out);
}

void ofstream::close()
{
    CloseWindow();
    m_stream.close();
}

ostream& ofstream::flush()
{
    CloseWindow();
    m_stream.flush();
    return *this;
}

ostream& ofstream::seekp(unsigned long offset, unsigned int direction)
{
    CloseWindow();
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
    CloseWindow();
    m_stream.seekp(position);
    return *this;
}

std::streampos ofstream::tellp()
{
    CloseWindow();
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
    CloseWindow();
    m_stream.clear();
}

ostream& ofstream::output(unsigned char const* data, unsigned long n)
{
    CloseWindow();
    m_stream.write(reinterpret_cast<char const*>(data), detail::NarrowCount(n));
    if (m_stream.fail()) {
        throw StreamException(StreamException::GenericWrite);
    }
    OpenWindow();
    return *this;
}

} // namespace Quarn
