// The record by QDataStream over a QBuffer and a QFile. Its texts are QByteArrays; floats are stored as
// doubles, which is what the stream does unless it is told otherwise.
#include "bench/record_bench.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QFile>

namespace {

struct QtRecord
{
    quint32 id = 0;
    quint32 version = 0;
    std::array<qint32, 8> ints{};
    std::array<double, 4> doubles{};
    std::array<float, 4> floats{};
    std::array<QByteArray, 3> texts;
    bool operator==(QtRecord const& other) const = default;
};

std::vector<QtRecord> MakeQtRecords()
{
    std::vector<QtRecord> made;
    for (Bench::Record const& record : Bench::MakeRecords()) {
        QtRecord copy{record.id, record.version, record.ints, record.doubles, record.floats, {}};
        for (std::size_t i = 0; i < copy.texts.size(); ++i) {
            copy.texts[i] = QByteArray::fromStdString(record.texts[i]);
        }
        made.push_back(copy);
    }
    return made;
}

void Write(QIODevice& device, std::vector<QtRecord> const& records)
{
    QDataStream stream(&device);
    stream.setByteOrder(QDataStream::LittleEndian);
    for (QtRecord const& record : records) {
        Bench::ForEachField(record, [&](auto const& field) { stream << field; });
    }
}

void Read(QIODevice& device, std::vector<QtRecord>& records)
{
    QDataStream stream(&device);
    stream.setByteOrder(QDataStream::LittleEndian);
    for (QtRecord& record : records) {
        Bench::ForEachField(record, [&](auto& field) { stream >> field; });
    }
}

void WriteMemory(benchmark::State& state)
{
    std::vector<QtRecord> const records = MakeQtRecords();
    for (auto _ : state) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        Write(buffer, records);
        benchmark::DoNotOptimize(buffer.data().data());
    }
}

void WriteFile(benchmark::State& state)
{
    Bench::ScratchFile const scratch("record_bench_qt.dat");
    std::vector<QtRecord> const records = MakeQtRecords();
    for (auto _ : state) {
        QFile file(scratch.Path());
        file.open(QIODevice::WriteOnly);
        Write(file, records);
    }
}

template<typename Read>
void Measure(benchmark::State& state, Read read)
{
    std::vector<QtRecord> records(Bench::RecordCount);
    read(records);
    if (records != MakeQtRecords()) {
        state.SkipWithError("read something else than was written");
        return;
    }
    for (auto _ : state) {
        read(records);
        benchmark::DoNotOptimize(records.data());
    }
}

void ReadMemory(benchmark::State& state)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    Write(buffer, MakeQtRecords());
    Measure(state, [&](std::vector<QtRecord>& records) {
        buffer.seek(0);
        Read(buffer, records);
    });
}

void ReadFile(benchmark::State& state)
{
    Bench::ScratchFile const scratch("record_bench_qt.dat");
    {
        QFile file(scratch.Path());
        file.open(QIODevice::WriteOnly);
        Write(file, MakeQtRecords());
    }
    Measure(state, [&](std::vector<QtRecord>& records) {
        QFile file(scratch.Path());
        file.open(QIODevice::ReadOnly);
        Read(file, records);
    });
}

BENCHMARK(WriteMemory)->Name("record/QDataStream/write to memory");
BENCHMARK(ReadMemory)->Name("record/QDataStream/read from memory");
BENCHMARK(WriteFile)->Name("record/QDataStream/write to file");
BENCHMARK(ReadFile)->Name("record/QDataStream/read from file");

} // namespace
