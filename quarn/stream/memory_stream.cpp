#include "quarn/stream/memory_stream.h"

#include "quarn/stream/stream_exception.h"
#include "quarn/text/narrowing.h"

#include <algorithm>
#include <cstring>

namespace Quarn {

namespace {

// As a copy byte by byte from the front does it, also where a caller moves bytes of the block within the
// block.
void CopyBytes(unsigned char* to, unsigned char const* from, std::uint32_t n)
{
    if (reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from) >= n) {
        std::memmove(to, from, n);
        return;
    }
    for (std::uint32_t i = 0; i != n; ++i) {
        to[i] = from[i];
    }
}

} // namespace

memorystream::~memorystream()
{
    ReleaseMemory();
}

void memorystream::Borrow(unsigned char* block, std::streampos size)
{
    m_owns = false;
    m_buffer = block;
    m_size = std::max<std::streamoff>(size, 0);
}

void memorystream::Allocate(std::streampos size)
{
    std::uint32_t const count =
        size < 0 ? 0 : detail::NarrowCount(static_cast<std::size_t>(std::streamoff{size}));
    m_buffer = count <= InlineSize ? m_inline : new unsigned char[count];
    m_size = count;
}

void memorystream::ReleaseMemory()
{
    if (m_size > InlineSize && m_owns) {
        delete[] m_buffer;
    }
    m_buffer = nullptr;
}

// Of `n` bytes, how many the block has from the position on.
std::uint32_t memorystream::Available(std::uint32_t n) const
{
    if (m_buffer == nullptr || m_position >= m_size) {
        return 0;
    }
    return static_cast<std::uint32_t>(std::min<std::streamoff>(n, m_size - m_position));
}

void memorystream::Advance(std::uint32_t n)
{
    m_position += n;
    if (m_position == m_size) {
        m_state |= EndReached;
    }
}

void memorystream::ThrowFailed()
{
    throw StreamException(StreamException::GenericRead);
}

istream& memorystream::input(unsigned char* buffer, unsigned long n)
{
    std::uint32_t const wanted = detail::NarrowCount(n);
    std::uint32_t const count = Available(wanted);
    if (count != 0) {
        CopyBytes(buffer, m_buffer + m_position, count);
    }
    Advance(count);
    m_lastCount = count;
    if (count != wanted) {
        m_state |= Failed;
    }
    if ((m_state & Failed) != 0) {
        ThrowFailed();
    }
    return *this;
}

ostream& memorystream::output(unsigned char const* data, unsigned long n)
{
    std::uint32_t const wanted = detail::NarrowCount(n);
    std::uint32_t const count = Available(wanted);
    if (count != 0) {
        CopyBytes(m_buffer + m_position, data, count);
    }
    Advance(count);
    if (count != wanted) {
        m_state |= Failed;
    }
    if ((m_state & Failed) != 0) {
        ThrowFailed();
    }
    return *this;
}

unsigned int memorystream::readsome(unsigned char* buffer, unsigned long n)
{
    std::uint32_t const count = Available(detail::NarrowCount(n));
    if (count != 0) {
        CopyBytes(buffer, m_buffer + m_position, count);
    }
    Advance(count);
    m_lastCount = count;
    return count;
}

unsigned int memorystream::peek()
{
    if (Available(1) == 0) {
        m_state |= Failed;
        return 0;
    }
    return m_buffer[m_position];
}

istream& memorystream::putback(unsigned char c)
{
    if (m_position != 0) {
        --m_position;
        if (Available(1) != 0) {
            m_buffer[m_position] = c;
        }
    }
    return *this;
}

istream& memorystream::unget()
{
    return *this;
}

istream& memorystream::seekg(unsigned long offset, unsigned int direction)
{
    seekp(offset, direction);
    return *this;
}

istream& memorystream::seekg(std::streampos position)
{
    seekp(position);
    return *this;
}

ostream& memorystream::seekp(unsigned long offset, unsigned int direction)
{
    auto const distance = static_cast<std::uint32_t>(offset);
    switch (direction) {
    case 0:
        MoveTo(distance);
        break;
    case 1:
        MoveTo(m_position + distance);
        break;
    case 2:
        MoveTo(m_size - static_cast<std::uint32_t>(distance + 1));
        break;
    default:
        MoveTo(m_position);
        break;
    }
    return *this;
}

ostream& memorystream::seekp(std::streampos position)
{
    MoveTo(position);
    return *this;
}

void memorystream::MoveTo(std::streamoff position)
{
    m_position = position;
    if (m_size != 0 && position >= m_size) {
        m_position = m_size - 1;
        m_state |= Failed;
    } else if (position < 0) {
        m_position = 0;
        m_state |= Failed;
    }
}

ostream& memorystream::flush()
{
    return *this;
}

int memorystream::sync()
{
    return 0;
}

bool memorystream::IsValidInput() const
{
    return true;
}

bool memorystream::IsValidOutput() const
{
    return true;
}

void memorystream::clearstate() {}

void memorystream::close() {}

char const* memorystream::get_path()
{
    return nullptr;
}

} // namespace Quarn
