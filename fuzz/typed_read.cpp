// The typed reads over hostile bytes. An input is a count, that many operations (one byte each) and the bytes
// of the stream. Everything is read three times, from a plain memory stream, from a derived one, which takes
// another road through the library, and up to the first refusal from a file: all must bring the same values
// and the same refusals, and stand in the same places.
#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"
#include "quarn/time/time.h"
#include "quarn/units/unit_names.h"
#include "quarn/units/velocity.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"
#include "fuzz/scratch_file.h"
#include "tests/stream/line_model.h"
#include "tests/stream/run_length_compressor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace {

// A compressed text is expanded into a block of the size that it claims; the sizes tried here are small.
constexpr std::uint32_t LargestClaim = 1U << 16U;

// An exception. Of a text 64 KiB are believed, then there are its pieces and the text. Of a compressed one
// there are the stored bytes, the block of the size that it claims, and the text. An empty text of a list
// takes eight bytes of the stream.
constexpr std::size_t Small = 512;
constexpr fuzz::MemoryBound NumberBound = {"typed_read_number", Small, 0};
constexpr fuzz::MemoryBound TextBound = {"typed_read_text", 64 * 1024 + Small, 2};
constexpr fuzz::MemoryBound CompressedBound = {"typed_read_compressed", 64 * 1024 + 2 * LargestClaim + Small,
                                               2};
constexpr fuzz::MemoryBound ListBound = {"typed_read_list", 64 * 1024 + Small, 8};

class Reader
{
public:
    // A compressed text may be 255 times as long as its source.
    Reader(Quarn::istream& stream, std::string const& bytes)
        : m_stream(stream),
          m_bytes(bytes),
          m_text(new char[255 * bytes.size() + 1])
    {}

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
            Modestly([&] { Watched(TextOrCompressed(), text); });
            return SeeText(text);
        }
        case 10:
            Modestly([&] { Watched(TextOrCompressed(), m_text.get()); });
            return SeeText(m_text.get());
        case 11: {
            Quarn::StringList list;
            Compress(nullptr);
            Watched(ListBound, list);
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
            return Compress(&m_compressor);
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

    static bool IsReadSome(unsigned char operation) { return operation % 20 == 16; }
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
        if (static_cast<std::streamoff>(m_bytes.size()) - position >= 8) {
            std::memcpy(&claim, m_bytes.data() + position + 4, sizeof claim);
        }
        if (claim > LargestClaim) {
            Compress(nullptr);
        }
        read();
    }
    template<typename T>
    void Value()
    {
        T value{};
        Watched(NumberBound, value);
        See(value);
    }
    void Compress(RunLengthCompressor* compressor)
    {
        m_isCompressed = compressor != nullptr;
        m_stream.SetCompressor(compressor);
    }
    fuzz::MemoryBound const& TextOrCompressed() const { return m_isCompressed ? CompressedBound : TextBound; }
    template<typename T>
    void Watched(fuzz::MemoryBound const& bound, T&& value)
    {
        fuzz::Watch(bound, m_bytes.size(), [&] { m_stream >> value; });
    }
    template<typename T>
    void See(T const& value)
    {
        char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        m_seen.append(bytes, sizeof value);
    }
    void SeeText(std::string const& text) { m_seen.append(text).append(1, '\0'); }

    Quarn::istream& m_stream;
    std::string const& m_bytes;
    std::unique_ptr<char[]> m_text;
    RunLengthCompressor m_compressor{8};
    bool m_isCompressed = false;
    std::string m_seen;
};

// Where the first refusal ends the reading, readsome does so, too: a file brings what is at hand.
std::string ReadAll(Quarn::istream& stream, std::string const& operations, std::string const& bytes,
                    bool untilRefused)
{
    Reader reader(stream, bytes);
    for (char const operation : operations) {
        auto const number = static_cast<unsigned char>(operation);
        if (untilRefused && Reader::IsReadSome(number)) {
            break;
        }
        try {
            reader.Do(number);
        } catch (Quarn::StreamException const& e) {
            if (untilRefused) {
                break;
            }
            reader.Note(e.GetString());
        }
        reader.SeeState();
    }
    return reader.Seen();
}

template<typename Stream>
std::string ReadMemory(std::string const& operations, std::string const& bytes)
{
    // Exactly sized, so that a read past the end is noticed.
    std::unique_ptr<unsigned char[]> const block(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    Stream stream(block.get(), static_cast<std::streamoff>(bytes.size()));
    return ReadAll(stream, operations, bytes, false);
}

std::string ReadFile(std::string const& operations, std::string const& bytes)
{
    fuzz::ScratchFile const file(bytes);
    Quarn::ifstream stream(file.Path(), std::ios_base::binary);
    return ReadAll(stream, operations, bytes, true);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::size_t const count = size != 0 ? data[0] : 0;
    if (size < 1 + count || size > 65536) {
        return 0;
    }
    std::string const operations(reinterpret_cast<char const*>(data) + 1, count);
    std::string const bytes(reinterpret_cast<char const*>(data) + 1 + count, size - 1 - count);
    std::string const seen = ReadMemory<Quarn::memorystream>(operations, bytes);
    fuzz::Check(ReadMemory<DerivedMemory>(operations, bytes) == seen, "byte by byte brings something else");
    fuzz::Check(seen.starts_with(ReadFile(operations, bytes)), "the file brings something else");
    return 0;
}
