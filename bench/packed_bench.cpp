// Packed records beside what is written by hand for the same text: snprintf and sscanf, to_chars and
// from_chars. Each record is a window's rectangle, a zoom and a name; it is written to a value of a settings
// tree, and read from one.
#include "quarn/properties/property_value.h"

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>

namespace {

using Quarn::PropertyData;
using Quarn::PropertyValue;

struct Window
{
    int box[4] = {};
    double zoom = 0;
    Quarn::string name;
    bool operator==(Window const& other) const = default;
};

Window const& TheWindow()
{
    static Window const window{{120, 80, 1480, 1050}, 1.25, "Overview"};
    return window;
}

constexpr char TheText[] = "120,80,1480,1050,1.250000,\"Overview\",";

// Measures `write(value, window)`, after its text has been compared.
template<typename Write>
void MeasureWrite(benchmark::State& state, Write write)
{
    Window const& window = TheWindow();
    PropertyValue value("v", PropertyData(), nullptr);
    write(value, window);
    if (value.GetValueString() != TheText) {
        state.SkipWithError("wrote something else");
        return;
    }
    for (auto _ : state) {
        write(value, window);
    }
}

// Measures `read(value, window)`, after what it reads has been compared.
template<typename Read>
void MeasureRead(benchmark::State& state, Read read)
{
    PropertyValue const value("v", PropertyData(TheText), nullptr);
    Window window;
    if (!read(value, window) || window != TheWindow()) {
        state.SkipWithError("read something else");
        return;
    }
    for (auto _ : state) {
        window.name.clear();
        benchmark::DoNotOptimize(read(value, window));
        benchmark::DoNotOptimize(&window);
    }
}

void WriteQuarn(benchmark::State& state)
{
    MeasureWrite(state, [](PropertyValue& value, Window const& window) {
        value.Writef("iiiidt", window.box[0], window.box[1], window.box[2], window.box[3], window.zoom,
                     &window.name);
    });
}

void WriteSnprintf(benchmark::State& state)
{
    MeasureWrite(state, [](PropertyValue& value, Window const& window) {
        char buffer[256];
        std::snprintf(buffer, sizeof buffer, "%d,%d,%d,%d,%f,\"%s\",", window.box[0], window.box[1],
                      window.box[2], window.box[3], window.zoom, window.name.c_str());
        value.SetValue(Quarn::string(buffer));
    });
}

void WriteToChars(benchmark::State& state)
{
    MeasureWrite(state, [](PropertyValue& value, Window const& window) {
        char buffer[512];
        char* end = buffer;
        for (int const edge : window.box) {
            end = std::to_chars(end, std::end(buffer), edge).ptr;
            *end++ = ',';
        }
        end = std::to_chars(end, std::end(buffer), window.zoom, std::chars_format::fixed, 6).ptr;
        Quarn::string text(buffer, static_cast<std::size_t>(end - buffer));
        text.append(",\"").append(window.name).append("\",");
        value.SetValue(text);
    });
}

void ReadQuarn(benchmark::State& state)
{
    MeasureRead(state, [](PropertyValue const& value, Window& window) {
        return value.Readf("iiiidt", &window.box[0], &window.box[1], &window.box[2], &window.box[3],
                           &window.zoom, &window.name);
    });
}

void ReadSscanf(benchmark::State& state)
{
    MeasureRead(state, [](PropertyValue const& value, Window& window) {
        char name[64];
        int const items =
            std::sscanf(value.GetValueString().c_str(), "%d,%d,%d,%d,%lf,\"%63[^\"]\",", &window.box[0],
                        &window.box[1], &window.box[2], &window.box[3], &window.zoom, name);
        window.name = name;
        return items == 6;
    });
}

void ReadFromChars(benchmark::State& state)
{
    MeasureRead(state, [](PropertyValue const& value, Window& window) {
        std::string_view const text = reinterpret_cast<char const*>(value.GetData().GetDataBinary());
        char const* next = text.data();
        char const* const end = next + text.size();
        auto const take = [&](auto& number) {
            std::from_chars_result const result = std::from_chars(next, end, number);
            next = result.ptr + 1; // behind its comma
            return result.ec == std::errc() && result.ptr != end && *result.ptr == ',';
        };
        for (int& edge : window.box) {
            if (!take(edge)) {
                return false;
            }
        }
        if (!take(window.zoom) || next == end || *next != '"') {
            return false;
        }
        std::size_t const start = static_cast<std::size_t>(next - text.data()) + 1;
        std::size_t const quote = text.find('"', start);
        if (quote == text.npos) {
            return false;
        }
        window.name.assign(text.data() + start, quote - start);
        return true;
    });
}

BENCHMARK(WriteQuarn)->Name("packed record/quarn/write");
BENCHMARK(WriteSnprintf)->Name("packed record/snprintf/write");
BENCHMARK(WriteToChars)->Name("packed record/std::to_chars by hand/write");
BENCHMARK(ReadQuarn)->Name("packed record/quarn/read");
BENCHMARK(ReadSscanf)->Name("packed record/sscanf/read");
BENCHMARK(ReadFromChars)->Name("packed record/std::from_chars by hand/read");

} // namespace
