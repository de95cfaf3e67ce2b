#include "quarn/stream/stat_stream.h"

#include "quarn/text/narrowing.h"

namespace Quarn {

statstream::~statstream() = default;

void statstream::Clear()
{
    m_size = 0;
    m_crc.Clear();
}

ostream& statstream::output(unsigned char const* data, unsigned long n)
{
    std::uint32_t const count = detail::NarrowCount(n);
    m_size += count;
    if (m_crcEnabled) {
        m_crc.Add(data, count);
    }
    return *this;
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
