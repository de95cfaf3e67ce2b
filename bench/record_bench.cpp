// A mixed record of 231 bytes to memory, to a file and back: the library, standard streams with the same
// bytes, and memcpy as the limit. Other peers are in files of their own.
#include "bench/record_bench.h"

#include "quarn/stream/file_stream.h"
#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stat_stream.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include <zlib.h>

namespace {

using Bench::ForEachField;
using Bench::MakeRecords;
using Bench::Record;
using Bench::RecordCount;
using Bench::RecordSize;
using Bench::ScratchFile;

constexpr std::size_t TotalSize = RecordCount * RecordSize;

// The library.

void WriteTo(Quarn::ostream& out, Record const& record)
{
    Quarn::Stream::HeaderBlock header;
    header.id = record.id;
    header.version = record.version;
    out << header;
    for (int const value : record.ints) {
        out << value;
    }
    for (double const value : record.doubles) {
        out << value;
    }
    for (float const value : record.floats) {
        out << value;
    }
    for (Quarn::string const& text : record.texts) {
        out << text;
    }
}

void WriteTo(Quarn::ostream& out, std::vector<Record> const& records)
{
    for (Record const& record : records) {
        WriteTo(out, record);
    }
}

void ReadFrom(Quarn::istream& in, std::vector<Record>& records)
{
    for (Record& record : records) {
        record.version = static_cast<std::uint32_t>(in.ReadAndVerifyHeader(0x00010002, 3));
        for (int& value : record.ints) {
            in >> value;
        }
        for (double& value : record.doubles) {
            in >> value;
        }
        for (float& value : record.floats) {
            in >> value;
        }
        for (Quarn::string& text : record.texts) {
            in >> text;
        }
    }
}

// The same bytes by memcpy into a block that is large enough: the limit.

class Block
{
public:
    explicit Block(unsigned char* position) : m_position(position) {}

    template<typename T>
    void Put(T const& value)
    {
        std::memcpy(m_position, &value, sizeof value);
        m_position += sizeof value;
    }
    void Put(Quarn::string const& text)
    {
        auto const length = static_cast<std::uint32_t>(text.size());
        Put(0xFFFFFFFFU);
        Put(length);
        Put(~length);
        std::memcpy(m_position, text.data(), length);
        m_position += length;
    }
    template<typename T>
    void Get(T& value)
    {
        std::memcpy(&value, m_position, sizeof value);
        m_position += sizeof value;
    }
    void Get(Quarn::string& text)
    {
        std::uint32_t length = 0;
        m_position += 4;
        Get(length);
        m_position += 4;
        text.assign(reinterpret_cast<char const*>(m_position), length);
        m_position += length;
    }

private:
    unsigned char* m_position;
};

using Memory = std::unique_ptr<unsigned char[]>;

// Not initialised: every byte is written.
Memory NewMemory()
{
    return Memory(new unsigned char[TotalSize]);
}

void PutAll(unsigned char* memory, std::vector<Record> const& records)
{
    Block block(memory);
    for (Record const& record : records) {
        ForEachField(record, [&](auto const& field) { block.Put(field); });
    }
}

void GetAll(unsigned char* memory, std::vector<Record>& records)
{
    Block block(memory);
    for (Record& record : records) {
        ForEachField(record, [&](auto& field) { block.Get(field); });
    }
}

// The same bytes through a standard stream.
struct Standard
{
    static void Write(std::ostream& stream, std::vector<Record> const& records)
    {
        for (Record const& record : records) {
            ForEachField(record, [&](auto const& field) { Put(stream, field); });
        }
    }
    static void Read(std::istream& stream, std::vector<Record>& records)
    {
        for (Record& record : records) {
            ForEachField(record, [&](auto& field) { Get(stream, field); });
        }
    }

private:
    template<typename T>
    static void Put(std::ostream& stream, T const& value)
    {
        stream.write(reinterpret_cast<char const*>(&value), sizeof value);
    }
    static void Put(std::ostream& stream, Quarn::string const& text)
    {
        auto const length = static_cast<std::uint32_t>(text.size());
        Put(stream, 0xFFFFFFFFU);
        Put(stream, length);
        Put(stream, ~length);
        stream.write(text.data(), length);
    }
    template<typename T>
    static void Get(std::istream& stream, T& value)
    {
        stream.read(reinterpret_cast<char*>(&value), sizeof value);
    }
    static void Get(std::istream& stream, Quarn::string& text)
    {
        std::uint32_t marker = 0;
        std::uint32_t length = 0;
        std::uint32_t check = 0;
        Get(stream, marker);
        Get(stream, length);
        Get(stream, check);
        text.std::string::resize(length);
        stream.read(text.data(), length);
    }
};

// What the limit writes is what the library writes.
Memory Encoded()
{
    Memory limit = NewMemory();
    PutAll(limit.get(), MakeRecords());
    return limit;
}

void WriteMemoryQuarn(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    Memory const expected = Encoded();
    for (auto _ : state) {
        Quarn::memorystream stream(TotalSize);
        WriteTo(stream, records);
        benchmark::DoNotOptimize(stream.GetMemory());
    }
    Quarn::memorystream stream(TotalSize);
    WriteTo(stream, records);
    if (std::memcmp(stream.GetMemory(), expected.get(), TotalSize) != 0) {
        state.SkipWithError("wrong bytes");
    }
}

void WriteMemoryLimit(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        Memory const memory = NewMemory();
        PutAll(memory.get(), records);
        benchmark::DoNotOptimize(memory.get());
        benchmark::ClobberMemory();
    }
}

void ReadMemoryQuarn(benchmark::State& state)
{
    Memory const memory = Encoded();
    Bench::MeasureRead(state, [&](std::vector<Record>& records) {
        Quarn::memorystream stream(memory.get(), TotalSize, false);
        ReadFrom(stream, records);
    });
}

void ReadMemoryLimit(benchmark::State& state)
{
    Memory const memory = Encoded();
    Bench::MeasureRead(state, [&](std::vector<Record>& records) { GetAll(memory.get(), records); });
}

void WriteFileQuarn(benchmark::State& state)
{
    ScratchFile const file("record_bench_quarn.dat");
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        Quarn::ofstream stream(file.Path(), std::ios_base::binary);
        WriteTo(stream, records);
        stream.close();
        if (!stream.IsValidOutput()) {
            state.SkipWithError("not written");
        }
    }
}

// Every transfer is one call of the system.
std::FILE* OpenUnbuffered(char const* path, char const* mode)
{
    std::FILE* const file = std::fopen(path, mode);
    std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

void WriteWhole(char const* path, unsigned char const* memory)
{
    std::FILE* const file = OpenUnbuffered(path, "wb");
    benchmark::DoNotOptimize(std::fwrite(memory, 1, TotalSize, file));
    std::fclose(file);
}

void WriteFileLimit(benchmark::State& state)
{
    ScratchFile const file("record_bench_limit.dat");
    std::vector<Record> const records = MakeRecords();
    Memory const memory = NewMemory();
    for (auto _ : state) {
        PutAll(memory.get(), records);
        WriteWhole(file.Path(), memory.get());
    }
}

void ReadFileQuarn(benchmark::State& state)
{
    ScratchFile const file("record_bench_quarn.dat");
    WriteWhole(file.Path(), Encoded().get());
    Bench::MeasureRead(state, [&](std::vector<Record>& records) {
        Quarn::ifstream stream(file.Path(), std::ios_base::binary);
        ReadFrom(stream, records);
    });
}

void ReadFileLimit(benchmark::State& state)
{
    ScratchFile const scratch("record_bench_limit.dat");
    WriteWhole(scratch.Path(), Encoded().get());
    Memory const memory = NewMemory();
    Bench::MeasureRead(state, [&](std::vector<Record>& records) {
        std::FILE* const file = OpenUnbuffered(scratch.Path(), "rb");
        benchmark::DoNotOptimize(std::fread(memory.get(), 1, TotalSize, file));
        std::fclose(file);
        GetAll(memory.get(), records);
    });
}

// The size and the CRC-32 of all records.

unsigned long Expected()
{
    return ::crc32_z(0, Encoded().get(), TotalSize);
}

void CountQuarn(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    unsigned long const expected = Expected();
    for (auto _ : state) {
        Quarn::statstream stream(true);
        WriteTo(stream, records);
        if (stream.GetCRCValue() != expected || stream.GetSize() != TotalSize) {
            state.SkipWithError("wrong checksum");
        }
    }
}

void CountMemory(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    unsigned long const expected = Expected();
    for (auto _ : state) {
        Quarn::memorystream stream(TotalSize);
        WriteTo(stream, records);
        if (::crc32_z(0, stream.GetMemory(), TotalSize) != expected) {
            state.SkipWithError("wrong checksum");
        }
    }
}

BENCHMARK(WriteMemoryQuarn)->Name("record/quarn/write to memory");
BENCHMARK(WriteMemoryLimit)->Name("record/limit: memcpy/write to memory");
BENCHMARK(ReadMemoryQuarn)->Name("record/quarn/read from memory");
BENCHMARK(ReadMemoryLimit)->Name("record/limit: memcpy/read from memory");
BENCHMARK(WriteFileQuarn)->Name("record/quarn/write to file");
BENCHMARK(WriteFileLimit)->Name("record/limit: memcpy + one call/write to file");
BENCHMARK(ReadFileQuarn)->Name("record/quarn/read from file");
BENCHMARK(ReadFileLimit)->Name("record/limit: memcpy + one call/read from file");
BENCHMARK(CountQuarn)->Name("record/quarn/count with CRC");
BENCHMARK(CountMemory)->Name("record/memory stream + zlib/count with CRC");

[[maybe_unused]] int const g_registered = (Bench::Register<Standard>("standard stream"), 0);

} // namespace
