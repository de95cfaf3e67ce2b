#include "quarn/stream/ostream.h"

#include "quarn/stream/compress.h"
#include "quarn/text/narrowing.h"

namespace Quarn {

ostream::ostream(ostream const& other)
    : m_dumpMode(other.m_dumpMode),
      m_indent(other.m_indent),
      m_compressor(other.m_compressor)
{}

// Assigning itself changes nothing.
ostream& ostream::operator=(ostream const& other) // NOLINT(bugprone-unhandled-self-assignment)
{
    m_dumpMode = other.m_dumpMode;
    m_indent = other.m_indent;
    m_compressor = other.m_compressor;
    return *this;
}

ostream::~ostream() = default;

void ostream::close() {}

char const* ostream::get_path()
{
    return nullptr;
}

ostream& ostream::operator<<(Stream::HeaderBlock const& header)
{
    return *this << header.id << header.version;
}

ostream& ostream::operator<<(char const* text)
{
    return *this << string(text != nullptr ? text : "");
}

ostream& ostream::operator<<(std::string const& text)
{
    return PutString(text);
}

ostream& ostream::operator<<(string const& text)
{
    return PutString(text);
}

ostream& ostream::PutString(std::string_view text)
{
    constexpr std::size_t prefixSize = 12;
    std::uint32_t const length = detail::NarrowCount(text.size());
    if (m_dumpMode) {
        return length != 0 ? write(text.data(), length) : *this;
    }
    unsigned char bytes[prefixSize];
    unsigned char* const room = m_compressor == nullptr ? Reserve(prefixSize + length) : nullptr;
    unsigned char* const prefix = room != nullptr ? room : bytes;
    detail::ToWire(prefix, static_cast<std::uint32_t>(string::NPOS));
    detail::ToWire(prefix + 4, length);
    detail::ToWire(prefix + 8, ~length);
    if (room != nullptr) {
        std::memcpy(room + prefixSize, text.data(), length);
        return *this;
    }
    output(prefix, prefixSize);
    return length != 0 ? write(text.data(), length) : *this;
}

ostream& ostream::operator<<(long value)
{
    return Put(detail::NarrowLong(value));
}

ostream& ostream::operator<<(unsigned long value)
{
    return Put(detail::NarrowLong(value));
}

ostream& ostream::write(unsigned char const* data, unsigned long n)
{
    std::uint32_t const count = detail::NarrowCount(n);
    if (m_compressor == nullptr || count < m_compressor->GetMinimumSize() || m_dumpMode) {
        return output(data, count);
    }
    StreamCompress& compressor = *m_compressor;
    try {
        StreamCompress::Result result;
        compressor.Compress(result, data, count);
        *this << count << result.count;
        output(result.data, result.count);
    } catch (...) {
        compressor.Release();
        throw;
    }
    compressor.Release();
    return *this;
}

ostream& ostream::write(void const* data, unsigned long n)
{
    return write(static_cast<unsigned char const*>(data), n);
}

} // namespace Quarn
