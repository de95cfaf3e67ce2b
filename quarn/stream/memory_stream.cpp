#include "quarn/stream/memory_stream.h"

#include "quarn/stream/stream_exception.h"
#include "quarn/text/narrowing.h"

#include <algorithm>
#include <cstring>
#include <typeinfo>

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

memorystream::memorystream(memorystream const& other) : istream(other), ostream(other)
{
    LendWindow();
    *this = other;
}

memorystream& memorystream::operator=(memorystream const& other)
{
    if (this == &other) {
        return *this;
    }
    istream::operator=(other);
    ostream::operator=(other);
    m_position = other.Position();
    m_buffer = other.m_buffer;
    m_size = other.m_size;
    m_window = detail::Window();
    m_window.lastRead = other.m_window.lastRead;
    m_failed = other.m_failed;
    m_owns = other.m_owns;
    std::memmove(m_inline, other.m_inline, sizeof m_inline);
    return *this;
}

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
    CloseWindow();
    std::uint32_t const count =
        size < 0 ? 0 : detail::NarrowCount(static_cast<std::size_t>(std::streamoff{size}));
    m_buffer = count <= InlineSize ? m_inline : new unsigned char[count];
    m_size = count;
}

void memorystream::ReleaseMemory()
{
    CloseWindow();
    if (m_size > InlineSize && m_owns) {
        delete[] m_buffer;
    }
    m_buffer = nullptr;
}

// A class derived from this one may have an `input` and `output` of its own, which must see every byte. The
// types are compared by address: there is one of each, and the operator compares the names of others.
void memorystream::OpenWindow()
{
    if (m_buffer != nullptr && m_position < m_size && &typeid(*this) == &typeid(memorystream)) {
        m_window.next = m_buffer + m_position;
        m_window.end = m_buffer + m_size;
    }
}

void memorystream::CloseWindow()
{
    m_position = Position();
    m_window.next = nullptr;
    m_window.end = nullptr;
}

// Of `n` bytes, how many the block has from the position on.
std::uint32_t memorystream::Available(std::uint32_t n) const
{
    if (m_buffer == nullptr || m_position >= m_size) {
        return 0;
    }
    return static_cast<std::uint32_t>(std::min<std::streamoff>(n, m_size - m_position));
}

void memorystream::Finish(std::uint32_t count, std::uint32_t wanted)
{
    m_position += count;
    m_failed = m_failed || count != wanted;
    if (m_failed) {
        throw StreamException(StreamException::GenericRead);
    }
    OpenWindow();
}

istream& memorystream::input(unsigned char* buffer, unsigned long n)
{
    CloseWindow();
    std::uint32_t const wanted = detail::NarrowCount(n);
    std::uint32_t const count = Available(wanted);
    if (count != 0) {
        CopyBytes(buffer, m_buffer + m_position, count);
    }
    m_window.lastRead = count;
    Finish(count, wanted);
    return *this;
}

ostream& memorystream::output(unsigned char const* data, unsigned long n)
{
    CloseWindow();
    std::uint32_t const wanted = detail::NarrowCount(n);
    std::uint32_t const count = Available(wanted);
    if (count != 0) {
        CopyBytes(m_buffer + m_position, data, count);
    }
    Finish(count, wanted);
    return *this;
}

unsigned int memorystream::readsome(unsigned char* buffer, unsigned long n)
{
    CloseWindow();
    std::uint32_t const count = Available(detail::NarrowCount(n));
    if (count != 0) {
        CopyBytes(buffer, m_buffer + m_position, count);
    }
    m_position += count;
    m_window.lastRead = count;
    return count;
}

unsigned int memorystream::peek()
{
    CloseWindow();
    if (Available(1) == 0) {
        m_failed = true;
        return 0;
    }
    return m_buffer[m_position];
}

istream& memorystream::putback(unsigned char c)
{
    CloseWindow();
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
        MoveTo(Position() + distance);
        break;
    case 2:
        MoveTo(m_size - static_cast<std::uint32_t>(distance + 1));
        break;
    default:
        MoveTo(Position());
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
    CloseWindow();
    m_position = position;
    if (m_size != 0 && position >= m_size) {
        m_position = m_size - 1;
        m_failed = true;
    } else if (position < 0) {
        m_position = 0;
        m_failed = true;
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
