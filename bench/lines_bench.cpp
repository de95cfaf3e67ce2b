// A text file of 1,000,000 lines of 25 bytes, their ends included, read line by line. One operation is the
// whole file.
#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/text_reader.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <ios>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>
#ifdef QUARN_HAVE_QT
#include <QFile>
#include <QTextStream>
#endif

namespace {

constexpr int lineCount = 1'000'000;
constexpr std::size_t lineSize = 25;
char const* const path = "lines_bench.txt";

std::string Text(std::string const& end)
{
    std::string text;
    text.reserve(lineCount * lineSize);
    for (int i = 0; i < lineCount; ++i) {
        std::string line = "station " + std::to_string(i) + " ";
        line.resize(lineSize - end.size(), 'x');
        text += line + end;
    }
    return text;
}

// The file, for as long as a benchmark runs.
class TextFile
{
public:
    explicit TextFile(std::string const& end)
    {
        std::ofstream file(path, std::ios_base::binary);
        file << Text(end);
    }
    TextFile(TextFile const&) = delete;
    TextFile& operator=(TextFile const&) = delete;
    ~TextFile() { std::remove(path); }
};

// How many lines, and bytes without line ends.
struct Seen
{
    int lines = 0;
    std::size_t bytes = 0;
    void Line(std::size_t size)
    {
        ++lines;
        bytes += size;
    }
};

// Measures `read`, which returns what it has seen of the file.
template<typename Read>
void Measure(benchmark::State& state, std::string const& end, Read read)
{
    TextFile const file(end);
    for (auto _ : state) {
        Seen const seen = read();
        if (seen.lines != lineCount || seen.bytes != lineCount * (lineSize - end.size())) {
            state.SkipWithError("read something else than was written");
        }
    }
}

Seen ReadQuarnStream(Quarn::istream& stream)
{
    Quarn::TextStreamReader reader(stream);
    Quarn::string line;
    Seen seen;
    // Behind a last carriage return a line feed is left.
    while (seen.lines != lineCount && reader.ReadLine(line)) {
        seen.Line(line.size());
    }
    return seen;
}

Seen ReadQuarn()
{
    Quarn::ifstream stream(path, std::ios_base::binary);
    return ReadQuarnStream(stream);
}

Seen ReadGetline()
{
    std::ifstream stream(path, std::ios_base::binary);
    std::string line;
    Seen seen;
    while (std::getline(stream, line)) {
        seen.Line(line.size());
    }
    return seen;
}

// The same file with carriage returns: a client takes them off.
Seen ReadGetlineTrimmed()
{
    std::ifstream stream(path, std::ios_base::binary);
    std::string line;
    Seen seen;
    while (std::getline(stream, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        seen.Line(line.size());
    }
    return seen;
}

Seen ReadFgets()
{
    std::FILE* const file = std::fopen(path, "rb");
    std::array<char, 256> buffer;
    std::string line;
    Seen seen;
    while (std::fgets(buffer.data(), buffer.size(), file) != nullptr) {
        line = buffer.data();
        line.pop_back();
        seen.Line(line.size());
    }
    std::fclose(file);
    return seen;
}

#ifdef QUARN_HAVE_QT
// Qt makes UTF-16 of the text.
Seen ReadQt()
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    QTextStream stream(&file);
    QString line;
    Seen seen;
    while (stream.readLineInto(&line)) {
        seen.Line(static_cast<std::size_t>(line.size()));
    }
    return seen;
}
#endif

// The bytes alone, through the standard stream's buffer: what the lines cannot be faster than.
Seen ReadBlocks()
{
    std::ifstream stream(path, std::ios_base::binary);
    std::array<char, lineSize> line;
    Seen seen;
    while (stream.read(line.data(), line.size())) {
        seen.Line(line.size() - 1);
    }
    return seen;
}

void FileQuarn(benchmark::State& state)
{
    Measure(state, "\n", ReadQuarn);
}

void FileGetline(benchmark::State& state)
{
    Measure(state, "\n", ReadGetline);
}

void FileFgets(benchmark::State& state)
{
    Measure(state, "\n", ReadFgets);
}

#ifdef QUARN_HAVE_QT
void FileQt(benchmark::State& state)
{
    Measure(state, "\n", ReadQt);
}
#endif

void FileBlocks(benchmark::State& state)
{
    Measure(state, "\n", ReadBlocks);
}

void CrlfQuarn(benchmark::State& state)
{
    Measure(state, "\r\n", ReadQuarn);
}

void CrlfGetline(benchmark::State& state)
{
    Measure(state, "\r\n", ReadGetlineTrimmed);
}

void MemoryQuarn(benchmark::State& state)
{
    std::string text = Text("\n");
    Measure(state, "\n", [&text] {
        Quarn::memorystream stream(reinterpret_cast<unsigned char*>(text.data()),
                                   static_cast<std::streamoff>(text.size()));
        return ReadQuarnStream(stream);
    });
}

void MemoryGetline(benchmark::State& state)
{
    std::istringstream stream(Text("\n"));
    Measure(state, "\n", [&stream] {
        stream.clear();
        stream.seekg(0);
        std::string line;
        Seen seen;
        while (std::getline(stream, line)) {
            seen.Line(line.size());
        }
        return seen;
    });
}

BENCHMARK(FileQuarn)->Name("lines of a file/quarn/1,000,000, line feeds");
BENCHMARK(FileGetline)->Name("lines of a file/std::getline/1,000,000, line feeds");
BENCHMARK(FileFgets)->Name("lines of a file/fgets + assign/1,000,000, line feeds");
BENCHMARK(FileBlocks)->Name("lines of a file/limit: std::ifstream::read/1,000,000, line feeds");
#ifdef QUARN_HAVE_QT
BENCHMARK(FileQt)->Name("lines of a file/QTextStream/1,000,000, line feeds");
#endif
BENCHMARK(CrlfQuarn)->Name("lines of a file/quarn/1,000,000, both");
BENCHMARK(CrlfGetline)->Name("lines of a file/std::getline + pop_back/1,000,000, both");
BENCHMARK(MemoryQuarn)->Name("lines in memory/quarn/1,000,000, line feeds");
BENCHMARK(MemoryGetline)->Name("lines in memory/std::getline/1,000,000, line feeds");

} // namespace
