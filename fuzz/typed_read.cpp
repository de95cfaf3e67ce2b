// The typed reads over hostile bytes. An input is a count, that many operations (one byte each) and the bytes
// of the stream. Everything is read twice, from a plain memory stream and from a derived one, which takes
// another road through the library: both must bring the same values and the same refusals.
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"
#include "quarn/time/time.h"
#include "quarn/units/unit_names.h"
#include "quarn/units/velocity.h"

#include "tests/stream/run_length_compressor.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

// A compressed text is expanded into a block of the size that it claims; the sizes tried here are small.
constexpr std::uint32_t LargestClaim = 1U << 16U;

class Derived : public Quarn::memorystream
{
public:
    using memorystream::memorystream;
};

class Reader
{
public:
    Reader(Quarn::memorystream& stream, std::size_t size) : m_stream(stream), m_text(new char[size + 1]) {}

    // Everything that was seen, in order.
    std::string const& Seen() const { return m_seen; }

    void Do(unsigned char operation)
    {
        switch (operation % 20) {
        case 0:
            return Value<unsigned char>();
        case 1:
            return Value<bool>();
        case 2:
            return Value<short>();
        case 3:
            return Value<int>();
        case 4:
            return Value<long>();
        case 5:
            return Value<unsigned long>();
        case 6:
            return Value<float>();
        case 7:
            return Value<double>();
        case 8: {
            long double value = 0;
            m_stream >> value;
            return See(static_cast<double>(value));
        }
        case 9: {
            std::string text;
            Modestly([&] { m_stream >> text; });
            return SeeText(text);
        }
        case 10:
            Modestly([&] { m_stream >> m_text.get(); });
            return SeeText(m_text.get());
        case 11: {
            Quarn::StringList list;
            m_stream.SetInputCompressor(nullptr);
            m_stream >> list;
            for (Quarn::string const& text : list) {
                SeeText(text);
            }
            return;
        }
        case 12:
            return Value<Quarn::Stream::HeaderBlock>();
        case 13:
            return Value<Quarn::Time>();
        case 14: {
            unsigned char block[256] = {};
            m_stream.read(block, operation);
            return See(block);
        }
        case 15:
            return See(m_stream.ReadAndVerifyHeader(0x00010002, 3));
        case 16: {
            unsigned char block[16] = {};
            m_stream.readsome(block, sizeof block);
            return See(block);
        }
        case 17:
            m_stream.SetInputCompressor(&m_compressor);
            return;
        case 18: {
            Quarn::Distance<float> distance;
            m_stream >> distance;
            See(distance);
            return SeeText(Win32Quarn::GetUnitsNamePlural(distance.unit));
        }
        default: {
            Quarn::Velocity<float> velocity;
            m_stream >> velocity;
            See(velocity);
            return See(Quarn::Distance<float>{Quarn::Distance<float>::Mile, 1.0F} / velocity);
        }
        }
    }

    void Note(char const* text) { SeeText(text); }
    void SeeState()
    {
        See(m_stream.gcount());
        See(static_cast<std::streamoff>(m_stream.tellg()));
    }

private:
    // Reads a text, without the compressor where the text claims much.
    template<typename Read>
    void Modestly(Read read)
    {
        std::streamoff const position = m_stream.tellg();
        std::uint32_t claim = 0;
        if (m_stream.GetSize() - m_stream.tellg() >= 8) {
            std::memcpy(&claim, m_stream.GetMemory() + position + 4, sizeof claim);
        }
        if (claim > LargestClaim) {
            m_stream.SetInputCompressor(nullptr);
        }
        read();
    }
    template<typename T>
    void Value()
    {
        T value{};
        m_stream >> value;
        See(value);
    }
    template<typename T>
    void See(T const& value)
    {
        char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        m_seen.append(bytes, sizeof value);
    }
    void SeeText(std::string const& text) { m_seen.append(text).append(1, '\0'); }

    Quarn::memorystream& m_stream;
    std::unique_ptr<char[]> m_text;
    RunLengthCompressor m_compressor{8};
    std::string m_seen;
};

template<typename Stream>
std::string ReadAll(std::string const& operations, unsigned char const* data, std::size_t size)
{
    // Exactly sized, so that a read past the end is noticed.
    std::unique_ptr<unsigned char[]> const block(new unsigned char[size]);
    if (size != 0) {
        std::memcpy(block.get(), data, size);
    }
    Stream stream(block.get(), static_cast<std::streamoff>(size));
    // A compressed text may be 255 times as long as its source.
    Reader reader(stream, size * 255);
    for (char const operation : operations) {
        try {
            reader.Do(static_cast<unsigned char>(operation));
        } catch (Quarn::StreamException const& e) {
            reader.Note(e.GetString());
        }
        reader.SeeState();
    }
    return reader.Seen();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::size_t const count = size != 0 ? data[0] : 0;
    if (size < 1 + count || size > 65536) {
        return 0;
    }
    std::string const operations(reinterpret_cast<char const*>(data) + 1, count);
    std::uint8_t const* const bytes = data + 1 + count;
    std::size_t const left = size - 1 - count;
    if (ReadAll<Quarn::memorystream>(operations, bytes, left) != ReadAll<Derived>(operations, bytes, left)) {
        std::abort();
    }
    return 0;
}
