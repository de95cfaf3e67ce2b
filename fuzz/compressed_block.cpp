// Compressed blocks and compressed texts, with a compressor over zlib and one of runs. What is read is what a
// plain reading of the rule and the compressor by itself bring, with the documented exception where they
// bring none, and the stream stands behind what was consumed. What is written comes back.
//
// Input: the compressor, the block's size in two bytes, the stream's bytes.
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"

#include "examples/zlib_compressor.h"
#include "fuzz/check.h"
#include "fuzz/memory_bound.h"
#include "tests/stream/line_model.h"
#include "tests/stream/run_length_compressor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// Of stored bytes 64 KiB are believed; then there are the stored bytes, and zlib's own state and window of
// less than that. Of a text there are besides, twice (the block and the text), as many bytes as the record
// claims; in this program no more than 64 KiB.
constexpr std::size_t Trusted = std::size_t{64} * 1024;
constexpr fuzz::MemoryBound BlockBound = {"compressed_block", Trusted + 512, 2};
constexpr fuzz::MemoryBound TextBound = {"compressed_text", 3 * Trusted + 512, 2};

constexpr unsigned Minimum = 4;

struct Outcome
{
    Bytes bytes;
    std::string error;
    std::streamoff position = 0;

    bool operator==(Outcome const& other) const = default;
};

std::uint32_t Word(Bytes const& bytes, std::size_t at)
{
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | std::uint32_t{bytes[at + 3]} << 24;
}

// A block of `size` bytes, which begins at `at`.
Outcome Expected(Quarn::StreamCompress& compressor, Bytes const& bytes, std::size_t at, std::uint32_t size)
{
    auto const end = static_cast<std::streamoff>(bytes.size());
    if (size < Minimum) {
        std::size_t const count = std::min<std::size_t>(size, bytes.size() - at);
        auto const first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        Outcome outcome{{first, first + static_cast<std::ptrdiff_t>(count)}, "", 0};
        outcome.position = static_cast<std::streamoff>(at + count);
        if (count != size) {
            return {{}, "Generic Read", end};
        }
        return outcome;
    }
    if (bytes.size() - at < 4) {
        return {{}, "Generic Read", end};
    }
    if (Word(bytes, at) != size) {
        return {{}, "Compression Size Fault", static_cast<std::streamoff>(at + 4)};
    }
    if (bytes.size() - at < 8 || Word(bytes, at + 4) > bytes.size() - at - 8) {
        return {{}, "Generic Read", end};
    }
    std::uint32_t const stored = Word(bytes, at + 4);
    Outcome outcome{Bytes(size), "", static_cast<std::streamoff>(at + 8 + stored)};
    try {
        Quarn::StreamCompress::Result result;
        compressor.Decompress(result, bytes.data() + at + 8, stored, outcome.bytes.data(), size);
    } catch (Quarn::StreamException const& e) {
        outcome.bytes.clear();
        outcome.error = e.GetString();
    }
    compressor.Release();
    return outcome;
}

template<typename Stream>
Outcome ReadBlock(Quarn::StreamCompress& compressor, Bytes& bytes, std::uint32_t size)
{
    Stream stream(bytes.data(), static_cast<std::streamoff>(bytes.size()));
    stream.SetInputCompressor(&compressor);
    Outcome outcome{Bytes(size), "", 0};
    fuzz::Watch(BlockBound, bytes.size(), [&] {
        try {
            stream.read(outcome.bytes.data(), size);
        } catch (Quarn::StreamException const& e) {
            outcome.bytes.clear();
            outcome.error = e.GetString();
        }
    });
    outcome.position = stream.tellg();
    return outcome;
}

// A text of which the stream claims `size` characters, then the bytes.
template<typename Stream>
Outcome ReadText(Quarn::StreamCompress& compressor, Bytes& bytes)
{
    Stream stream(bytes.data(), static_cast<std::streamoff>(bytes.size()));
    stream.SetInputCompressor(&compressor);
    Outcome outcome;
    Quarn::string text = "old";
    fuzz::Watch(TextBound, bytes.size(), [&] {
        try {
            stream >> text;
        } catch (Quarn::StreamException const& e) {
            outcome.error = e.GetString();
        }
    });
    fuzz::Check(outcome.error.empty() || text == "old", "a text that was not read has changed");
    if (outcome.error.empty()) {
        outcome.bytes.assign(text.begin(), text.end());
    }
    outcome.position = stream.tellg();
    return outcome;
}

void CheckRoundTrip(Quarn::StreamCompress& compressor, Bytes const& bytes)
{
    Quarn::memorystream stream(static_cast<unsigned long>(2 * bytes.size() + 1000));
    stream.SetOutputCompressor(&compressor);
    stream.SetInputCompressor(&compressor);
    stream.write(bytes.data(), static_cast<unsigned long>(bytes.size()));
    std::streamoff const end = stream.tellp();
    stream.seekp(0, 0);
    Bytes back(bytes.size());
    stream.read(back.data(), static_cast<unsigned long>(back.size()));
    fuzz::Check(back == bytes && std::streamoff{stream.tellg()} == end, "other bytes come back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size < 3 || size > 65536) {
        return 0;
    }
    ZlibCompressor zlib(Minimum);
    RunLengthCompressor runs(Minimum);
    Quarn::StreamCompress& compressor = data[0] % 2 == 0 ? static_cast<Quarn::StreamCompress&>(zlib) : runs;
    auto const claim = static_cast<std::uint32_t>(data[1] | data[2] << 8);

    Bytes block(data + 3, data + size);
    Outcome const expected = Expected(compressor, block, 0, claim);
    Outcome found = ReadBlock<Quarn::memorystream>(compressor, block, claim);
    fuzz::Check(found == expected, "another block");
    found = ReadBlock<DerivedMemory>(compressor, block, claim);
    fuzz::Check(found == expected, "another block, byte by byte");

    Bytes text(12);
    for (std::size_t i = 0; i < 4; ++i) {
        text[i] = 0xFF;
        text[4 + i] = static_cast<unsigned char>(claim >> 8 * i);
        text[8 + i] = static_cast<unsigned char>(~claim >> 8 * i);
    }
    text.insert(text.end(), block.begin(), block.end());
    Outcome expectedText = claim == 0 ? Outcome{{}, "", 12} : Expected(compressor, text, 12, claim);
    expectedText.bytes.erase(std::find(expectedText.bytes.begin(), expectedText.bytes.end(), 0),
                             expectedText.bytes.end());
    fuzz::Check(ReadText<Quarn::memorystream>(compressor, text) == expectedText, "another text");
    fuzz::Check(ReadText<DerivedMemory>(compressor, text) == expectedText, "another text, byte by byte");

    CheckRoundTrip(compressor, block);
    return 0;
}
