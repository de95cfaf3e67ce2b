#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/null_stream.h"
#include "quarn/stream/stream_exception.h"

#include "tests/stream/bytes.h"
#include "tests/stream/captured_reports.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Quarn::StreamException;
using Quarn::StreamVerifyIdException;
using Quarn::StreamVersionException;
using Quarn::Stream::HeaderBlock;

static_assert(sizeof(HeaderBlock) == 8 && offsetof(HeaderBlock, id) == 0 &&
              offsetof(HeaderBlock, version) == 4);
static_assert(std::is_trivially_copyable_v<HeaderBlock> && std::is_standard_layout_v<HeaderBlock>);

template<typename Exception, typename Action>
std::string TextOf(Action action)
{
    try {
        action();
    } catch (Exception const& e) {
        EXPECT_EQ(typeid(e), typeid(Exception));
        EXPECT_STREQ(e.what(), e.GetString());
        return e.GetString();
    }
    return "(nothing thrown)";
}

unsigned long Verify(Bytes const& bytes, unsigned long id, unsigned long newest)
{
    Source streamSource(bytes);
    Quarn::memorystream& stream = streamSource;
    return stream.ReadAndVerifyHeader(id, newest);
}

TEST(HeaderBlock, WritesAndReadsTheGoldenFile)
{
    RunLengthCompressor compressor;
    FakeOutput out;
    out.SetCompressor(&compressor);
    out << HeaderBlock{0x00010002, 3};
    EXPECT_EQ(out.Taken(), Golden("header_block.bin"));
    EXPECT_EQ(compressor.compressed, 0);

    FakeInput in(Golden("header_block.bin"));
    in.SetCompressor(&compressor);
    HeaderBlock header;
    EXPECT_EQ(&(in >> header), &in);
    EXPECT_EQ(header.id, 0x00010002U);
    EXPECT_EQ(header.version, 3U);
    EXPECT_EQ(compressor.decompressed, 0);
}

TEST(HeaderBlock, IsWrittenAsTwoRawWordsOfFourBytes)
{
    FakeOutput out;
    out << HeaderBlock{1, 2};
    EXPECT_EQ(out.Calls(), (std::vector<std::size_t>{4, 4}));
}

TEST(HeaderBlock, CutShortLeavesTheTargetAsItWas)
{
    Source streamSource("01 00 00 00 02 00");
    Quarn::memorystream& stream = streamSource;
    HeaderBlock header{7, 8};
    EXPECT_EQ(ThrownText([&] { stream >> header; }), "Generic Read");
    EXPECT_EQ(header.id, 7U);
    EXPECT_EQ(header.version, 8U);
}

TEST(HeaderBlock, FromANullStreamIsZero)
{
    Quarn::nullstream stream;
    HeaderBlock header{7, 8};
    stream >> header;
    EXPECT_EQ(header.id, 0U);
    EXPECT_EQ(header.version, 0U);
    EXPECT_EQ(stream.ReadAndVerifyHeader(0, 0), 0UL);
}

TEST(VerifyHeader, AcceptsTheNewestAndOlderVersions)
{
    Bytes const header = Golden("header_block.bin");
    EXPECT_EQ(Verify(header, 0x00010002, 3), 3UL);
    EXPECT_EQ(Verify(header, 0x00010002, 9), 3UL);
    EXPECT_EQ(Verify(Bytes(8), 0, 0), 0UL);
    EXPECT_EQ(Verify(header, 0x00010002, 0xFFFFFFFF), 3UL);
}

TEST(VerifyHeader, RefusesAForeignIdWhateverTheVersion)
{
    EXPECT_EQ(TextOf<StreamVerifyIdException>([] { Verify(Hex("03 00 01 00 FF FF FF FF"), 0x00010002, 1); }),
              "Stream type check failed, expecting 0x00010002 found 0x00010003");
    EXPECT_EQ(TextOf<StreamVerifyIdException>([] { Verify(Hex("EF CD AB FF 01 00 00 00"), 0xABCD, 1); }),
              "Stream type check failed, expecting 0x0000abcd found 0xffabcdef");
}

TEST(VerifyHeader, RefusesANewerVersion)
{
    EXPECT_EQ(TextOf<StreamVersionException>([] { Verify(Hex("CD AB 00 00 04 00 00 00"), 0xABCD, 3); }),
              "Version check 4 exceeds 3 for id=0x0000ABCD. Software is out of date.");
    EXPECT_EQ(TextOf<StreamVersionException>([] { Verify(Hex("00 00 00 00 04 00 00 00"), 0, 3); }),
              "Version check 4 exceeds 3. Software is out of date.");
}

TEST(VerifyHeader, ComparesVersionsUnsignedAndDeliberatelyShowsThemSigned)
{
    EXPECT_EQ(TextOf<StreamVersionException>([] { Verify(Hex("01 00 00 00 FF FF FF FF"), 1, 3); }),
              "Version check -1 exceeds 3 for id=0x00000001. Software is out of date.");
}

TEST(VerifyHeader, StandsBehindTheHeaderAfterARefusal)
{
    Source streamSource("03 00 01 00 04 00 00 00 2A 00 00 00");
    Quarn::memorystream& stream = streamSource;
    EXPECT_THROW(stream.ReadAndVerifyHeader(1, 1), StreamVerifyIdException);
    int next = 0;
    stream >> next;
    EXPECT_EQ(next, 42);
    stream.seekg(0, 0);
    EXPECT_THROW(stream.ReadAndVerifyHeader(0x00010003, 3), StreamVersionException);
    EXPECT_EQ(stream.tellg(), std::streampos(8));
}

TEST(VerifyHeader, CutsNumbersBeyond32Bits)
{
    if constexpr (sizeof(long) > 4) {
        CapturedReports const reports;
        EXPECT_EQ(Verify(Golden("header_block.bin"), static_cast<unsigned long>(0x1200010002), 3), 3UL);
        EXPECT_EQ(reports.Number(), 1);
    }
    EXPECT_EQ(Verify(Hex("FF FF FF FF 01 00 00 00"), static_cast<unsigned long>(-1), 1), 1UL);
}

TEST(StreamException, HasTheFixedMessageOfItsError)
{
    EXPECT_STREQ(StreamException(StreamException::None).GetString(), "");
    EXPECT_STREQ(StreamException(StreamException::GenericRead).GetString(), "Generic Read");
    EXPECT_STREQ(StreamException(StreamException::GenericWrite).GetString(), "Generic Write");
    EXPECT_STREQ(StreamException(StreamException::InvalidStringLength).GetString(), "Invalid String Length");
    EXPECT_STREQ(StreamException(StreamException::MemoryAllocation).GetString(), "Memory Allocation");
    EXPECT_STREQ(StreamException(StreamException::CorruptedData).GetString(), "Corrupted Data");
    EXPECT_STREQ(StreamException(StreamException::Reserved).GetString(), "");
    EXPECT_STREQ(StreamException(StreamException::CompressionSizeFault).GetString(),
                 "Compression Size Fault");
    EXPECT_FALSE(StreamException(StreamException::None));
    EXPECT_TRUE(StreamException(StreamException::GenericRead));
}

TEST(StreamException, ErrorsHaveTheirDocumentedValues)
{
    EXPECT_EQ(StreamException::None, 0);
    EXPECT_EQ(StreamException::GenericRead, 1);
    EXPECT_EQ(StreamException::GenericWrite, 2);
    EXPECT_EQ(StreamException::InvalidStringLength, 3);
    EXPECT_EQ(StreamException::MemoryAllocation, 4);
    EXPECT_EQ(StreamException::CorruptedData, 5);
    EXPECT_EQ(StreamException::Reserved, 6);
    EXPECT_EQ(StreamException::CompressionSizeFault, 7);
}

TEST(StreamException, AValueOutsideTheListHasNoMessage)
{
    EXPECT_STREQ(StreamException(static_cast<StreamException::Error>(-1)).GetString(), "");
    EXPECT_STREQ(StreamException(static_cast<StreamException::Error>(8)).GetString(), "");
}

TEST(StreamException, CarriesAMessageOfItsOwnThroughCopies)
{
    StreamException const own(Quarn::string("own text"));
    StreamException copy(StreamException::None);
    copy = own;
    EXPECT_STREQ(copy.GetString(), "own text");
    StreamVerifyIdException id(1, 2);
    id = StreamVerifyIdException(3, 4);
    EXPECT_STREQ(StreamVerifyIdException(id).what(),
                 "Stream type check failed, expecting 0x00000004 found 0x00000003");
    StreamVersionException version(1, 2, 3);
    version = StreamVersionException(4, 5, 0);
    EXPECT_STREQ(StreamVersionException(version).what(),
                 "Version check 4 exceeds 5. Software is out of date.");
}

template<typename Base, typename Exception>
bool IsCaughtAs(Exception const& exception)
{
    try {
        throw exception;
    } catch (Base const&) {
        return true;
    } catch (...) {
        return false;
    }
}

TEST(StreamException, IsCaughtAsAnyOfItsBases)
{
    StreamVerifyIdException const id(1, 2);
    EXPECT_TRUE(IsCaughtAs<StreamVerifyIdException>(id));
    EXPECT_FALSE(IsCaughtAs<StreamVersionException>(id));
    EXPECT_TRUE(IsCaughtAs<StreamException>(id));
    EXPECT_TRUE(IsCaughtAs<Quarn::QuarnException>(id));
    EXPECT_TRUE(IsCaughtAs<std::runtime_error>(id));
    StreamVersionException const version(1, 2, 3);
    EXPECT_TRUE(IsCaughtAs<StreamException>(version));
    EXPECT_FALSE(IsCaughtAs<StreamVerifyIdException>(version));
    EXPECT_TRUE(IsCaughtAs<std::exception>(version));
}

} // namespace
