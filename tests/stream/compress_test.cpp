#include "quarn/stream/memory_stream.h"

#include "examples/zlib_compressor.h"
#include "tests/stream/bytes.h"
#include "tests/stream/captured_reports.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <climits>
#include <numeric>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string const BodyText = std::string(30, 'a') + std::string(10, 'b');

Bytes Ramp()
{
    Bytes bytes(1024);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    return bytes;
}

// A compressor that fails in the middle of its work, or wherever it is told to.
class FailingCompressor : public RunLengthCompressor
{
public:
    void Compress(Result& result, unsigned char const* source, unsigned long count) override
    {
        RunLengthCompressor::Compress(result, source, count);
        throw Quarn::StreamException(Quarn::StreamException::MemoryAllocation);
    }
};

TEST(CompressedBlock, WritesAndReadsTheGoldenFile)
{
    RunLengthCompressor compressor(40);
    FakeOutput out;
    out.SetCompressor(&compressor);
    EXPECT_EQ(&out.write(BodyText.data(), 40), &out);
    EXPECT_EQ(out.Taken(), Golden("compressed_block.bin"));
    EXPECT_EQ(compressor.released, 1);

    FakeInput in(Golden("compressed_block.bin"));
    in.SetCompressor(&compressor);
    std::string body(40, '\0');
    EXPECT_EQ(&in.read(body.data(), 40), &in);
    EXPECT_EQ(body, BodyText);
    EXPECT_EQ(in.Left(), 0U);
    EXPECT_EQ(compressor.released, 2);
}

TEST(CompressedBlock, HoldsTheBodyOfAString)
{
    RunLengthCompressor compressor(40);
    FakeOutput out;
    out.SetCompressor(&compressor);
    out << BodyText;
    EXPECT_EQ(out.Taken(), Golden("compressed_string.bin"));

    FakeInput in(Golden("compressed_string.bin"));
    in.SetCompressor(&compressor);
    Quarn::string text;
    in >> text;
    EXPECT_EQ(text, BodyText);
    EXPECT_EQ(compressor.released, 2);
}

TEST(CompressedBlock, BelowTheMinimumIsStoredAsItIs)
{
    RunLengthCompressor compressor(41);
    FakeOutput out;
    out.SetCompressor(&compressor);
    out.write(BodyText.data(), 40);
    EXPECT_EQ(out.Taken(), Bytes(BodyText.begin(), BodyText.end()));
    EXPECT_EQ(out.Calls(), (std::vector<std::size_t>{40}));
    FakeInput in(out.Taken());
    in.SetCompressor(&compressor);
    std::string body(40, '\0');
    in.read(body.data(), 40);
    EXPECT_EQ(body, BodyText);
    EXPECT_EQ(compressor.compressed + compressor.decompressed + compressor.released, 0);
}

TEST(CompressedBlock, AnEmptyStringHasNoBodyToCompress)
{
    RunLengthCompressor compressor(0);
    FakeOutput out;
    out.SetCompressor(&compressor);
    out << "";
    EXPECT_EQ(out.Taken().size(), 12U);
    FakeInput in(out.Taken());
    in.SetCompressor(&compressor);
    Quarn::string text = "old";
    in >> text;
    EXPECT_EQ(text, "");
    EXPECT_EQ(compressor.compressed + compressor.decompressed, 0);
}

TEST(CompressedBlock, OfNoBytesIsOneToo)
{
    RunLengthCompressor compressor(0);
    FakeOutput out;
    out.SetCompressor(&compressor);
    out.write("", 0);
    EXPECT_EQ(out.Taken(), Hex("00 00 00 00 00 00 00 00"));
    FakeInput in(out.Taken());
    in.SetCompressor(&compressor);
    unsigned char none = 7;
    in.read(&none, 0);
    EXPECT_EQ(in.Left(), 0U);
    EXPECT_EQ(none, 7);
}

TEST(CompressedBlock, IsNeverWrittenInDumpMode)
{
    RunLengthCompressor compressor(0);
    FakeOutput out(true);
    out.SetCompressor(&compressor);
    out.write(BodyText.data(), 40);
    out << BodyText;
    EXPECT_EQ(out.Taken().size(), 80U);
    EXPECT_EQ(compressor.compressed, 0);
}

TEST(CompressedBlock, IsNeverReadFromAnOlderString)
{
    RunLengthCompressor compressor(0);
    FakeInput in(Golden("strings_old.bin"));
    in.SetCompressor(&compressor);
    Quarn::string text;
    in >> text >> text;
    EXPECT_EQ(text, "ab");
    EXPECT_EQ(compressor.decompressed, 0);
}

TEST(CompressedBlock, OfAnotherSizeIsASizeFault)
{
    RunLengthCompressor compressor(0);
    FakeInput in(Golden("compressed_block.bin"));
    in.SetCompressor(&compressor);
    std::string body(41, '\0');
    EXPECT_EQ(ThrownText([&] { in.read(body.data(), 41); }), "Compression Size Fault");
    EXPECT_EQ(in.Left(), 8U);
    EXPECT_EQ(compressor.decompressed, 0);

    Bytes wrong = Golden("compressed_string.bin");
    wrong[12] = 39;
    FakeInput source(wrong);
    source.SetCompressor(&compressor);
    Quarn::string text = "old";
    EXPECT_EQ(ThrownText([&] { source >> text; }), "Compression Size Fault");
    EXPECT_EQ(text, "old");
}

TEST(CompressedBlock, UnequalMinimumSizesMisreadInADefinedWay)
{
    // Written plain, read as compressed: the text's first characters are no size.
    RunLengthCompressor large(1000);
    RunLengthCompressor small(0);
    FakeOutput plain;
    plain.SetCompressor(&large);
    plain << BodyText;
    FakeInput asCompressed(plain.Taken());
    asCompressed.SetCompressor(&small);
    Quarn::string text;
    EXPECT_EQ(ThrownText([&] { asCompressed >> text; }), "Compression Size Fault");

    // Written compressed, read as plain: not enough bytes.
    FakeOutput compressed;
    compressed.SetCompressor(&small);
    compressed << BodyText;
    FakeInput asPlain(compressed.Taken());
    asPlain.SetCompressor(&large);
    EXPECT_EQ(ThrownText([&] { asPlain >> text; }), "Generic Read");
}

TEST(CompressedBlock, ThatIsCorruptEndsInTheCompressorsException)
{
    RunLengthCompressor compressor(0);
    Bytes corrupt = Golden("compressed_block.bin");
    corrupt[8] = 31;
    FakeInput in(corrupt);
    in.SetCompressor(&compressor);
    std::string body(40, '\0');
    EXPECT_EQ(ThrownText([&] { in.read(body.data(), 40); }), "Corrupted Data");
    EXPECT_EQ(compressor.released, 1);
    EXPECT_EQ(in.Left(), 0U);

    Bytes corruptText = Golden("compressed_string.bin");
    corruptText[20] = 31;
    FakeInput source(corruptText);
    source.SetCompressor(&compressor);
    Quarn::string text = "old";
    EXPECT_EQ(ThrownText([&] { source >> text; }), "Corrupted Data");
    EXPECT_EQ(text, "old");
    EXPECT_EQ(compressor.released, 2);
}

TEST(CompressedBlock, CutAnywhereIsAGenericRead)
{
    Bytes const whole = Golden("compressed_string.bin");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        RunLengthCompressor compressor(0);
        FakeInput in(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        in.SetCompressor(&compressor);
        Quarn::string text;
        EXPECT_EQ(ThrownText([&] { in >> text; }), "Generic Read") << size;
        EXPECT_EQ(compressor.decompressed, 0) << size;
    }
}

TEST(CompressedBlock, ReleasesItsBufferWhereTheWriteFails)
{
    for (std::size_t room = 0; room < 12; ++room) {
        RunLengthCompressor compressor(0);
        FakeOutput out(false, room);
        out.SetCompressor(&compressor);
        EXPECT_EQ(ThrownText([&] { out.write(BodyText.data(), 40); }), "Generic Write") << room;
        EXPECT_EQ(compressor.released, 1) << room;
    }
    FailingCompressor failing;
    FakeOutput out;
    out.SetCompressor(&failing);
    EXPECT_EQ(ThrownText([&] { out.write(BodyText.data(), 40); }), "Memory Allocation");
    EXPECT_EQ(failing.released, 1);
    EXPECT_TRUE(out.Taken().empty());
}

TEST(CompressedBlock, LeavesWhenTheCompressorIsTakenAway)
{
    RunLengthCompressor compressor(0);
    FakeOutput out;
    out.SetCompressor(&compressor);
    out.SetCompressor(nullptr);
    out.write(BodyText.data(), 40);
    EXPECT_EQ(out.Taken().size(), 40U);
}

TEST(CompressedBlock, AMemoryStreamHasACompressorPerSide)
{
    RunLengthCompressor compressor(0);
    Quarn::memorystream stream(64);
    stream.SetOutputCompressor(&compressor);
    stream.write(BodyText.data(), 40);
    EXPECT_EQ(stream.tellp(), std::streampos(12));
    stream.seekg(0, 0);
    unsigned int size = 0;
    stream.read(&size, 4);
    EXPECT_EQ(size, 40U);
    stream.seekg(0, 0);
    stream.SetInputCompressor(&compressor);
    std::string body(40, '\0');
    stream.read(body.data(), 40);
    EXPECT_EQ(body, BodyText);
}

TEST(CompressedBlock, OverZlibReadsTheGoldenFile)
{
    ZlibCompressor compressor;
    FakeInput in(Golden("zlib_block.bin"));
    in.SetCompressor(&compressor);
    Bytes body(1024);
    in.read(body.data(), 1024);
    EXPECT_EQ(body, Ramp());
    EXPECT_EQ(in.Left(), 0U);
}

TEST(CompressedBlock, OverZlibReadsBackWhatItWrote)
{
    std::mt19937 random(7);
    for (std::size_t const size : {63U, 64U, 65U, 1000U, 70000U, 300000U}) {
        ZlibCompressor compressor;
        std::string text(size, '\0');
        for (char& c : text) {
            c = static_cast<char>('a' + random() % 20);
        }
        FakeOutput out;
        out.SetCompressor(&compressor);
        out << text << 42;
        FakeInput in(out.Taken());
        in.SetCompressor(&compressor);
        Quarn::string back;
        int number = 0;
        in >> back >> number;
        EXPECT_EQ(back, text) << size;
        EXPECT_EQ(number, 42) << size;
        EXPECT_EQ(in.Left(), 0U) << size;
    }
}

TEST(CompressedBlock, OverZlibEveryDamagedByteIsNoticed)
{
    Bytes const whole = Golden("zlib_block.bin");
    for (std::size_t i = 8; i < whole.size(); ++i) {
        Bytes damaged = whole;
        damaged[i] ^= 0x55;
        ZlibCompressor compressor;
        FakeInput in(damaged);
        in.SetCompressor(&compressor);
        Bytes body(1024);
        EXPECT_EQ(ThrownText([&] { in.read(body.data(), 1024); }), "Corrupted Data") << i;
    }
}

TEST(Block, WithoutACompressorIsTheBytesAlone)
{
    FakeOutput out;
    unsigned char const bytes[] = {1, 2, 3};
    out.write(bytes, 3);
    out.write(static_cast<void const*>(bytes), 2);
    EXPECT_EQ(out.Taken(), Hex("01 02 03 01 02"));
    FakeInput in(out.Taken());
    unsigned char back[3] = {};
    in.read(back, 3);
    EXPECT_EQ(back[2], 3);
    in.read(static_cast<void*>(back), 2);
    EXPECT_EQ(back[1], 2);
    EXPECT_EQ(in.Left(), 0U);
}

#if ULONG_MAX > 0xFFFFFFFF // no other count can be so large
TEST(Block, ACountBeyond32BitsIsReportedAndCut)
{
    CapturedReports const reports;
    FakeOutput out;
    out.write("abc", static_cast<unsigned long>(0x100000003));
    EXPECT_EQ(out.Taken(), Hex("61 62 63"));
    EXPECT_EQ(reports.Number(), 1);
    FakeInput in(out.Taken());
    unsigned char back[3] = {};
    in.read(back, static_cast<unsigned long>(0x100000003));
    EXPECT_EQ(in.Left(), 0U);
    EXPECT_EQ(reports.Number(), 2);
}
#endif

} // namespace
