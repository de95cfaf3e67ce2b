#include "quarn/stream/memory_stream.h"
#include "quarn/stream/null_stream.h"

#include "tests/stream/bytes.h"
#include "tests/stream/captured_reports.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::memorystream;

template<typename T>
Bytes StoredAs(T const& value)
{
    memorystream stream(64);
    stream << value;
    return Written(stream);
}

template<typename T>
T ReadAs(std::string const& hex)
{
    Source streamSource(hex);
    Quarn::memorystream& stream = streamSource;
    T value{};
    stream >> value;
    EXPECT_EQ(stream.tellg(), stream.GetSize());
    return value;
}

TEST(Primitives, HaveTheirDocumentedBytes)
{
    EXPECT_EQ(StoredAs(short{-2}), Hex("FE FF"));
    EXPECT_EQ(StoredAs(1.0), Hex("00 00 00 00 00 00 F0 3F"));
    EXPECT_EQ(StoredAs(true), Hex("01"));
    EXPECT_EQ(StoredAs(false), Hex("00"));
    EXPECT_EQ(StoredAs('Q'), Hex("51"));
    EXPECT_EQ(StoredAs(0x01020304), Hex("04 03 02 01"));
    EXPECT_EQ(StoredAs(-1L), Hex("FF FF FF FF"));
    EXPECT_EQ(StoredAs(0xFEDCBA98UL), Hex("98 BA DC FE"));
    EXPECT_EQ(StoredAs(1.0L), Hex("00 00 00 00 00 00 F0 3F"));
}

TEST(Primitives, WriteTheGoldenFile)
{
    memorystream stream(64);
    stream << 'Q' << static_cast<unsigned char>(0xFE) << true << false << short{-2}
           << static_cast<unsigned short>(0xFFFE) << -3 << 0xFFFFFFFCU << -5L << 0xFFFFFFFAUL << 1.5F << 1.0
           << -0.25L;
    EXPECT_EQ(Written(stream), Golden("primitives.bin"));
}

TEST(Primitives, ReadTheGoldenFile)
{
    Source streamSource(Golden("primitives.bin"));
    Quarn::memorystream& stream = streamSource;
    char c = 0;
    unsigned char uc = 0;
    bool yes = false;
    bool no = true;
    short s = 0;
    unsigned short us = 0;
    int i = 0;
    unsigned int ui = 0;
    long l = 0;
    unsigned long ul = 0;
    float f = 0;
    double d = 0;
    long double ld = 0;
    stream >> c >> uc >> yes >> no >> s >> us >> i >> ui >> l >> ul >> f >> d >> ld;
    EXPECT_EQ(c, 'Q');
    EXPECT_EQ(uc, 0xFE);
    EXPECT_TRUE(yes);
    EXPECT_FALSE(no);
    EXPECT_EQ(s, -2);
    EXPECT_EQ(us, 0xFFFE);
    EXPECT_EQ(i, -3);
    EXPECT_EQ(ui, 0xFFFFFFFCU);
    EXPECT_EQ(l, -5);
    EXPECT_EQ(ul, 0xFFFFFFFAUL);
    EXPECT_EQ(f, 1.5F);
    EXPECT_EQ(d, 1.0);
    EXPECT_EQ(ld, -0.25L);
    EXPECT_EQ(stream.tellg(), stream.GetSize());
}

TEST(Primitives, ALiteralZeroIsAnInt)
{
    EXPECT_EQ(StoredAs(0), Hex("00 00 00 00"));
}

TEST(Primitives, ASignedCharIsDeliberatelyStoredAsAnInt)
{
    EXPECT_EQ(StoredAs(static_cast<signed char>(-2)), Hex("FE FF FF FF"));
}

template<typename Value>
concept Writable = requires(Quarn::ostream& stream, Value value)
{
    stream << value;
};

TEST(Primitives, TakeNoAddressForABool)
{
    EXPECT_TRUE(Writable<char*>);
    EXPECT_TRUE(Writable<char const*>);
    EXPECT_TRUE(Writable<std::vector<bool>::reference>);
    EXPECT_FALSE(Writable<void*>);
    EXPECT_FALSE(Writable<int const*>);
    EXPECT_FALSE(Writable<unsigned char*>);
    EXPECT_FALSE(Writable<Quarn::memorystream*>);
    EXPECT_FALSE(Writable<void (*)()>);
    // A size without a documented width has none on the stream.
    EXPECT_FALSE(Writable<long long>);
    EXPECT_FALSE(Writable<unsigned long long>);
}

TEST(Primitives, ALongKeepsItsSignAndAnUnsignedLongIsFilledWithZeros)
{
    EXPECT_EQ(ReadAs<long>("FE FF FF FF"), -2L);
    EXPECT_EQ(ReadAs<long>("00 00 00 80"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ReadAs<unsigned long>("FE FF FF FF"), 0xFFFFFFFEUL);
    Source streamSource("07 00 00 00 08 00 00 00");
    Quarn::memorystream& stream = streamSource;
    long l = -1;
    unsigned long ul = ~0UL;
    stream >> l >> ul;
    EXPECT_EQ(l, 7);
    EXPECT_EQ(ul, 8UL);
}

TEST(Primitives, ALongBeyond32BitsIsReportedAndCut)
{
    CapturedReports const reports;
    EXPECT_EQ(StoredAs(static_cast<long>(std::numeric_limits<std::int32_t>::max())), Hex("FF FF FF 7F"));
    EXPECT_EQ(StoredAs(static_cast<long>(std::numeric_limits<std::int32_t>::min())), Hex("00 00 00 80"));
    EXPECT_EQ(StoredAs(0xFFFFFFFFUL), Hex("FF FF FF FF"));
    EXPECT_EQ(reports.Number(), 0);
    if constexpr (sizeof(long) > 4) {
        std::int64_t const wide = 0x123456789A;
        EXPECT_EQ(StoredAs(static_cast<long>(wide)), Hex("9A 78 56 34"));
        EXPECT_EQ(reports.Number(), 1);
        EXPECT_EQ(StoredAs(static_cast<long>(-wide)), Hex("66 87 A9 CB"));
        EXPECT_EQ(reports.Number(), 2);
        EXPECT_EQ(StoredAs(static_cast<long>(0xFFFFFFFF)), Hex("FF FF FF FF"));
        EXPECT_EQ(reports.Number(), 3);
        EXPECT_EQ(StoredAs(static_cast<unsigned long>(wide)), Hex("9A 78 56 34"));
        EXPECT_EQ(reports.Number(), 4);
    }
}

TEST(Primitives, ABoolTakesTheByteAsItStands)
{
    Source streamSource("02");
    Quarn::memorystream& stream = streamSource;
    bool value = false;
    stream >> value;
    unsigned char byte = 0;
    std::memcpy(&byte, &value, 1);
    EXPECT_EQ(byte, 2);
}

TEST(Primitives, AreOneRawWriteEachAndNeverCompressed)
{
    RunLengthCompressor compressor;
    FakeOutput stream;
    stream.SetCompressor(&compressor);
    stream << 'c' << short{1} << 2 << 3L << 4.0F << 5.0 << 6.0L << true;
    EXPECT_EQ(stream.Calls(), (std::vector<std::size_t>{1, 2, 4, 4, 4, 8, 8, 1}));
    EXPECT_EQ(compressor.compressed, 0);

    FakeInput source(stream.Taken());
    source.SetCompressor(&compressor);
    char c = 0;
    short s = 0;
    int i = 0;
    long l = 0;
    float f = 0;
    double d = 0;
    long double ld = 0;
    bool b = false;
    source >> c >> s >> i >> l >> f >> d >> ld >> b;
    EXPECT_EQ(source.Calls(), stream.Calls());
    EXPECT_EQ(compressor.decompressed, 0);
    EXPECT_EQ(ld, 6.0L);
    EXPECT_TRUE(b);
}

TEST(Primitives, FloatsKeepEveryBit)
{
    for (std::string const hex : {"01 00 80 7F", "00 00 C0 FF", "00 00 00 80", "01 00 00 00"}) {
        EXPECT_EQ(StoredAs(ReadAs<float>(hex)), Hex(hex)) << hex;
    }
    for (std::string const hex : {"01 00 00 00 00 00 F0 7F", "00 00 00 00 00 00 00 80"}) {
        EXPECT_EQ(StoredAs(ReadAs<double>(hex)), Hex(hex)) << hex;
    }
}

TEST(Primitives, BytesThatAreNotThereLeaveTheRestOfTheVariable)
{
    Source streamSource("11 22");
    Quarn::memorystream& stream = streamSource;
    std::uint32_t value = 0xAABBCCDD;
    EXPECT_EQ(ThrownText([&] { stream >> value; }), "Generic Read");
    EXPECT_EQ(value, 0xAABB2211);
}

template<typename T>
T AfterNull(T value)
{
    Quarn::nullstream stream;
    stream >> value;
    return value;
}

TEST(Primitives, KeepTheirValuesOverANullStream)
{
    EXPECT_EQ(AfterNull('x'), 'x');
    EXPECT_EQ(AfterNull(true), true);
    EXPECT_EQ(AfterNull(7), 7);
    EXPECT_EQ(AfterNull(-7L), -7L);
    EXPECT_EQ(AfterNull(0xFFFFFFF0UL), 0xFFFFFFF0UL);
    EXPECT_EQ(AfterNull(2.5), 2.5);
}

TEST(Primitives, EveryOperatorReturnsTheStreamItself)
{
    FakeOutput out;
    EXPECT_EQ(&(out << 1), &out);
    EXPECT_EQ(&(out << 1L), &out);
    EXPECT_EQ(&(out << 1.0L), &out);
    FakeInput in(Bytes(32));
    int i = 0;
    long l = 0;
    long double ld = 0;
    EXPECT_EQ(&(in >> i), &in);
    EXPECT_EQ(&(in >> l), &in);
    EXPECT_EQ(&(in >> ld), &in);
}

} // namespace
