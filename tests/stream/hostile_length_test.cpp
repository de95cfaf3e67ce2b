// What a false length costs.
#include "quarn/text/string_list.h"

#include "tests/counted_memory.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

namespace {

// The most that `action` had allocated at once.
template<typename Action>
std::size_t PeakOf(Action action)
{
    std::size_t const before = g_memory.live;
    g_memory.peak = g_memory.live;
    g_memory.largest = 0;
    action();
    return g_memory.peak - before;
}

Bytes Words(std::initializer_list<unsigned int> words)
{
    Bytes bytes;
    for (unsigned int const word : words) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes.push_back(static_cast<unsigned char>(word >> shift));
        }
    }
    return bytes;
}

Bytes WithBody(Bytes prefix, std::size_t body)
{
    prefix.insert(prefix.end(), body, 'x');
    return prefix;
}

constexpr std::size_t Allowance = 64 * 1024;
constexpr std::size_t SmallSize = 1024; // exceptions, lists of pieces

void ExpectCheapFailure(FakeInput& stream, std::size_t held, char const* error)
{
    Quarn::string text = "old";
    std::size_t const peak = PeakOf([&] { EXPECT_EQ(ThrownText([&] { stream >> text; }), error); });
    EXPECT_LE(peak, held + Allowance + SmallSize) << held;
    EXPECT_EQ(text, "old");
}

TEST(HostileLength, OfAStringCostsNoMoreThan64KiBBeyondWhatTheStreamHolds)
{
    for (unsigned int const length : {65536U, 65537U, 1000000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        for (std::size_t const held : {0U, 100U, 65000U, 1000000U}) {
            if (held < length) {
                FakeInput current(WithBody(Words({0xFFFFFFFF, length, ~length}), held));
                ExpectCheapFailure(current, held, "Generic Read");
                if (length != 0xFFFFFFFF) {
                    FakeInput older(WithBody(Words({length, ~length}), held));
                    ExpectCheapFailure(older, held, "Generic Read");
                }
            }
        }
    }
}

TEST(HostileLength, OfAStringThatIsThereCostsAtMostTheTextTwice)
{
    constexpr unsigned int length = 10000000;
    FakeInput stream(WithBody(Words({0xFFFFFFFF, length, ~length}), length));
    Quarn::string text;
    std::size_t const peak = PeakOf([&] { stream >> text; });
    EXPECT_EQ(text.size(), length);
    EXPECT_LE(peak, 2 * std::size_t{length} + Allowance);
}

TEST(HostileLength, OfTheStoredBytesOfABlockCostsNoMoreEither)
{
    for (std::size_t const held : {0U, 100U, 1000000U}) {
        RunLengthCompressor compressor;
        FakeInput stream(WithBody(Words({0xFFFFFFFF, 0xFFFFFFF0, 0xF, 0xFFFFFFF0, 0xFFFFFFFF}), held));
        stream.SetCompressor(&compressor);
        ExpectCheapFailure(stream, held, "Generic Read");
        EXPECT_EQ(compressor.decompressed, 0);

        FakeInput block(WithBody(Words({40, 0xFFFFFFFF}), held));
        block.SetCompressor(&compressor);
        unsigned char buffer[40];
        std::size_t const peak =
            PeakOf([&] { EXPECT_EQ(ThrownText([&] { block.read(buffer, 40); }), "Generic Read"); });
        EXPECT_LE(peak, held + Allowance + SmallSize);
    }
}

TEST(HostileLength, OfABlockIsAllocatedOnlyAfterItsStoredBytesWereRead)
{
    RunLengthCompressor compressor;
    FakeInput stream(WithBody(Words({0xFFFFFFFF, 50000000, ~50000000U, 50000000, 100000}), 99999));
    stream.SetCompressor(&compressor);
    Quarn::string text;
    PeakOf([&] { EXPECT_EQ(ThrownText([&] { stream >> text; }), "Generic Read"); });
    EXPECT_LT(g_memory.largest, 100000U);

    // A size that differs from the string's length is refused before anything is allocated.
    FakeInput other(WithBody(Words({0xFFFFFFFF, 50000000, ~50000000U, 50000001, 100000}), 100000));
    other.SetCompressor(&compressor);
    std::size_t const peak =
        PeakOf([&] { EXPECT_EQ(ThrownText([&] { other >> text; }), "Compression Size Fault"); });
    EXPECT_LE(peak, SmallSize);
}

TEST(HostileLength, OfAListCostsWhatItsStringsCost)
{
    Bytes bytes = Words({0xFFFFFFFF});
    for (int i = 0; i < 1000; ++i) {
        Bytes const empty = Words({0, 0xFFFFFFFF});
        bytes.insert(bytes.end(), empty.begin(), empty.end());
    }
    FakeInput stream(bytes);
    Quarn::StringList list;
    std::size_t const peak = PeakOf([&] { EXPECT_EQ(ThrownText([&] { stream >> list; }), "Generic Read"); });
    EXPECT_EQ(list.size(), 1000U);
    EXPECT_LE(peak, 1000 * 100U);
}

} // namespace
