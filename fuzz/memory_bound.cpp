#include "fuzz/memory_bound.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

namespace {

// The readings of one reader that took most: of all, and in proportion to their bounds.
struct Used
{
    char const* reader;
    std::size_t fixed;
    std::size_t perByte;
    std::size_t most;
    std::size_t mostSize;
    std::size_t tightest;
    std::size_t tightestSize;
};

constexpr std::size_t MaxReaders = 32;
Used g_used[MaxReaders]; // a table of its own: nothing is allocated for the watching

Used& Find(MemoryBound const& bound)
{
    Used* used = g_used;
    while (used->reader != nullptr && used->reader != bound.reader) {
        if (++used == g_used + MaxReaders) {
            std::abort();
        }
    }
    used->reader = bound.reader;
    used->fixed = bound.fixed;
    used->perByte = bound.perByte;
    return *used;
}

double Share(MemoryBound const& bound, std::size_t size, std::size_t peak)
{
    return static_cast<double>(peak) / static_cast<double>(bound.fixed + bound.perByte * size);
}

} // namespace

void CheckPeak(MemoryBound const& bound, std::size_t size, std::size_t peak)
{
    if (peak > bound.fixed + bound.perByte * size) {
        std::fprintf(stderr, "%s: %zu bytes of memory for an input of %zu, more than %zu + %zu for each\n",
                     bound.reader, peak, size, bound.fixed, bound.perByte);
        std::exit(1);
    }
    Used& used = Find(bound);
    if (peak >= used.most) {
        used.most = peak;
        used.mostSize = size;
    }
    if (Share(bound, size, peak) >= Share(bound, used.tightestSize, used.tightest)) {
        used.tightest = peak;
        used.tightestSize = size;
    }
}

void PrintPeaks()
{
    for (Used const& used : g_used) {
        if (used.reader != nullptr) {
            std::printf(
                "%s: at most %zu bytes for an input of %zu, closest to the bound of %zu + %zu for each "
                "byte %zu for %zu\n",
                used.reader, used.most, used.mostSize, used.fixed, used.perByte, used.tightest,
                used.tightestSize);
        }
    }
}

} // namespace fuzz
