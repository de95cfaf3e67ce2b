// printf-style formatting into a fresh string, beside the C library into a stack buffer plus an assignment.
#include "quarn/text/string.h"

#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>

namespace {

constexpr std::size_t stackSize = 512;

template<typename... Args>
void Quarn(benchmark::State& state, char const* format, Args... args)
{
    for (auto _ : state) {
        Quarn::string text;
        text.Format(format, args...);
        benchmark::DoNotOptimize(text.data());
    }
}

template<typename... Args>
void Snprintf(benchmark::State& state, char const* format, Args... args)
{
    for (auto _ : state) {
        char buffer[stackSize];
        std::snprintf(buffer, sizeof buffer, format, args...);
        std::string text;
        text = buffer;
        benchmark::DoNotOptimize(text.data());
    }
}

std::string const g_hundred(100, 'x');

BENCHMARK_CAPTURE(Quarn, d, "%d", 123456)->Name("format/quarn/%d");
BENCHMARK_CAPTURE(Snprintf, d, "%d", 123456)->Name("format/snprintf + assign/%d");
BENCHMARK_CAPTURE(Quarn, sd, "%s=%d\n", "Count", 123456)->Name("format/quarn/%s=%d\\n");
BENCHMARK_CAPTURE(Snprintf, sd, "%s=%d\n", "Count", 123456)->Name("format/snprintf + assign/%s=%d\\n");
BENCHMARK_CAPTURE(Quarn, time, "%02d:%02d:%02d", 7, 8, 59)->Name("format/quarn/%02d:%02d:%02d");
BENCHMARK_CAPTURE(Snprintf, time, "%02d:%02d:%02d", 7, 8, 59)
    ->Name("format/snprintf + assign/%02d:%02d:%02d");
BENCHMARK_CAPTURE(Quarn, hex, "0x%08lx", 0xABCDEFUL)->Name("format/quarn/0x%08lx");
BENCHMARK_CAPTURE(Snprintf, hex, "0x%08lx", 0xABCDEFUL)->Name("format/snprintf + assign/0x%08lx");
BENCHMARK_CAPTURE(Quarn, f, "%f", 1234.56789)->Name("format/quarn/%f");
BENCHMARK_CAPTURE(Snprintf, f, "%f", 1234.56789)->Name("format/snprintf + assign/%f");
BENCHMARK_CAPTURE(Quarn, s100, "%s", g_hundred.c_str())->Name("format/quarn/%s of 100");
BENCHMARK_CAPTURE(Snprintf, s100, "%s", g_hundred.c_str())->Name("format/snprintf + assign/%s of 100");

} // namespace
