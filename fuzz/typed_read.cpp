// Every typed read of the binary streams, in an order that the input chooses. The fast path of a memory
// stream and the general path must read the same and refuse the same.
//
// Input: one byte with the number of reads, a byte for each, then the stream's content.
#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"
#include "quarn/text/string.h"
#include "quarn/text/string_list.h"
#include "quarn/time/time.h"

#include "examples/zlib_compressor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t largestExpanded = 1 << 16;

template<typename T>
void Put(std::string& log, T const& value)
{
    log.append(reinterpret_cast<char const*>(&value), sizeof value);
}

template<typename T>
void Read(Quarn::istream& stream, std::string& log)
{
    T value{};
    stream >> value;
    Put(log, value);
}

// A compressed text is expanded into a block of the size that it claims; the sizes tried here are small.
bool ClaimsMuch(std::span<unsigned char const> content, std::size_t position)
{
    std::uint32_t claimed = 0;
    if (content.size() - position >= 8) {
        std::memcpy(&claimed, &content[position + 4], sizeof claimed);
    }
    return claimed > largestExpanded;
}

void ReadOne(Quarn::istream& stream, unsigned char kind, std::span<unsigned char const> content,
             std::string& log)
{
    ZlibCompressor compressor(8);
    switch (kind % 16) {
    case 0:
        return Read<char>(stream, log);
    case 1:
        return Read<unsigned char>(stream, log);
    case 2:
        return Read<short>(stream, log);
    case 3:
        return Read<unsigned short>(stream, log);
    case 4:
        return Read<int>(stream, log);
    case 5:
        return Read<unsigned int>(stream, log);
    case 6:
        return Read<long>(stream, log);
    case 7:
        return Read<unsigned long>(stream, log);
    case 8:
        return Read<float>(stream, log);
    case 9:
        return Read<double>(stream, log);
    case 10: {
        Quarn::Stream::HeaderBlock header{};
        stream >> header;
        return Put(log, header);
    }
    case 11: {
        Quarn::StringList list;
        stream >> list;
        for (auto const& text : list) {
            log += text;
        }
        return;
    }
    case 12: {
        auto const position = static_cast<std::size_t>(std::streamoff(stream.tellg()));
        if (!ClaimsMuch(content, position)) {
            stream.SetCompressor(&compressor);
        }
        Quarn::string text;
        stream >> text;
        log += text;
        return;
    }
    case 13: {
        std::vector<unsigned char> block(kind * 16U);
        stream.SetCompressor(&compressor);
        stream.read(block.data(), block.size());
        log.append(block.begin(), block.end());
        return;
    }
    case 14:
        return Put(log, stream.ReadAndVerifyHeader(kind, 3));
    default: {
        std::string text;
        stream >> text;
        log += text;
        return;
    }
    }
}

std::string ReadAll(Quarn::istream& stream, std::span<unsigned char const> reads,
                    std::span<unsigned char const> content)
{
    std::string log;
    for (unsigned char const kind : reads) {
        try {
            ReadOne(stream, kind, content, log);
        } catch (Quarn::StreamException const& refusal) {
            log += refusal.GetString();
        }
        stream.SetCompressor(nullptr);
        Put(log, std::streamoff(stream.tellg()));
        stream.clearstate();
    }
    return log;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::span<std::uint8_t const> input(data, size);
    if (input.empty()) {
        return 0;
    }
    std::size_t const count = std::min<std::size_t>(input[0], input.size() - 1);
    auto const reads = input.subspan(1, count);
    auto const rest = input.subspan(1 + count);
    std::vector<unsigned char> content(rest.begin(), rest.end());

    Quarn::memorystream fast(content.data(), static_cast<std::streamoff>(content.size()));
    Quarn::memorystream general(fast); // a copy lends no memory: each read is an `input` call
    if (ReadAll(fast, reads, content) != ReadAll(general, reads, content)) {
        std::fputs("the two paths differ\n", stderr);
        std::abort();
    }
    return 0;
}
