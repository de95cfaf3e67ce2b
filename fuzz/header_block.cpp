// Header blocks of records, from streams of both kinds beside a plain reading of the rule: the version, or
// the documented exception with its text, and the position behind what was read.
//
// Input: the id that is expected, the newest version known, the stream's bytes.
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"
#include "tests/stream/line_model.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

// The exception and its text.
constexpr fuzz::MemoryBound Bound = {"header_block", 1024, 0};

struct Outcome
{
    std::string text; // the version, or the kind of the exception and its text
    std::streamoff position = 0;

    bool operator==(Outcome const& other) const = default;
};

std::string Formatted(char const* format, auto... numbers)
{
    char text[200];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

Outcome Expected(std::vector<unsigned char> const& bytes, std::uint32_t id, std::uint32_t newest)
{
    if (bytes.size() < 8) {
        return {"stream: Generic Read", static_cast<std::streamoff>(bytes.size())};
    }
    auto const word = [&](std::size_t at) {
        return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | std::uint32_t{bytes[at + 3]} << 24;
    };
    std::uint32_t const foundId = word(0);
    std::uint32_t const version = word(4);
    std::string text;
    if (foundId != id) {
        text = Formatted("id: Stream type check failed, expecting 0x%08x found 0x%08x", id, foundId);
    } else if (version <= newest) {
        text = Formatted("%u", version);
    } else {
        text = Formatted("version: Version check %d exceeds %d", version, newest) +
               (id != 0 ? Formatted(" for id=0x%08X", id) : "") + ". Software is out of date.";
    }
    return {text, 8};
}

template<typename Stream>
Outcome Read(std::vector<unsigned char>& bytes, std::uint32_t id, std::uint32_t newest)
{
    Stream stream(bytes.data(), static_cast<std::streamoff>(bytes.size()));
    Outcome outcome;
    outcome.text.reserve(200); // so that it counts no more than the reader
    fuzz::Watch(Bound, bytes.size(), [&] {
        try {
            outcome.text = std::to_string(stream.ReadAndVerifyHeader(id, newest));
        } catch (Quarn::StreamVerifyIdException const& e) {
            outcome.text.append("id: ").append(e.GetString());
        } catch (Quarn::StreamVersionException const& e) {
            outcome.text.append("version: ").append(e.GetString());
        } catch (Quarn::StreamException const& e) {
            outcome.text.append("stream: ").append(e.GetString());
        }
    });
    outcome.position = stream.tellg();
    return outcome;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size < 8) {
        return 0;
    }
    std::uint32_t words[2];
    std::memcpy(words, data, sizeof words);
    std::vector<unsigned char> bytes(data + sizeof words, data + size);
    Outcome const expected = Expected(bytes, words[0], words[1]);
    fuzz::Check(Read<Quarn::memorystream>(bytes, words[0], words[1]) == expected, "another header");
    fuzz::Check(Read<DerivedMemory>(bytes, words[0], words[1]) == expected, "another header, byte by byte");
    return 0;
}
