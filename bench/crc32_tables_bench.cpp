// CRC-32 as the library computes it on a processor without carry-less multiplication, whatever this one has.
#include "quarn/stream/crc32_update.h"

#include "bench/crc32_bench.h"

namespace {

using Bench::Bytes;

void Quarn(benchmark::State& state)
{
    Bench::MeasureCrc(state, [](Bytes const& bytes) {
        return ~Quarn::detail::Crc32Sliced(0xFFFFFFFFU, bytes.data(), bytes.size());
    });
}

void Zlib(benchmark::State& state)
{
    Bench::MeasureCrc(state, [](Bytes const& bytes) { return ::crc32_z(0, bytes.data(), bytes.size()); });
}

void SlicingBy8(benchmark::State& state)
{
    Bench::MeasureCrc(state, [](Bytes const& bytes) {
        return ~Bench::SlicingBy8(0xFFFFFFFFU, bytes.data(), bytes.size());
    });
}

BENCHMARK(Quarn)->Name("crc32 by tables/quarn")->Arg(16)->Arg(1024)->Arg(65536);
BENCHMARK(Zlib)->Name("crc32 by tables/zlib")->Arg(16)->Arg(1024)->Arg(65536);
BENCHMARK(SlicingBy8)->Name("crc32 by tables/slicing-by-8")->Arg(16)->Arg(1024)->Arg(65536);

} // namespace
