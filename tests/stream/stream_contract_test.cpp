// What every stream that stores and brings back bytes has in common, asked of each kind.
#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/null_stream.h"
#include "quarn/stream/stat_stream.h"

#include "examples/zlib_compressor.h"
#include "tests/platform/scratch_folder.h"
#include "tests/stream/bytes.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/record.h"
#include "tests/stream/throws.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

// A kind of stream: an output stream with room for `size` bytes, what it holds in the end, and an input
// stream over bytes.
struct MemoryKind
{
    std::unique_ptr<Quarn::memorystream> out;
    Quarn::ostream& Output(std::size_t size)
    {
        out = std::make_unique<Quarn::memorystream>(static_cast<unsigned long>(size));
        return *out;
    }
    Bytes Stored() { return Written(*out); }
    std::unique_ptr<Quarn::istream> Input(Bytes const& bytes)
    {
        auto in = std::make_unique<Quarn::memorystream>(static_cast<unsigned long>(bytes.size()));
        std::copy(bytes.begin(), bytes.end(), in->GetMemory());
        return in;
    }
};

struct LentMemoryKind : MemoryKind
{
    Bytes block;
    Quarn::ostream& Output(std::size_t size)
    {
        block.resize(size);
        out = std::make_unique<Quarn::memorystream>(block.data(), static_cast<std::streamoff>(size));
        return *out;
    }
};

// A client's memory stream with an input and output of its own: they see every byte.
class CountingMemory : public Quarn::memorystream
{
public:
    explicit CountingMemory(std::size_t size) : memorystream(static_cast<unsigned long>(size)) {}
    ~CountingMemory() override { EXPECT_EQ(std::streampos(m_moved), tellp()); }
    CountingMemory(CountingMemory const&) = delete;
    CountingMemory& operator=(CountingMemory const&) = delete;

protected:
    istream& input(unsigned char* buffer, unsigned long n) override
    {
        std::streamoff const before = tellg();
        istream& result = memorystream::input(buffer, n);
        m_moved += tellg() - before;
        return result;
    }
    ostream& output(unsigned char const* data, unsigned long n) override
    {
        m_moved += static_cast<std::streamoff>(n);
        return memorystream::output(data, n);
    }

private:
    std::streamoff m_moved = 0;
};

struct DerivedMemoryKind
{
    std::unique_ptr<CountingMemory> out;
    Quarn::ostream& Output(std::size_t size)
    {
        out = std::make_unique<CountingMemory>(size);
        return *out;
    }
    Bytes Stored() { return Written(*out); }
    std::unique_ptr<Quarn::istream> Input(Bytes const& bytes)
    {
        auto in = std::make_unique<CountingMemory>(bytes.size());
        std::copy(bytes.begin(), bytes.end(), in->GetMemory());
        return in;
    }
};

struct FileKind
{
    ScratchFolder folder;
    std::unique_ptr<Quarn::ofstream> out;
    Quarn::ostream& Output(std::size_t /*size*/)
    {
        out = std::make_unique<Quarn::ofstream>((folder / "out").c_str(), std::ios_base::binary);
        return *out;
    }
    Bytes Stored()
    {
        out->close();
        EXPECT_TRUE(out->IsValidOutput());
        return FileBytes(folder / "out");
    }
    std::unique_ptr<Quarn::istream> Input(Bytes const& bytes)
    {
        std::string const path = folder.Make("in", std::string(bytes.begin(), bytes.end()));
        return std::make_unique<Quarn::ifstream>(path.c_str(), std::ios_base::binary);
    }
};

struct FakeKind
{
    FakeOutput out;
    Quarn::ostream& Output(std::size_t /*size*/) { return out; }
    Bytes Stored() { return out.Taken(); }
    std::unique_ptr<Quarn::istream> Input(Bytes const& bytes) { return std::make_unique<FakeInput>(bytes); }
};

template<typename Kind>
class StreamContract : public testing::Test
{
protected:
    Kind m_kind;
};

class KindNames
{
public:
    template<typename Kind>
    static std::string GetName(int)
    {
        return std::is_same_v<Kind, MemoryKind>          ? "Memory"
               : std::is_same_v<Kind, LentMemoryKind>    ? "LentMemory"
               : std::is_same_v<Kind, DerivedMemoryKind> ? "DerivedMemory"
               : std::is_same_v<Kind, FileKind>          ? "File"
                                                         : "Client";
    }
};

using Kinds = testing::Types<MemoryKind, LentMemoryKind, DerivedMemoryKind, FileKind, FakeKind>;
TYPED_TEST_SUITE(StreamContract, Kinds, KindNames);

template<typename Kind>
class SeekableStreamContract : public StreamContract<Kind>
{};
using SeekableKinds = testing::Types<MemoryKind, LentMemoryKind, FileKind>;
TYPED_TEST_SUITE(SeekableStreamContract, SeekableKinds, KindNames);

TYPED_TEST(StreamContract, StoresTheGoldenBytes)
{
    Quarn::ostream& out = this->m_kind.Output(4096);
    out << ""
        << "ab"
        << "caf\xE9";
    Bytes const golden = Golden("strings.bin");
    EXPECT_EQ(this->m_kind.Stored(), Bytes(golden.begin(), golden.begin() + 12 + 14 + 16));
}

TYPED_TEST(StreamContract, BringsBackGeneratedRecords)
{
    std::mt19937 random(2024);
    for (int round = 0; round < 25; ++round) {
        bool const compressing = round % 2 != 0;
        ZlibCompressor compressor(100);
        Record const record(random, 1 + random() % 30);
        Quarn::statstream statistics(true);
        Quarn::ostream& out = this->m_kind.Output(5000000);
        std::size_t const before = static_cast<std::size_t>(out.tellp());
        if (compressing) {
            statistics.SetCompressor(&compressor);
            out.SetCompressor(&compressor);
        } else {
            out.SetCompressor(nullptr);
        }
        record.Write(statistics);
        record.Write(out);
        Bytes const all = this->m_kind.Stored();
        Bytes const stored(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
        EXPECT_EQ(statistics.GetSize(), stored.size());
        Quarn::CRC32 crc;
        crc.Add(stored.data(), static_cast<unsigned long>(stored.size()));
        EXPECT_EQ(statistics.GetCRCValue(), crc.GetValue());

        std::unique_ptr<Quarn::istream> const in = this->m_kind.Input(stored);
        in->SetCompressor(compressing ? &compressor : nullptr);
        record.ReadAndCompare(*in);
        EXPECT_EQ(in->tellg(), std::streampos(static_cast<std::streamoff>(stored.size())));
        EXPECT_EQ(ThrownText([&] {
                      char c = 0;
                      *in >> c;
                  }),
                  "Generic Read");
    }
}

TYPED_TEST(StreamContract, CountsPositionsInBytes)
{
    Quarn::ostream& out = this->m_kind.Output(64);
    EXPECT_EQ(out.tellp(), std::streampos(0));
    out << 'a' << short{1} << 2.0 << "x";
    EXPECT_EQ(out.tellp(), std::streampos(1 + 2 + 8 + 13));
    EXPECT_TRUE(out.IsValidOutput());
    std::unique_ptr<Quarn::istream> const in = this->m_kind.Input(Hex("01 02 03 04 05 06 07 08"));
    EXPECT_EQ(in->tellg(), std::streampos(0));
    int value = 0;
    *in >> value;
    EXPECT_EQ(value, 0x04030201);
    EXPECT_EQ(in->tellg(), std::streampos(4));
    EXPECT_TRUE(in->IsValidInput());
}

TYPED_TEST(StreamContract, OfAnEmptySourceBringsNothing)
{
    std::unique_ptr<Quarn::istream> const in = this->m_kind.Input(Bytes());
    EXPECT_EQ(ThrownText([&] {
                  int value = 0;
                  *in >> value;
              }),
              "Generic Read");
}

TYPED_TEST(SeekableStreamContract, ReadsAgainAfterSeekingBack)
{
    std::unique_ptr<Quarn::istream> const in = this->m_kind.Input(Hex("01 02 03 04 05"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(in->peek(), 1U);
        int value = 0;
        *in >> value;
        EXPECT_EQ(value, 0x04030201);
        EXPECT_EQ(in->gcount(), 4U);
        unsigned char rest[10] = {};
        EXPECT_EQ(in->readsome(rest, 10), 1U);
        EXPECT_EQ(in->gcount(), 1U);
        EXPECT_EQ(rest[0], 5);
        in->seekg(0, 0);
    }
    in->seekg(std::streampos(2));
    EXPECT_EQ(in->peek(), 3U);
    in->seekg(1, 1);
    EXPECT_EQ(in->peek(), 4U);
    EXPECT_EQ(in->sync(), 0);
}

TYPED_TEST(StreamContract, TheBasesCloseAndPathMayBeLeftAlone)
{
    Quarn::ostream& out = this->m_kind.Output(64);
    out << 1;
    out.flush();
    out.close();
    EXPECT_TRUE(out.IsValidOutput());
    std::unique_ptr<Quarn::istream> const in = this->m_kind.Input(Bytes(4));
    EXPECT_EQ(in->get_path(), nullptr);
    in->close();
}

} // namespace
