// How cost grows with the work: journals of 1 to 100 MB, one record at the far end of a journal of 100 GB,
// and lines of the log.
#include "quarn/platform/log.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"
#include "quarn/stream/file_stream.h"
#include "quarn/stream/header_block.h"
#include "quarn/stream/stat_stream.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char const* JournalPath = "growth_bench.journal";
constexpr char const* SettingsPath = "growth_bench.xml";
constexpr char const* LogPath = "growth_bench.log";
constexpr std::uint32_t RecordId = 0x4A524E4C;

// The file is removed with the object.
class Scratch
{
public:
    explicit Scratch(char const* path) : m_path(path) {}
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;
    ~Scratch() { std::filesystem::remove(m_path); }

private:
    char const* m_path;
};

Quarn::string const& Text()
{
    static Quarn::string const text(60, 't');
    return text;
}

// A reading: a header, 8 numbers, a text; the checksum goes behind it.
void WriteReading(Quarn::ostream& stream, int number)
{
    stream << Quarn::Stream::HeaderBlock{RecordId, 1} << number;
    for (int i = 0; i < 7; ++i) {
        stream << number * 0.5;
    }
    stream << Text();
}

void WriteRecord(Quarn::ostream& stream, Quarn::statstream& checksum, int number)
{
    checksum.Clear();
    WriteReading(checksum, number);
    WriteReading(stream, number);
    stream << static_cast<int>(checksum.GetCRCValue());
}

bool ReadRecord(Quarn::istream& stream, int number)
{
    int read = 0;
    double value = 0;
    Quarn::string text;
    int checksum = 0;
    stream.ReadAndVerifyHeader(RecordId, 1);
    stream >> read;
    for (int i = 0; i < 7; ++i) {
        stream >> value;
    }
    stream >> text >> checksum;
    return read == number && value == number * 0.5 && text == Text();
}

std::int64_t RecordSize()
{
    Quarn::statstream counter(true);
    Quarn::statstream checksum(true);
    WriteRecord(counter, checksum, 0);
    return static_cast<std::int64_t>(counter.GetSize());
}

int CountOf(benchmark::State const& state)
{
    return static_cast<int>(state.range(0) * 1'000'000 / RecordSize());
}

void WriteJournal(int count)
{
    Quarn::ofstream journal(JournalPath, std::ios_base::binary | std::ios_base::trunc);
    Quarn::statstream checksum(true);
    for (int i = 0; i < count; ++i) {
        WriteRecord(journal, checksum, i);
    }
    journal.close();
}

void SetBytes(benchmark::State& state)
{
    state.SetBytesProcessed(state.iterations() * CountOf(state) * RecordSize());
    state.counters["bytes per record"] = static_cast<double>(RecordSize());
}

void Write(benchmark::State& state)
{
    Scratch const scratch(JournalPath);
    for (auto _ : state) {
        WriteJournal(CountOf(state));
    }
    SetBytes(state);
}

void Read(benchmark::State& state)
{
    Scratch const scratch(JournalPath);
    WriteJournal(CountOf(state));
    for (auto _ : state) {
        Quarn::ifstream journal(JournalPath, std::ios_base::binary);
        for (int i = 0; i < CountOf(state); ++i) {
            if (!ReadRecord(journal, i)) {
                state.SkipWithError("wrong record");
                return;
            }
        }
    }
    SetBytes(state);
}

// As many bytes, to the disk itself: what it takes in the long run.
void Disk(benchmark::State& state)
{
    Scratch const scratch(JournalPath);
    std::vector<char> const block(1'000'000, 'd');
    for (auto _ : state) {
        int const file = ::open(JournalPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            if (::write(file, block.data(), block.size()) != static_cast<ssize_t>(block.size())) {
                state.SkipWithError("not written");
            }
        }
        ::fsync(file);
        ::close(file);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * 1'000'000);
}

// A record is appended behind so many bytes, most of them a hole in the file, and read from there.
void AtTheEnd(benchmark::State& state)
{
    Scratch const scratch(JournalPath);
    {
        Quarn::ofstream const made(JournalPath, std::ios_base::binary);
    }
    auto const end = static_cast<std::streamoff>(state.range(0)) * 1'000'000;
    std::error_code refused;
    for (auto _ : state) {
        std::filesystem::resize_file(JournalPath, static_cast<std::uintmax_t>(end), refused);
        Quarn::ofstream journal(JournalPath, std::ios_base::binary | std::ios_base::app);
        Quarn::statstream checksum(true);
        WriteRecord(journal, checksum, 1);
        journal.close();
        Quarn::ifstream reader(JournalPath, std::ios_base::binary);
        reader.seekg(std::streampos(end));
        if (refused || !ReadRecord(reader, 1)) {
            state.SkipWithError("no file of this size, or a wrong record");
            return;
        }
    }
}

// A settings file of one key; its bytes a value are about those of the file of 10,000 values.
void FillSettings(Quarn::PropertyCollection& tree, long count)
{
    Quarn::PropertyKey* const key = tree.AddSubKey("Key");
    for (long i = 0; i < count; ++i) {
        key->SetValue("Value" + std::to_string(i), Quarn::PropertyData("a usual text"), true);
    }
}

void SaveSettings(benchmark::State& state)
{
    Scratch const scratch(SettingsPath);
    Quarn::PropertyCollection tree("Growth", "Quarn_Properties");
    FillSettings(tree, state.range(0));
    for (auto _ : state) {
        if (!Quarn::Win32::XMLPropPersist(SettingsPath).Persist(&tree)) {
            state.SkipWithError("not saved");
            return;
        }
    }
}

void LoadSettings(benchmark::State& state)
{
    Scratch const scratch(SettingsPath);
    {
        Quarn::PropertyCollection tree("Growth", "Quarn_Properties");
        FillSettings(tree, state.range(0));
        Quarn::Win32::XMLPropPersist(SettingsPath).Persist(&tree);
    }
    state.counters["bytes in file"] = static_cast<double>(std::filesystem::file_size(SettingsPath));
    for (auto _ : state) {
        Quarn::PropertyCollection tree;
        if (!Quarn::Win32::XMLPropPersist(SettingsPath).Populate(&tree) ||
            static_cast<long>(tree.GetSubKey(0)->GetValueCount()) != state.range(0)) {
            state.SkipWithError("not loaded");
            return;
        }
    }
}

// A line with its date, to a log that stays open.
void LogLine(benchmark::State& state)
{
    Scratch const scratch(LogPath);
    if (Win32Quarn::Log::SetPath(LogPath) != 0) {
        state.SkipWithError("no path");
        return;
    }
    for (auto _ : state) {
        if (Win32Quarn::Log::Output(0, 4 | 16, "pump 3: the pressure is above its limit for 20 seconds") !=
            0) {
            state.SkipWithError("not written");
            break;
        }
    }
    Win32Quarn::Log::Close();
}

void StdioLine(benchmark::State& state)
{
    Scratch const scratch(LogPath);
    std::FILE* const file = std::fopen(LogPath, "ab");
    for (auto _ : state) {
        std::fprintf(file, "%02d-%02d-%02d | %s\n", 26, 3, 7,
                     "pump 3: the pressure is above its limit for 20 seconds");
    }
    std::fclose(file);
}

void Megabytes(benchmark::internal::Benchmark* bench)
{
    bench->ArgName("MB")->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
}

// The largest once: it takes seconds.
template<long Count>
void Values(benchmark::internal::Benchmark* bench)
{
    bench->ArgName("values")->Arg(Count)->Unit(benchmark::kMillisecond)->UseRealTime();
    if (Count == 1'000'000) {
        bench->Iterations(1)->Repetitions(1);
    }
}

BENCHMARK(Write)->Name("journal write/quarn")->Apply(Megabytes);
BENCHMARK(Read)->Name("journal read/quarn")->Apply(Megabytes);
BENCHMARK(Disk)
    ->Name("journal write/limit: the disk, flushed")
    ->ArgName("MB")
    ->Arg(100)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(AtTheEnd)->Name("journal end/quarn")->ArgName("MB")->Arg(1)->Arg(100'000);
BENCHMARK(SaveSettings)->Name("settings growth, save/quarn")->Apply(Values<10'000>);
BENCHMARK(SaveSettings)->Name("settings growth, save/quarn")->Apply(Values<1'000'000>);
BENCHMARK(LoadSettings)->Name("settings growth, load/quarn")->Apply(Values<10'000>);
BENCHMARK(LoadSettings)->Name("settings growth, load/quarn")->Apply(Values<1'000'000>);
BENCHMARK(LogLine)->Name("log line/quarn/with its date");
BENCHMARK(StdioLine)->Name("log line/fprintf of the same/with its date");

} // namespace
