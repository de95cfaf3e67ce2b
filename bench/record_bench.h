// The record of 231 bytes (header block, 8 integers, 4 doubles, 4 floats, 3 texts) that every peer writes and
// reads, a field at a time, and the measurements that the peers share. One operation is 1,000 records.
#pragma once

#include "quarn/text/string.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <ios>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace Bench {

inline constexpr std::size_t RecordCount = 1000;
inline constexpr std::size_t RecordSize = 231;

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

inline std::vector<Record> MakeRecords()
{
    std::vector<Record> records(RecordCount);
    for (std::size_t i = 0; i < RecordCount; ++i) {
        records[i].ints[0] = static_cast<std::int32_t>(i);
        records[i].doubles[0] = static_cast<double>(i) / 7;
    }
    return records;
}

// Numbers first, then the texts.
template<typename AnyRecord, typename Action>
void ForEachField(AnyRecord& record, Action action)
{
    action(record.id);
    action(record.version);
    std::ranges::for_each(record.ints, action);
    std::ranges::for_each(record.doubles, action);
    std::ranges::for_each(record.floats, action);
    std::ranges::for_each(record.texts, action);
}

// A file in the working directory, removed at the end.
class ScratchFile
{
public:
    explicit ScratchFile(std::string path) : m_path(std::move(path)) {}
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    ~ScratchFile() { std::remove(m_path.c_str()); }

    char const* Path() const { return m_path.c_str(); }

private:
    std::string m_path;
};

// Measures `read(records)`, after it has been seen to bring what was written.
template<typename Read>
void MeasureRead(benchmark::State& state, Read read)
{
    std::vector<Record> records(RecordCount);
    read(records);
    if (records != MakeRecords()) {
        state.SkipWithError("read something else than was written");
        return;
    }
    for (auto _ : state) {
        read(records);
        benchmark::DoNotOptimize(records.data());
    }
}

// Over standard streams. A peer has Write(std::ostream&, std::vector<Record> const&) and
// Read(std::istream&, std::vector<Record>&).

template<typename Peer>
void WriteMemory(benchmark::State& state)
{
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        std::ostringstream stream;
        Peer::Write(stream, records);
        benchmark::DoNotOptimize(stream);
    }
}

template<typename Peer>
void ReadMemory(benchmark::State& state)
{
    std::ostringstream written;
    Peer::Write(written, MakeRecords());
    std::istringstream stream(written.str());
    MeasureRead(state, [&](std::vector<Record>& records) {
        stream.clear();
        stream.seekg(0);
        Peer::Read(stream, records);
    });
}

template<typename Peer>
void WriteFile(benchmark::State& state)
{
    ScratchFile const file("record_bench_peer.dat");
    std::vector<Record> const records = MakeRecords();
    for (auto _ : state) {
        std::ofstream stream(file.Path(), std::ios_base::binary);
        Peer::Write(stream, records);
    }
}

template<typename Peer>
void ReadFile(benchmark::State& state)
{
    ScratchFile const file("record_bench_peer.dat");
    {
        std::ofstream stream(file.Path(), std::ios_base::binary);
        Peer::Write(stream, MakeRecords());
    }
    MeasureRead(state, [&](std::vector<Record>& records) {
        std::ifstream stream(file.Path(), std::ios_base::binary);
        Peer::Read(stream, records);
    });
}

template<typename Peer>
void Register(std::string const& name)
{
    benchmark::RegisterBenchmark(("record/" + name + "/write to memory").c_str(), WriteMemory<Peer>);
    benchmark::RegisterBenchmark(("record/" + name + "/read from memory").c_str(), ReadMemory<Peer>);
    benchmark::RegisterBenchmark(("record/" + name + "/write to file").c_str(), WriteFile<Peer>);
    benchmark::RegisterBenchmark(("record/" + name + "/read from file").c_str(), ReadFile<Peer>);
}

} // namespace Bench
