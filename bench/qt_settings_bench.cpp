// Qt's settings in a file of 1,000 or 10,000 numbers, the nearest to a registry that another library has. It
// reads from memory what it read from the file at its start; a write is on the disk after sync(), which
// writes the whole file.
#include <QSettings>
#include <cstdlib>
#include <string>

#include <benchmark/benchmark.h>

namespace {

QSettings& Settings(int count)
{
    auto* const settings = new QSettings(QString::fromStdString(std::string(std::getenv("XDG_DATA_HOME")) +
                                                                "/qt-" + std::to_string(count) + ".ini"),
                                         QSettings::IniFormat);
    for (int i = 0; i < count; ++i) {
        settings->setValue(QString::number(i), i);
    }
    settings->sync();
    return *settings;
}

void Read(benchmark::State& state)
{
    static QSettings& settings = Settings(1000);
    QString const name = QStringLiteral("500");
    for (auto _ : state) {
        benchmark::DoNotOptimize(settings.value(name).toUInt());
    }
}

void Write(benchmark::State& state)
{
    static QSettings& settings = Settings(1000);
    QString const name = QStringLiteral("500");
    unsigned number = 0;
    for (auto _ : state) {
        settings.setValue(name, ++number);
        settings.sync();
    }
}

void List(benchmark::State& state)
{
    static QSettings& settings = Settings(10000);
    for (auto _ : state) {
        if (settings.childKeys().size() != 10000) {
            state.SkipWithError("not all were listed");
        }
    }
}

BENCHMARK(Read)->Name("registry/Qt settings, from memory/read a value");
BENCHMARK(Write)->Name("registry/Qt settings, synchronised/write a value");
BENCHMARK(List)->Name("registry/Qt settings, from memory/list 10,000 values");

} // namespace
