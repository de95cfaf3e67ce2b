// A mixed record of 231 bytes (header block, 8 integers, 4 doubles, 4 floats, 3 strings) to memory and back;
// one operation is 1,000 records.
#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stat_stream.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

constexpr std::size_t recordCount = 1000;
constexpr std::size_t recordSize = 231;

struct Record
{
    std::uint32_t id = 0x00010002;
    std::uint32_t version = 3;
    std::array<std::int32_t, 8> ints = {1, -2, 3, -4, 5, -6, 7, -8};
    std::array<double, 4> doubles = {1.5, -2.5, 3.25, 1e100};
    std::array<float, 4> floats = {0.5F, 1.5F, -2.5F, 1e10F};
    std::array<Quarn::string, 3> texts = {Quarn::string(20, 'a'), Quarn::string(37, 'b'),
                                          Quarn::string(50, 'c')};
    bool operator==(Record const& other) const = default;
};

std::vector<Record> MakeRecords()
{
    std::vector<Record> records(recordCount);
    for (std::size_t i = 0; i < recordCount; ++i) {
        records[i].ints[0] = static_cast<std::int32_t>(i);
        records[i].doubles[0] = static_cast<double>(i) / 7;
    }
    return records;
}

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

void ReadFrom(Quarn::istream& in, Record& record)
{
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

// The same bytes through a standard stream, a field at a time.

template<typename T>
void Put(std::ostream& out, T const& value)
{
    out.write(reinterpret_cast<char const*>(&value), sizeof value);
}

template<typename T>
void Get(std::istream& in, T& value)
{
    in.read(reinterpret_cast<char*>(&value), sizeof value);
}

void WriteTo(std::ostream& out, Record const& record)
{
    Put(out, record.id);
    Put(out, record.version);
    for (auto const& value : record.ints) {
        Put(out, value);
    }
    for (auto const& value : record.doubles) {
        Put(out, value);
    }
    for (auto const& value : record.floats) {
        Put(out, value);
    }
    for (Quarn::string const& text : record.texts) {
        auto const length = static_cast<std::uint32_t>(text.size());
        Put(out, 0xFFFFFFFFU);
        Put(out, length);
        Put(out, ~length);
        out.write(text.data(), length);
    }
}

void ReadFrom(std::istream& in, Record& record)
{
    Get(in, record.id);
    Get(in, record.version);
    for (auto& value : record.ints) {
        Get(in, value);
    }
    for (auto& value : record.doubles) {
        Get(in, value);
    }
    for (auto& value : record.floats) {
        Get(in, value);
    }
    for (Quarn::string& text : record.texts) {
        std::uint32_t marker = 0;
        std::uint32_t length = 0;
        std::uint32_t check = 0;
        Get(in, marker);
        Get(in, length);
        Get(in, check);
        text.std::string::resize(length);
        in.read(text.data(), length);
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
    template<typename T>
    void Get(T& value)
    {
        std::memcpy(&value, m_position, sizeof value);
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

template<typename Action>
void ForEachField(Record& record, Action action)
{
    action(record.id);
    action(record.version);
    for (auto& value : record.ints) {
        action(value);
    }
    for (auto& value : record.doubles) {
        action(value);
    }
    for (auto& value : record.floats) {
        action(value);
    }
    for (auto& text : record.texts) {
        action(text);
    }
}

std::vector<unsigned char> Encoded()
{
    std::vector<unsigned char> bytes(recordCount * recordSize);
    Quarn::memorystream stream(bytes.data(), recordCount * recordSize, false);
    for (Record const& record : MakeRecords()) {
        WriteTo(stream, record);
    }
    return bytes;
}

void WriteQuarn(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        Quarn::memorystream stream(recordCount * recordSize);
        for (Record const& record : records) {
            WriteTo(stream, record);
        }
        benchmark::DoNotOptimize(stream.GetMemory());
    }
}

void WriteStringstream(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        std::ostringstream stream;
        for (Record const& record : records) {
            WriteTo(stream, record);
        }
        benchmark::DoNotOptimize(stream);
    }
}

void WriteMemcpy(benchmark::State& state)
{
    std::vector<Record> records = MakeRecords();
    for (auto _ : state) {
        std::vector<unsigned char> bytes(recordCount * recordSize);
        Block block(bytes.data());
        for (Record& record : records) {
            ForEachField(record, [&](auto const& field) { block.Put(field); });
        }
        benchmark::DoNotOptimize(bytes.data());
    }
}

template<typename Read>
void ReadBack(benchmark::State& state, Read read)
{
    std::vector<Record> const expected = MakeRecords();
    std::vector<Record> records(recordCount);
    for (auto _ : state) {
        read(records);
        benchmark::DoNotOptimize(records.data());
    }
    if (records != expected) {
        state.SkipWithError("read something else than was written");
    }
}

void ReadQuarn(benchmark::State& state)
{
    std::vector<unsigned char> bytes = Encoded();
    ReadBack(state, [&](std::vector<Record>& records) {
        Quarn::memorystream stream(bytes.data(), recordCount * recordSize, false);
        for (Record& record : records) {
            ReadFrom(stream, record);
        }
    });
}

void ReadStringstream(benchmark::State& state)
{
    std::vector<unsigned char> const bytes = Encoded();
    std::string const text(bytes.begin(), bytes.end());
    std::istringstream stream(text);
    ReadBack(state, [&](std::vector<Record>& records) {
        stream.clear();
        stream.seekg(0);
        for (Record& record : records) {
            ReadFrom(stream, record);
        }
    });
}

void ReadMemcpy(benchmark::State& state)
{
    std::vector<unsigned char> bytes = Encoded();
    ReadBack(state, [&](std::vector<Record>& records) {
        Block block(bytes.data());
        for (Record& record : records) {
            ForEachField(record, [&](auto& field) { block.Get(field); });
        }
    });
}

void CountQuarn(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        Quarn::statstream stream(true);
        for (Record const& record : records) {
            WriteTo(stream, record);
        }
        benchmark::DoNotOptimize(stream.GetCRCValue());
    }
}

BENCHMARK(WriteQuarn)->Name("record write/quarn/1000 of 231 bytes");
BENCHMARK(WriteStringstream)->Name("record write/std::ostringstream/1000 of 231 bytes");
BENCHMARK(WriteMemcpy)->Name("record write/limit: memcpy/1000 of 231 bytes");
BENCHMARK(ReadQuarn)->Name("record read/quarn/1000 of 231 bytes");
BENCHMARK(ReadStringstream)->Name("record read/std::istringstream/1000 of 231 bytes");
BENCHMARK(ReadMemcpy)->Name("record read/limit: memcpy/1000 of 231 bytes");
BENCHMARK(CountQuarn)->Name("record count with CRC/quarn/1000 of 231 bytes");

} // namespace
