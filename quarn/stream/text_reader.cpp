#include "quarn/stream/text_reader.h"

#include "quarn/stream/stream_exception.h"
#include "quarn/stream/wire.h"

#include <bit>
#include <cstdint>

namespace Quarn {

namespace {

// The first of the bytes that is no plain character of a line: carriage return, line feed, 128 or more.
char const* FindSpecial(char const* first, char const* last)
{
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t highs = 0x80 * ones;
    constexpr std::ptrdiff_t step = sizeof(std::uint64_t);
    for (; last - first >= step; first += step) {
        auto const word = detail::FromWire<std::uint64_t>(reinterpret_cast<unsigned char const*>(first));
        std::uint64_t const returns = word ^ '\r' * ones;
        std::uint64_t const feeds = word ^ '\n' * ones;
        // Sets the high bit of each byte that is zero in one of them; above the first such byte perhaps
        // others.
        std::uint64_t const zeros = ((returns - ones) & ~returns) | ((feeds - ones) & ~feeds);
        if (std::uint64_t const special = (word | zeros) & highs) {
            return first + std::countr_zero(special) / 8;
        }
    }
    while (first != last && static_cast<unsigned char>(*first) < 128 && !TextStreamReader::IsCRLF(*first)) {
        ++first;
    }
    return first;
}

// Appends the bytes up to the next special one that is not `dropped`, and returns the place behind them.
char const* AppendPlain(string& line, char const* first, char const* last, char dropped)
{
    for (;;) {
        char const* const special = FindSpecial(first, last);
        line.std::string::append(first, static_cast<std::size_t>(special - first));
        if (special == last || *special != dropped) {
            return special;
        }
        first = special + 1;
    }
}

} // namespace

// Takes those bytes in the stream's own memory that cannot end the call; false where there are none. They
// leave no trace but the position, for a byte read by itself always follows.
bool TextStreamReader::TakeAtHand(string& line)
{
    detail::Window* const window = m_in.m_window;
    if (window == nullptr || m_in.m_compressor != nullptr) {
        return false;
    }
    constexpr char none = '\0'; // never special
    char const dropped = m_lineEnd == '\r' ? '\n' : m_lineEnd == '\n' ? '\r' : none;
    auto const* const first = reinterpret_cast<char const*>(window->next);
    auto const* const last = reinterpret_cast<char const*>(window->end);
    auto const count = static_cast<std::size_t>(AppendPlain(line, first, last, dropped) - first);
    window->Take(count);
    return count != 0;
}

// One byte by the stream's read operation; the plain road of a number is the same without a compressor.
unsigned char TextStreamReader::ReadByte()
{
    unsigned char byte = 0x80; // a stream that brings nothing leaves it
    if (m_in.m_compressor == nullptr) {
        m_in >> byte;
    } else {
        m_in.read(&byte, sizeof byte);
    }
    return byte;
}

bool TextStreamReader::ReadLine(string& line)
{
    line.clear();
    bool hasRead = false;
    for (;;) {
        hasRead = TakeAtHand(line) || hasRead;
        unsigned char byte = 0;
        try {
            byte = ReadByte();
        } catch (StreamException const&) {
            return hasRead;
        }
        if (byte >= 128) {
            return false;
        }
        hasRead = true;
        auto const c = static_cast<char>(byte);
        if (!IsCRLF(c)) {
            line += c;
            continue;
        }
        if (m_lineEnd == 0) {
            m_lineEnd = c;
        }
        if (c == m_lineEnd) {
            return true;
        }
    }
}

} // namespace Quarn
