// printf-style formatting into a fresh string, beside the C library into a stack buffer plus an assignment,
// and beside the printf forms of two formatting libraries.
#include "quarn/text/string.h"

#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>

#if defined(QUARN_HAVE_FMT)
#include <fmt/printf.h>
#endif
#if defined(QUARN_HAVE_ABSL)
#include <absl/strings/str_format.h>
#endif

namespace {

constexpr std::size_t stackSize = 512;

template<typename Make>
void Run(benchmark::State& state, Make make)
{
    for (auto _ : state) {
        auto const text = make();
        benchmark::DoNotOptimize(text.data());
    }
}

std::string const g_hundred(100, 'x');

#define QUARN_CASE(id, shown, format, ...)                                                                   \
    BENCHMARK_CAPTURE(Run, quarn_##id, [] {                                                                  \
        Quarn::string text;                                                                                  \
        text.Format(format, __VA_ARGS__);                                                                    \
        return text;                                                                                         \
    })->Name("format/quarn/" shown)
#define SNPRINTF_CASE(id, shown, format, ...)                                                                \
    BENCHMARK_CAPTURE(Run, snprintf_##id, [] {                                                               \
        char buffer[stackSize];                                                                              \
        std::snprintf(buffer, sizeof buffer, format, __VA_ARGS__);                                           \
        std::string text;                                                                                    \
        text = buffer;                                                                                       \
        return text;                                                                                         \
    })->Name("format/snprintf + assign/" shown)
#if defined(QUARN_HAVE_FMT)
#define FMT_CASE(id, shown, format, ...)                                                                     \
    BENCHMARK_CAPTURE(Run, fmt_##id, [] {                                                                    \
        return fmt::sprintf(format, __VA_ARGS__);                                                            \
    })->Name("format/fmt::sprintf/" shown)
#else
#define FMT_CASE(id, shown, format, ...) static_assert(true)
#endif
#if defined(QUARN_HAVE_ABSL)
#define ABSL_CASE(id, shown, format, ...)                                                                    \
    BENCHMARK_CAPTURE(Run, absl_##id, [] {                                                                   \
        return absl::StrFormat(format, __VA_ARGS__);                                                         \
    })->Name("format/absl::StrFormat/" shown)
#else
#define ABSL_CASE(id, shown, format, ...) static_assert(true)
#endif

#define FORMAT_CASE(id, shown, format, ...)                                                                  \
    QUARN_CASE(id, shown, format, __VA_ARGS__);                                                              \
    SNPRINTF_CASE(id, shown, format, __VA_ARGS__);                                                           \
    FMT_CASE(id, shown, format, __VA_ARGS__);                                                                \
    ABSL_CASE(id, shown, format, __VA_ARGS__)

FORMAT_CASE(d, "%d", "%d", 123456);
FORMAT_CASE(sd, "%s=%d\\n", "%s=%d\n", "Count", 123456);
FORMAT_CASE(time, "%02d:%02d:%02d", "%02d:%02d:%02d", 7, 8, 59);
FORMAT_CASE(hex, "0x%08lx", "0x%08lx", 0xABCDEFUL);
FORMAT_CASE(f, "%f", "%f", 1234.56789);
FORMAT_CASE(f3, "%.3f", "%.3f", 1234.56789);
FORMAT_CASE(s100, "%s of 100", "%s", g_hundred.c_str());

} // namespace
