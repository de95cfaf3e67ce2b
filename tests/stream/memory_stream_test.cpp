#include "quarn/stream/memory_stream.h"

#include "tests/stream/bytes.h"
#include "tests/stream/captured_reports.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::memorystream;

// Whether the block lies inside the stream object.
bool IsInline(memorystream& stream)
{
    auto const block = reinterpret_cast<std::uintptr_t>(stream.GetMemory());
    auto const object = reinterpret_cast<std::uintptr_t>(&stream);
    return block >= object && block < object + sizeof stream;
}

std::string ReadError(memorystream& stream)
{
    return ThrownText([&] {
        char c = 0;
        stream >> c;
    });
}

TEST(MemoryStream, OfFourBytesTakesAnIntAndNoMore)
{
    memorystream stream(4);
    EXPECT_EQ(stream.GetSize(), std::streampos(4));
    stream << 42;
    EXPECT_EQ(stream.tellp(), std::streampos(4));
    EXPECT_EQ(ThrownText([&] { stream << 'x'; }), "Generic Read");
}

TEST(MemoryStream, ReadsBackAfterSeekingToTheBeginning)
{
    memorystream stream(4);
    stream << 42;
    stream.seekp(0, 0);
    int value = 0;
    stream >> value;
    EXPECT_EQ(value, 42);
    EXPECT_EQ(stream.gcount(), 4U);
    EXPECT_EQ(ReadError(stream), "Generic Read");
}

TEST(MemoryStream, WriteOverflowDeliberatelyReportsGenericRead)
{
    memorystream stream(2);
    EXPECT_EQ(ThrownText([&] { stream << 0x04030201; }), "Generic Read");
    EXPECT_EQ(stream.tellp(), std::streampos(2));
    EXPECT_EQ(Written(stream), Hex("01 02"));
}

TEST(MemoryStream, ReadOverflowMovesWhatIsThere)
{
    Source streamSource("01 02 03");
    Quarn::memorystream& stream = streamSource;
    unsigned char buffer[5] = {9, 9, 9, 9, 9};
    EXPECT_EQ(ThrownText([&] { stream.read(buffer, 5); }), "Generic Read");
    EXPECT_EQ(Bytes(buffer, buffer + 5), Hex("01 02 03 09 09"));
    EXPECT_EQ(stream.gcount(), 3U);
    EXPECT_EQ(stream.tellg(), std::streampos(3));
}

TEST(MemoryStream, OnceFailedDeliberatelyThrowsForGood)
{
    memorystream stream(2);
    EXPECT_EQ(ThrownText([&] { stream << 1; }), "Generic Read");
    stream.seekp(0, 0);
    stream.clearstate();
    EXPECT_TRUE(stream.IsValidInput());
    EXPECT_TRUE(stream.IsValidOutput());
    EXPECT_EQ(ThrownText([&] { stream << 'x'; }), "Generic Read");
    EXPECT_EQ(stream.tellp(), std::streampos(1));
    EXPECT_EQ(ReadError(stream), "Generic Read");
    EXPECT_EQ(ThrownText([&] { stream.write("", 0); }), "Generic Read");
}

TEST(MemoryStream, UsesTheInlineBlockUpTo256Bytes)
{
    memorystream small(256);
    EXPECT_TRUE(IsInline(small));
    memorystream large(257);
    EXPECT_FALSE(IsInline(large));
    memorystream largest(300);
    EXPECT_FALSE(IsInline(largest));
    memorystream none;
    EXPECT_EQ(none.GetMemory(), nullptr);
    none.Allocate(256);
    EXPECT_TRUE(IsInline(none));
    none.Allocate(257);
    EXPECT_FALSE(IsInline(none));
    EXPECT_EQ(none.GetSize(), std::streampos(257));
}

TEST(MemoryStream, WithoutABlockIsAtItsEnd)
{
    memorystream stream;
    EXPECT_EQ(stream.GetSize(), std::streampos(0));
    EXPECT_EQ(stream.readsome(nullptr, 4), 0U);
    EXPECT_EQ(ReadError(stream), "Generic Read");
    memorystream flagged(true);
    EXPECT_EQ(flagged.GetMemory(), nullptr);
    EXPECT_EQ(ThrownText([&] { flagged << 'x'; }), "Generic Read");
    memorystream empty(0);
    EXPECT_EQ(ReadError(empty), "Generic Read");
}

TEST(MemoryStream, AllocateNeitherMovesThePositionNorChangesTheOwner)
{
    memorystream stream(10);
    stream.seekp(5, 0);
    stream.Allocate(20);
    EXPECT_EQ(stream.tellp(), std::streampos(5));
    EXPECT_EQ(stream.GetSize(), std::streampos(20));

    // Over a caller's block the new one is not the stream's to free either.
    unsigned char lent[4];
    memorystream borrowing(lent, 4);
    borrowing.Allocate(300);
    unsigned char* const block = borrowing.GetMemory();
    borrowing.ReleaseMemory();
    EXPECT_EQ(borrowing.GetMemory(), nullptr);
    std::memset(block, 1, 300);
    delete[] block;
}

TEST(MemoryStream, ReleaseMemoryLeavesNoBlockButSizeAndPosition)
{
    for (unsigned long const size : {256UL, 300UL}) {
        memorystream stream(size);
        stream << 42;
        stream.ReleaseMemory();
        EXPECT_EQ(stream.GetMemory(), nullptr);
        EXPECT_EQ(stream.GetSize(), std::streampos(static_cast<std::streamoff>(size)));
        EXPECT_EQ(stream.tellp(), std::streampos(4));
        unsigned char c = 7;
        EXPECT_EQ(stream.readsome(&c, 1), 0U);
        stream.putback('x');
        EXPECT_EQ(stream.tellp(), std::streampos(3));
        EXPECT_EQ(stream.peek(), 0U);
        EXPECT_EQ(ReadError(stream), "Generic Read");
        stream.ReleaseMemory();
    }
}

TEST(MemoryStream, NeverFreesACallersBlock)
{
    for (std::size_t const size : {10U, 1000U}) {
        Bytes block(size, 1);
        {
            memorystream stream(block.data(), static_cast<std::streamoff>(size));
            stream << 'x';
            EXPECT_EQ(stream.GetMemory(), block.data());
            memorystream released(block.data(), static_cast<std::streamoff>(size));
            released.ReleaseMemory();
        }
        EXPECT_EQ(block[0], 'x');
        EXPECT_EQ(block.back(), 1);
    }
}

TEST(MemoryStream, GivesItsBlockAsAPointer)
{
    memorystream stream(300);
    memorystream const& constant = stream;
    unsigned char* const pointer = stream;
    unsigned char const* const constantPointer = constant;
    EXPECT_EQ(pointer, stream.GetMemory());
    EXPECT_EQ(constantPointer, constant.GetMemory());
}

TEST(MemoryStream, PeekDoesNotMove)
{
    Source streamSource("FE 01");
    Quarn::memorystream& stream = streamSource;
    EXPECT_EQ(stream.peek(), 0xFEU);
    EXPECT_EQ(stream.peek(), 0xFEU);
    EXPECT_EQ(stream.tellg(), std::streampos(0));
}

TEST(MemoryStream, PeekAtTheEndDeliberatelySpoilsTheStream)
{
    Source streamSource("01");
    Quarn::memorystream& stream = streamSource;
    char c = 0;
    stream >> c;
    EXPECT_EQ(stream.peek(), 0U);
    stream.seekp(0, 0);
    EXPECT_EQ(ReadError(stream), "Generic Read");
}

TEST(MemoryStream, ReadsomeStopsQuietlyAtTheEnd)
{
    Source streamSource("01 02 03");
    Quarn::memorystream& stream = streamSource;
    unsigned char buffer[10] = {};
    EXPECT_EQ(stream.readsome(buffer, 10), 3U);
    EXPECT_EQ(stream.gcount(), 3U);
    EXPECT_EQ(stream.readsome(buffer, 10), 0U);
    EXPECT_EQ(stream.gcount(), 0U);
    stream.seekg(0, 0);
    char c = 0;
    stream >> c;
    EXPECT_EQ(c, 1);
}

TEST(MemoryStream, WritingDoesNotTouchTheReadCount)
{
    Source streamSource("01 02 03 04 05 06");
    Quarn::memorystream& stream = streamSource;
    unsigned char buffer[2] = {};
    stream.read(buffer, 2);
    stream << short{1};
    EXPECT_EQ(stream.gcount(), 2U);
}

TEST(MemoryStream, PutbackOverwritesTheByteBefore)
{
    Source streamSource("01 02");
    Quarn::memorystream& stream = streamSource;
    stream.putback(9);
    EXPECT_EQ(stream.tellg(), std::streampos(0));
    EXPECT_EQ(stream.peek(), 1U);
    char c = 0;
    stream >> c;
    stream.putback(9);
    EXPECT_EQ(stream.tellg(), std::streampos(0));
    EXPECT_EQ(stream.peek(), 9U);
}

TEST(MemoryStream, UngetDeliberatelyDoesNothing)
{
    Source streamSource("01 02");
    Quarn::memorystream& stream = streamSource;
    char c = 0;
    stream >> c;
    stream.unget();
    EXPECT_EQ(stream.tellg(), std::streampos(1));
}

struct Seek
{
    unsigned long offset;
    unsigned int direction;
    int from;
    int position;
    bool failed;
};

TEST(MemoryStream, SeeksInsideABlockOfTenBytes)
{
    Seek const seeks[] = {
        {0, 0, 5, 0, false},
        {9, 0, 5, 9, false},
        {10, 0, 5, 9, true}, // the end is no place to seek
                             // to
        {0xFFFFFFFF, 0, 5, 9, true},
        {0, 1, 5, 5, false},
        {4, 1, 5, 9, false},
        {5, 1, 5, 9, true},
        {0xFFFFFFFF, 1, 5, 9, true}, // no way back
        {0, 2, 5, 9, false},         // the last byte, not behind it
        {2, 2, 5, 7, false},
        {9, 2, 5, 0, false},
        {10, 2, 5, 0, true},
        {0xFFFFFFFE, 2, 5, 0, true},
        {0xFFFFFFFF, 2, 5, 9, true}, // one more than this wraps to 0
        {3, 3, 5, 5, false},
        {3, 3, 10, 9, true}, // the clamp holds for any direction
    };
    for (Seek const& seek : seeks) {
        for (bool const reading : {true, false}) {
            memorystream stream(10);
            std::memset(stream.GetMemory(), 1, 10);
            unsigned char skipped[10];
            stream.readsome(skipped, static_cast<unsigned long>(seek.from));
            if (reading) {
                stream.seekg(seek.offset, seek.direction);
            } else {
                stream.seekp(seek.offset, seek.direction);
            }
            EXPECT_EQ(stream.tellg(), std::streampos(seek.position)) << seek.offset << ' ' << seek.direction;
            EXPECT_EQ(stream.tellp(), std::streampos(seek.position));
            EXPECT_EQ(ReadError(stream) == "Generic Read", seek.failed)
                << seek.offset << ' ' << seek.direction;
        }
    }
}

TEST(MemoryStream, SeeksToPositions)
{
    struct
    {
        std::streamoff to;
        int position;
        bool failed;
    } const seeks[] = {{0, 0, false}, {9, 9, false}, {10, 9, true}, {0x100000000, 9, true}, {-1, 0, true}};
    for (auto const& seek : seeks) {
        Source streamSource("01 02 03 04 05 06 07 08 09 0A");
        Quarn::memorystream& stream = streamSource;
        stream.seekg(std::streampos(seek.to));
        EXPECT_EQ(stream.tellg(), std::streampos(seek.position)) << seek.to;
        EXPECT_EQ(ReadError(stream) == "Generic Read", seek.failed) << seek.to;
        Source otherSource("01 02 03 04 05 06 07 08 09 0A");
        Quarn::memorystream& other = otherSource;
        other.seekp(std::streampos(seek.to));
        EXPECT_EQ(other.tellp(), std::streampos(seek.position)) << seek.to;
    }
}

TEST(MemoryStream, OfSizeZeroTakesAnyPosition)
{
    memorystream stream;
    stream.seekp(5, 0);
    EXPECT_EQ(stream.tellp(), std::streampos(5));
    unsigned char c = 0;
    EXPECT_EQ(stream.readsome(&c, 1), 0U);
    stream.Allocate(10);
    stream << 'x';
    EXPECT_EQ(stream.GetMemory()[5], 'x');
    // Behind the end of a block that is smaller than the position, there is nothing.
    stream.Allocate(3);
    EXPECT_EQ(stream.readsome(&c, 1), 0U);
    EXPECT_EQ(ReadError(stream), "Generic Read");
}

TEST(MemoryStream, OffsetsAreTheLow32Bits)
{
    if constexpr (sizeof(long) > 4) {
        memorystream stream(10);
        stream.seekp(static_cast<unsigned long>(0x700000003), 0);
        EXPECT_EQ(stream.tellp(), std::streampos(3));
    }
    memorystream stream(10);
    stream.seekp(static_cast<unsigned long>(-1), 2);
    EXPECT_EQ(stream.tellp(), std::streampos(9));
}

TEST(MemoryStream, ANegativeSizeIsNone)
{
    unsigned char block[4] = {};
    memorystream lent(block, -1);
    EXPECT_EQ(lent.GetSize(), std::streampos(0));
    EXPECT_EQ(ReadError(lent), "Generic Read");
    memorystream own;
    own.Allocate(-1);
    EXPECT_EQ(own.GetSize(), std::streampos(0));
    memorystream null(nullptr, 10);
    EXPECT_EQ(ReadError(null), "Generic Read");
}

TEST(MemoryStream, ASizeBeyond32BitsIsReportedAndCut)
{
    CapturedReports const reports;
    memorystream stream;
    stream.Allocate(0x100000005);
    EXPECT_EQ(stream.GetSize(), std::streampos(5));
    EXPECT_EQ(reports.Number(), 1);
}

TEST(MemoryStream, CopiesShareTheBlockAndKeepTheirOwnPosition)
{
    unsigned char block[8] = {};
    RunLengthCompressor compressor(100);
    memorystream stream(block, 8);
    stream.SetInputCompressor(&compressor);
    stream << short{1};
    memorystream copy(stream);
    EXPECT_EQ(copy.GetMemory(), block);
    EXPECT_EQ(copy.tellp(), std::streampos(2));
    copy << short{2};
    EXPECT_EQ(stream.tellp(), std::streampos(2));
    EXPECT_EQ(block[2], 2);
    memorystream assigned;
    assigned = copy;
    EXPECT_EQ(assigned.tellp(), std::streampos(4));
    EXPECT_EQ(assigned.GetMemory(), block);
}

TEST(MemoryStream, ACopyOfAnInlineBlockDeliberatelyRefersToTheSource)
{
    memorystream stream(16);
    stream << 42;
    memorystream copy(stream);
    EXPECT_EQ(copy.GetMemory(), stream.GetMemory());
    copy.seekp(0, 0);
    copy << 43;
    stream.seekg(0, 0);
    int value = 0;
    stream >> value;
    EXPECT_EQ(value, 43);
}

TEST(MemoryStream, ACopyOfAHeapBlockMayOutliveTheSourceInItsPlace)
{
    // Of the two, one alone is destroyed: the copy, which frees the block.
    alignas(memorystream) unsigned char place[sizeof(memorystream)];
    auto* const source = new (place) memorystream(300);
    *source << 42;
    memorystream copy(*source);
    EXPECT_EQ(copy.GetMemory(), source->GetMemory());
    copy.seekg(0, 0);
    int value = 0;
    copy >> value;
    EXPECT_EQ(value, 42);
}

TEST(MemoryStream, AssignedToItselfStaysAsItWas)
{
    memorystream stream(16);
    stream << 1 << 2;
    stream.seekg(0, 0);
    int value = 0;
    stream >> value;
    memorystream& same = stream;
    stream = same;
    EXPECT_EQ(stream.gcount(), 4U);
    stream >> value;
    EXPECT_EQ(value, 2);
}

TEST(MemoryStream, CountsAndPositionsFollowEveryTypedReadAndWrite)
{
    memorystream stream(64);
    stream << short{1} << 2 << 3.0 << "ab"
           << "";
    EXPECT_EQ(stream.tellp(), std::streampos(2 + 4 + 8 + 14 + 12));
    stream.seekg(0, 0);
    short s = 0;
    int i = 0;
    double d = 0;
    Quarn::string text;
    stream >> s;
    EXPECT_EQ(stream.gcount(), 2U);
    stream >> i;
    EXPECT_EQ(stream.gcount(), 4U);
    stream >> d;
    EXPECT_EQ(stream.gcount(), 8U);
    stream >> text;
    EXPECT_EQ(stream.gcount(), 2U);
    EXPECT_EQ(stream.peek(), 0xFFU);
    stream.putback('b');
    EXPECT_EQ(stream.tellg(), std::streampos(27));
    char c = 0;
    stream >> c >> text;
    EXPECT_EQ(c, 'b');
    EXPECT_EQ(text, "");
    EXPECT_EQ(stream.gcount(), 4U);
    EXPECT_EQ(stream.tellp(), std::streampos(40));
}

TEST(MemoryStream, ReleasedBetweenTypedWritesIsAtItsEnd)
{
    memorystream stream(300);
    stream << 1 << 2;
    stream.ReleaseMemory();
    EXPECT_EQ(ThrownText([&] { stream << 3; }), "Generic Read");
    memorystream other(300);
    other << 1 << 2;
    other.ReleaseMemory();
    other.Allocate(16);
    other << 3;
    EXPECT_EQ(other.tellp(), std::streampos(12));
}

TEST(MemoryStream, ACopyKeepsTheFailure)
{
    memorystream stream(1);
    EXPECT_EQ(ThrownText([&] { stream << 1; }), "Generic Read");
    memorystream copy(stream);
    copy.seekp(0, 0);
    EXPECT_EQ(ReadError(copy), "Generic Read");
}

TEST(MemoryStream, MovesBytesWithinItsOwnBlock)
{
    // Byte by byte from the front: a run that overlaps its source repeats it.
    Source forwardSource("01 02 00 00 00 00");
    Quarn::memorystream& forward = forwardSource;
    forward.seekp(2, 0);
    forward.write(forward.GetMemory(), 4);
    EXPECT_EQ(Bytes(forward.GetMemory(), forward.GetMemory() + 6), Hex("01 02 01 02 01 02"));
    Source backwardSource("01 02 03 04 05 06");
    Quarn::memorystream& backward = backwardSource;
    backward.write(backward.GetMemory() + 2, 4);
    EXPECT_EQ(Bytes(backward.GetMemory(), backward.GetMemory() + 6), Hex("03 04 05 06 05 06"));
}

TEST(MemoryStream, InDumpModeHoldsTheTextAlone)
{
    memorystream stream(16, true);
    stream << "ab" << Quarn::string("c");
    EXPECT_EQ(Written(stream), Hex("61 62 63"));
    unsigned char block[4];
    memorystream lent(block, 4, true);
    lent << "ab";
    EXPECT_EQ(Written(lent), Hex("61 62"));
    memorystream later(true);
    later.Allocate(4);
    later << "ab";
    EXPECT_EQ(Written(later), Hex("61 62"));
}

TEST(MemoryStream, TheRestOfItsOperationsAnswerQuietly)
{
    memorystream stream(4);
    EXPECT_EQ(&stream.flush(), static_cast<Quarn::ostream*>(&stream));
    EXPECT_EQ(stream.sync(), 0);
    EXPECT_EQ(stream.get_path(), nullptr);
    stream.close();
    stream << 1;
    EXPECT_EQ(stream.tellp(), std::streampos(4));
}

} // namespace
