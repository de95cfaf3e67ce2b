#include "quarn/stream/stat_stream.h"

#include "quarn/text/narrowing.h"

#include <typeinfo>

namespace Quarn {

statstream::statstream(statstream const& other) : ostream(other), m_crcEnabled(other.m_crcEnabled)
{
    *this = other;
}

// Assigning itself changes nothing.
statstream& statstream::operator=(statstream const& other) // NOLINT(bugprone-unhandled-self-assignment)
{
    other.CountWaiting();
    CountWaiting();
    ostream::operator=(other);
    m_crcEnabled = other.m_crcEnabled;
    m_crc = other.m_crc;
    m_size = other.m_size;
    return *this;
}

statstream::~statstream() = default;

void statstream::Clear()
{
    CountWaiting();
    m_size = 0;
    m_crc.Clear();
}

void statstream::CountWaiting() const
{
    std::uint32_t const count = Waiting();
    if (count != 0) {
        m_size += count;
        if (m_crcEnabled) {
            m_crc.Add(m_block, count);
        }
        m_window.next -= count;
    }
}

ostream& statstream::output(unsigned char const* data, unsigned long n)
{
    CountWaiting();
    std::uint32_t const count = detail::NarrowCount(n);
    m_size += count;
    if (m_crcEnabled) {
        m_crc.Add(data, count);
    }
    OpenWindow();
    return *this;
}

// A class derived from this one may have an `output` of its own, which must see every byte.
void statstream::OpenWindow()
{
    if (m_window.next == nullptr && !m_isWatched && typeid(*this) == typeid(statstream)) {
        m_window.next = m_block;
        m_window.end = m_block + BlockSize;
        SetWindow(&m_window);
    }
}

CRC32 const& statstream::GetCRC() const
{
    CountWaiting();
    m_window = detail::Window();
    m_isWatched = true;
    return m_crc;
}

ostream& statstream::flush()
{
    return *this;
}

std::streampos statstream::tellp()
{
    return 0;
}

ostream& statstream::seekp(unsigned long /*offset*/, unsigned int /*direction*/)
{
    return *this;
}

ostream& statstream::seekp(std::streampos /*position*/)
{
    return *this;
}

bool statstream::IsValidOutput() const
{
    return true;
}

void statstream::clearstate() {}

void statstream::close() {}

char const* statstream::get_path()
{
    return nullptr;
}

} // namespace Quarn
