// A record of 20 fields as a listing in memory: 8 integers, 6 reals, 3 texts, 2 flags and a header block. One
// operation is one record.
#include "quarn/stream/dump_indent.h"
#include "quarn/stream/dump_streams.h"

#include <cstdio>
#include <ios>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>
#ifdef QUARN_HAVE_ABSL
#include <absl/strings/str_format.h>
#endif

namespace {

constexpr unsigned long capacity = 2048;

struct Record
{
    Quarn::Stream::HeaderBlock header{0x00010002, 3};
    int ints[8] = {1, -22, 333, -4444, 55555, -666666, 7777777, -88888888};
    double reals[6] = {1.5, -2.25, 3.125, 4096.0625, 1e6, -0.001};
    Quarn::string texts[3] = {"station", "a text of some length", "a text that is longer than the others"};
    bool flags[2] = {true, false};
};

Quarn::string const intLabel = "Count";
Quarn::string const realLabel = "Temperature";
Quarn::string const textLabel = "Name";
Quarn::string const flagLabel = "Active";

void Save(Quarn::ostream& stream, Record const& record)
{
    Quarn::DumpStreamIndent const indent(stream, 4);
    stream.dump("Header", record.header);
    for (int const value : record.ints) {
        stream.dump(intLabel, value);
    }
    for (double const value : record.reals) {
        stream.dump(realLabel, value);
    }
    for (Quarn::string const& text : record.texts) {
        stream.dump(textLabel, text);
    }
    for (bool const flag : record.flags) {
        stream.dump(flagLabel, flag);
    }
}

template<typename Append>
void ForEachLine(Record const& record, Append append)
{
    append("    %s(ID=0x%08x), Version=%u\n", "Header", record.header.id, record.header.version);
    for (int const value : record.ints) {
        append("    %s=%d\n", intLabel.c_str(), value);
    }
    for (double const value : record.reals) {
        append("    %s=%f\n", realLabel.c_str(), value);
    }
    for (Quarn::string const& text : record.texts) {
        append("    %s=\"%s\"\n", textLabel.c_str(), text.c_str());
    }
    for (bool const flag : record.flags) {
        append("    %s=%s\n", flagLabel.c_str(), flag ? "true" : "false");
    }
}

std::string BySnprintf(Record const& record)
{
    std::string text;
    ForEachLine(record, [&text](char const* format, auto... values) {
        char line[512];
        int const length = std::snprintf(line, sizeof line, format, values...);
        text.append(line, static_cast<std::size_t>(length));
    });
    return text;
}

std::string ByStringstream(Record const& record)
{
    std::ostringstream stream;
    stream << std::fixed;
    stream << "    Header(ID=0x" << std::hex;
    stream.width(8);
    stream.fill('0');
    stream << record.header.id << std::dec << "), Version=" << record.header.version << '\n';
    for (int const value : record.ints) {
        stream << "    " << intLabel << '=' << value << '\n';
    }
    for (double const value : record.reals) {
        stream << "    " << realLabel << '=' << value << '\n';
    }
    for (Quarn::string const& text : record.texts) {
        stream << "    " << textLabel << "=\"" << text << "\"\n";
    }
    for (bool const flag : record.flags) {
        stream << "    " << flagLabel << '=' << (flag ? "true" : "false") << '\n';
    }
    return stream.str();
}

#ifdef QUARN_HAVE_ABSL
std::string ByAbsl(Record const& record)
{
    std::string text;
    absl::StrAppendFormat(&text, "    %s(ID=0x%08x), Version=%u\n", "Header", record.header.id,
                          record.header.version);
    for (int const value : record.ints) {
        absl::StrAppendFormat(&text, "    %s=%d\n", intLabel.c_str(), value);
    }
    for (double const value : record.reals) {
        absl::StrAppendFormat(&text, "    %s=%f\n", realLabel.c_str(), value);
    }
    for (Quarn::string const& value : record.texts) {
        absl::StrAppendFormat(&text, "    %s=\"%s\"\n", textLabel.c_str(), value.c_str());
    }
    for (bool const flag : record.flags) {
        absl::StrAppendFormat(&text, "    %s=%s\n", flagLabel.c_str(), flag ? "true" : "false");
    }
    return text;
}
#endif

void DumpQuarn(benchmark::State& state)
{
    Record const record;
    std::string const expected = BySnprintf(record);
    for (auto _ : state) {
        Quarn::memorydumpstream stream(capacity);
        Save(stream, record);
        benchmark::DoNotOptimize(stream.GetMemory());
        if (static_cast<std::streamoff>(stream.tellp()) != static_cast<std::streamoff>(expected.size())) {
            state.SkipWithError("wrong listing");
        }
    }
    Quarn::memorydumpstream stream(capacity);
    Save(stream, record);
    if (expected.compare(0, expected.size(), reinterpret_cast<char const*>(stream.GetMemory()),
                         expected.size()) != 0) {
        state.SkipWithError("wrong listing");
    }
}

template<std::string (*Function)(Record const&)>
void Dump(benchmark::State& state)
{
    Record const record;
    if (Function(record) != BySnprintf(record)) {
        state.SkipWithError("wrong listing");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(Function(record));
    }
}

BENCHMARK(DumpQuarn)->Name("listing of 20 fields/quarn");
BENCHMARK(Dump<BySnprintf>)->Name("listing of 20 fields/snprintf + append");
BENCHMARK(Dump<ByStringstream>)->Name("listing of 20 fields/std::ostringstream");
#ifdef QUARN_HAVE_ABSL
BENCHMARK(Dump<ByAbsl>)->Name("listing of 20 fields/absl::StrAppendFormat");
#endif

} // namespace
