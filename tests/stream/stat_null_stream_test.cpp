#include "quarn/stream/null_stream.h"
#include "quarn/stream/stat_stream.h"

#include "tests/stream/bytes.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"

#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::CRC32;
using Quarn::nullstream;
using Quarn::statstream;

// Writes a record that has something of everything.
void WriteRecord(Quarn::ostream& stream)
{
    stream << Quarn::Stream::HeaderBlock{1, 2} << 3 << 4.0 << "text" << std::string(100, 'x') << true;
    stream.write("block", 5);
}

TEST(StatStream, CountsTheTwelveBytesOfAnEmptyString)
{
    statstream stream;
    stream << "";
    EXPECT_EQ(stream.GetSize(), 12UL);
    EXPECT_EQ(stream.GetCRCValue(), 0UL);
    EXPECT_TRUE(stream.GetCRC() == CRC32());
}

TEST(StatStream, KeepsTheCrcWhenAskedTo)
{
    statstream stream(true);
    stream << "";
    CRC32 crc;
    Bytes const bytes = Hex("FF FF FF FF 00 00 00 00 FF FF FF FF");
    crc.Add(bytes.data(), 12);
    EXPECT_EQ(stream.GetCRCValue(), crc.GetValue());
    EXPECT_TRUE(stream.GetCRC() == crc);
    statstream check(true);
    check.write("123456789", 9);
    EXPECT_EQ(check.GetCRCValue(), 0xCBF43926UL);
}

TEST(StatStream, CountsWhatARealStreamOfTheSameKindGets)
{
    for (bool const dumpMode : {false, true}) {
        for (bool const compressing : {false, true}) {
            RunLengthCompressor compressor(50);
            statstream statistics(true, dumpMode);
            FakeOutput real(dumpMode);
            if (compressing) {
                statistics.SetCompressor(&compressor);
                real.SetCompressor(&compressor);
            }
            WriteRecord(statistics);
            WriteRecord(real);
            EXPECT_EQ(statistics.GetSize(), real.Taken().size());
            CRC32 crc;
            crc.Add(real.Taken().data(), static_cast<unsigned long>(real.Taken().size()));
            EXPECT_EQ(statistics.GetCRCValue(), crc.GetValue());
        }
    }
}

TEST(StatStream, ClearStartsAgain)
{
    statstream stream(true);
    WriteRecord(stream);
    stream.Clear();
    EXPECT_EQ(stream.GetSize(), 0UL);
    EXPECT_EQ(stream.GetCRCValue(), 0UL);
    stream << 1;
    EXPECT_EQ(stream.GetSize(), 4UL);
}

TEST(StatStream, CopiesGoOnByThemselves)
{
    statstream stream(true);
    stream << 1;
    statstream copy(stream);
    copy << 2;
    EXPECT_EQ(stream.GetSize(), 4UL);
    EXPECT_EQ(copy.GetSize(), 8UL);
    statstream assigned;
    assigned = stream;
    assigned << 2;
    EXPECT_EQ(assigned.GetCRCValue(), copy.GetCRCValue());
}

TEST(StatStream, TheRestOfItsOperationsDoNothing)
{
    statstream stream;
    stream << 1;
    EXPECT_EQ(&stream.flush(), &stream);
    EXPECT_EQ(&stream.seekp(7, 0), &stream);
    EXPECT_EQ(&stream.seekp(std::streampos(7)), &stream);
    EXPECT_EQ(stream.tellp(), std::streampos(0));
    EXPECT_TRUE(stream.IsValidOutput());
    EXPECT_EQ(stream.get_path(), nullptr);
    stream.clearstate();
    stream.close();
    EXPECT_EQ(stream.GetSize(), 4UL);
}

// Numbers, texts and blocks of all sizes, asked about in between, against the same bytes added at once.
TEST(StatStream, CountsPiecesAsOneBlock)
{
    std::mt19937 random(8);
    for (int round = 0; round < 20; ++round) {
        statstream stream(true);
        std::string bytes;
        for (int piece = 0; piece < 60; ++piece) {
            auto const number = static_cast<std::uint32_t>(random());
            std::string const block(number % 7 == 0 ? number % 1500 : number % 40, static_cast<char>(number));
            switch (number % 3) {
            case 0:
                stream << number;
                bytes.append(reinterpret_cast<char const*>(&number), sizeof number);
                break;
            case 1:
                stream << static_cast<char>(number);
                bytes.push_back(static_cast<char>(number));
                break;
            default:
                stream.write(block.data(), static_cast<unsigned long>(block.size()));
                bytes += block;
                break;
            }
            ASSERT_EQ(stream.GetSize(), bytes.size());
            if (number % 4 == 0) {
                CRC32 crc;
                crc.Add(bytes.data(), static_cast<unsigned long>(bytes.size()));
                ASSERT_EQ(stream.GetCRCValue(), crc.GetValue());
                ASSERT_EQ(statstream(stream).GetCRCValue(), crc.GetValue());
            }
        }
        statstream assigned(true);
        assigned << 1 << 2;
        assigned = stream;
        EXPECT_EQ(assigned.GetSize(), bytes.size());
        EXPECT_EQ(assigned.GetCRCValue(), stream.GetCRCValue());
        stream.Clear();
        EXPECT_EQ(stream.GetSize(), 0UL);
        EXPECT_EQ(stream.GetCRCValue(), 0UL);
    }
}

TEST(StatStream, ReferenceToTheCrcFollowsLaterWrites)
{
    statstream stream(true);
    stream << 1;
    CRC32 const& crc = stream.GetCRC();
    stream << 2 << 3;
    CRC32 expected;
    for (unsigned int const number : {1U, 2U, 3U}) {
        expected.Add(number);
    }
    EXPECT_EQ(crc.GetValue(), expected.GetValue());
}

TEST(StatStream, DerivedClassSeesEveryByte)
{
    class Watching : public statstream
    {
    public:
        Watching() : statstream(true) {}
        unsigned long seen = 0;

    protected:
        Quarn::ostream& output(unsigned char const* data, unsigned long n) override
        {
            seen += n;
            return statstream::output(data, n);
        }
    };
    Watching stream;
    stream << 1 << 2.5 << Quarn::string("abc");
    EXPECT_EQ(stream.seen, 4UL + 8 + 15);
    EXPECT_EQ(stream.GetSize(), stream.seen);
}

TEST(NullStream, TakesEverything)
{
    nullstream stream;
    WriteRecord(stream);
    EXPECT_TRUE(stream.IsValidOutput());
    EXPECT_EQ(stream.tellp(), std::streampos(0));
}

TEST(NullStream, LeavesAnIntAndABufferAsTheyWere)
{
    nullstream stream;
    int value = 7;
    stream >> value;
    EXPECT_EQ(value, 7);
    unsigned char buffer[3] = {1, 2, 3};
    stream.read(buffer, 3);
    EXPECT_EQ(Bytes(buffer, buffer + 3), Hex("01 02 03"));
}

TEST(NullStream, TheRestOfItsOperationsAnswerNothing)
{
    nullstream stream;
    unsigned char c = 7;
    EXPECT_EQ(stream.gcount(), 0U);
    EXPECT_EQ(stream.peek(), 0U);
    EXPECT_EQ(stream.readsome(&c, 1), 0U);
    EXPECT_EQ(c, 7);
    EXPECT_EQ(&stream.putback('x'), static_cast<Quarn::istream*>(&stream));
    EXPECT_EQ(&stream.unget(), static_cast<Quarn::istream*>(&stream));
    stream.seekg(5, 0);
    stream.seekg(std::streampos(5));
    stream.seekp(5, 0);
    stream.seekp(std::streampos(5));
    EXPECT_EQ(stream.tellg(), std::streampos(0));
    EXPECT_EQ(stream.tellp(), std::streampos(0));
    EXPECT_EQ(stream.sync(), 0);
    EXPECT_TRUE(stream.IsValidInput());
    EXPECT_TRUE(stream.IsValidOutput());
    EXPECT_EQ(&stream.flush(), static_cast<Quarn::ostream*>(&stream));
    EXPECT_EQ(stream.get_path(), nullptr);
    stream.clearstate();
    stream.close();
}

TEST(NullStream, WritesNeitherInDumpModeNorCompressed)
{
    // In dump mode the block would not pass the compressor; here it does.
    RunLengthCompressor compressor(0);
    nullstream stream;
    stream.write("aaaa", 4);
    EXPECT_EQ(compressor.compressed, 0);
    stream.ostream::SetCompressor(&compressor);
    stream.write("aaaa", 4);
    EXPECT_EQ(compressor.compressed, 1);
    nullstream copy(stream);
    copy.write("aaaa", 4);
    EXPECT_EQ(compressor.compressed, 2);
    EXPECT_EQ(compressor.released, 2);
}

} // namespace
