#include "quarn/stream/istream.h"

#include "quarn/stream/compress.h"
#include "quarn/stream/stream_exception.h"
#include "quarn/text/narrowing.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace Quarn {

namespace {

constexpr std::uint32_t StackText = 1024;        // shorter texts need no buffer on the heap
constexpr std::uint32_t TrustedBody = 64 * 1024; // longer bodies are not believed
constexpr std::uint32_t PieceSize = 32 * 1024;

std::size_t TextLength(char const* text, std::size_t count)
{
    void const* const end = std::memchr(text, 0, count);
    return end != nullptr ? static_cast<std::size_t>(static_cast<char const*>(end) - text) : count;
}

} // namespace

istream::istream(istream const& other) : m_compressor(other.m_compressor) {}

// Assigning itself changes nothing.
istream& istream::operator=(istream const& other) // NOLINT(bugprone-unhandled-self-assignment)
{
    m_compressor = other.m_compressor;
    return *this;
}

istream::~istream() = default;

void istream::close() {}

char const* istream::get_path()
{
    return nullptr;
}

istream& istream::operator>>(long& value)
{
    return GetLow<std::int32_t>(value);
}

istream& istream::operator>>(unsigned long& value)
{
    return GetLow<std::uint32_t>(value);
}

template<typename Stored, typename T>
istream& istream::GetLow(T& value)
{
    // In place, so that a stream which brings nothing leaves the number as it was.
    constexpr std::size_t offset = std::endian::native == std::endian::big ? sizeof(T) - sizeof(Stored) : 0;
    unsigned char* const low = reinterpret_cast<unsigned char*>(&value) + offset;
    input(low, sizeof(Stored));
    value = static_cast<T>(detail::FromWire<Stored>(low));
    return *this;
}

istream& istream::operator>>(long double& value)
{
    double stored = 0;
    *this >> stored;
    value = stored;
    return *this;
}

istream& istream::operator>>(Stream::HeaderBlock& header)
{
    Stream::HeaderBlock stored;
    *this >> stored.id >> stored.version;
    header = stored;
    return *this;
}

istream& istream::operator>>(std::string& text)
{
    GetText(text);
    return *this;
}

istream& istream::operator>>(string& text)
{
    GetText(text);
    return *this;
}

istream& istream::operator>>(char* text)
{
    std::string stored;
    GetText(stored);
    std::memcpy(text, stored.c_str(), stored.size() + 1);
    return *this;
}

bool istream::TakeText(std::string& text)
{
    constexpr std::size_t prefixSize = 12;
    if (m_window == nullptr || m_window->Room() < prefixSize) {
        return false;
    }
    unsigned char const* const prefix = m_window->next;
    auto const length = detail::FromWire<std::uint32_t>(prefix + 4);
    if (detail::FromWire<std::uint32_t>(prefix) != static_cast<std::uint32_t>(string::NPOS) ||
        detail::FromWire<std::uint32_t>(prefix + 8) != ~length || m_window->Room() - prefixSize < length ||
        length == 0 || IsCompressed(length)) {
        return false;
    }
    Take(prefixSize);
    char const* const body = reinterpret_cast<char const*>(Take(length));
    text.assign(body, TextLength(body, length));
    return true;
}

void istream::GetText(std::string& text)
{
    if (TakeText(text)) {
        return;
    }
    // Marker and length, or the older format's length and check word.
    unsigned char prefix[8] = {};
    input(prefix, sizeof prefix);
    auto length = detail::FromWire<std::uint32_t>(prefix);
    auto check = detail::FromWire<std::uint32_t>(prefix + 4);
    bool const marked = length == static_cast<std::uint32_t>(string::NPOS);
    if (marked) {
        length = check;
        check = 0;
        *this >> check;
    }
    if (~check != length) {
        throw StreamException(StreamException::InvalidStringLength);
    }
    if (length == 0) {
        text.clear();
    } else if (marked && IsCompressed(length)) {
        std::string const stored = GetStored(length);
        auto const expanded = std::make_unique_for_overwrite<char[]>(length);
        Expand(stored, reinterpret_cast<unsigned char*>(expanded.get()), length);
        text.assign(expanded.get(), TextLength(expanded.get(), length));
    } else if (length < StackText) {
        char body[StackText];
        input(reinterpret_cast<unsigned char*>(body), length);
        text.assign(body, TextLength(body, length));
    } else {
        std::string body = GetBody(length);
        body.resize(TextLength(body.data(), length));
        text = std::move(body);
    }
}

std::string istream::GetBody(std::uint32_t n)
{
    if (n <= TrustedBody) {
        std::string body(n, '\0');
        input(reinterpret_cast<unsigned char*>(body.data()), n);
        return body;
    }
    std::vector<std::unique_ptr<char[]>> pieces;
    for (std::uint32_t left = n; left != 0;) {
        std::uint32_t const count = std::min(left, PieceSize);
        pieces.push_back(std::make_unique_for_overwrite<char[]>(count));
        input(reinterpret_cast<unsigned char*>(pieces.back().get()), count);
        left -= count;
    }
    std::string body;
    body.reserve(n);
    for (std::unique_ptr<char[]>& piece : pieces) {
        body.append(piece.get(), std::min<std::size_t>(PieceSize, n - body.size()));
        piece.reset();
    }
    return body;
}

bool istream::IsCompressed(std::uint32_t n) const
{
    return m_compressor != nullptr && n >= m_compressor->GetMinimumSize();
}

std::string istream::GetStored(std::uint32_t n)
{
    std::uint32_t size = 0;
    *this >> size;
    if (size != n) {
        throw StreamException(StreamException::CompressionSizeFault);
    }
    std::uint32_t count = 0;
    *this >> count;
    return GetBody(count);
}

void istream::Expand(std::string const& stored, unsigned char* buffer, std::uint32_t n)
{
    StreamCompress& compressor = *m_compressor;
    try {
        StreamCompress::Result result;
        compressor.Decompress(result, reinterpret_cast<unsigned char const*>(stored.data()),
                              static_cast<unsigned long>(stored.size()), buffer, n);
    } catch (...) {
        compressor.Release();
        throw;
    }
    compressor.Release();
}

istream& istream::read(unsigned char* buffer, unsigned long n)
{
    std::uint32_t const count = detail::NarrowCount(n);
    if (!IsCompressed(count)) {
        return input(buffer, count);
    }
    Expand(GetStored(count), buffer, count);
    return *this;
}

istream& istream::read(void* buffer, unsigned long n)
{
    return read(static_cast<unsigned char*>(buffer), n);
}

unsigned long istream::ReadAndVerifyHeader(unsigned long id, unsigned long newest)
{
    Stream::HeaderBlock header;
    *this >> header;
    std::uint32_t const expected = detail::NarrowLong(id);
    std::uint32_t const known = detail::NarrowLong(newest);
    if (header.id != expected) {
        throw StreamVerifyIdException(header.id, expected);
    }
    if (header.version > known) {
        throw StreamVersionException(header.version, known, expected);
    }
    return header.version;
}

istream& operator>>(istream& stream, StringList& list)
{
    list.clear();
    std::uint32_t count = 0;
    stream >> count;
    for (; count != 0; --count) {
        string text;
        stream >> text;
        list.push_back(std::move(text));
    }
    return stream;
}

} // namespace Quarn
