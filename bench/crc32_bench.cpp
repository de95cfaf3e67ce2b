// CRC-32 of buffers of 16 bytes to 64 MiB, and what it takes to read them at all.
#include "bench/crc32_bench.h"

#include "quarn/stream/crc32.h"

#ifdef QUARN_HAVE_LIBDEFLATE
#include <libdeflate.h>
#endif
#ifdef QUARN_HAVE_ISAL
#include <isa-l/crc.h>
#endif

namespace {

using Bench::Bytes;

std::uint32_t Quarn32(Bytes const& bytes)
{
    Quarn::CRC32 crc;
    crc.Add(bytes.data(), static_cast<unsigned long>(bytes.size()));
    return static_cast<std::uint32_t>(crc.GetValue());
}

std::uint32_t Zlib32(Bytes const& bytes)
{
    return static_cast<std::uint32_t>(::crc32_z(0, bytes.data(), bytes.size()));
}

#ifdef QUARN_HAVE_LIBDEFLATE
std::uint32_t Libdeflate32(Bytes const& bytes)
{
    return ::libdeflate_crc32(0, bytes.data(), bytes.size());
}
#endif

#ifdef QUARN_HAVE_ISAL
std::uint32_t Isal32(Bytes const& bytes)
{
    return ::crc32_gzip_refl(0, bytes.data(), bytes.size());
}
#endif

std::uint32_t ByteTable32(Bytes const& bytes)
{
    return ~Bench::ByteTable(0xFFFFFFFFU, bytes.data(), bytes.size());
}

std::uint32_t SlicingBy8(Bytes const& bytes)
{
    return ~Bench::SlicingBy8(0xFFFFFFFFU, bytes.data(), bytes.size());
}

// The limit: the sum of the buffer's words, with the widest vectors that the processor has where the program
// format can choose between functions.
#ifdef __ELF__
__attribute__((target_clones("avx512f", "avx2", "default"), optimize("O3")))
#endif
std::uint64_t
SumOf(std::uint64_t const* words, std::size_t count)
{
    std::uint64_t sums[4] = {};
    std::size_t const quarter = count / 4;
    for (std::size_t i = 0; i < quarter; ++i) {
        for (std::size_t part = 0; part < 4; ++part) {
            sums[part] += words[i * 4 + part];
        }
    }
    return sums[0] + sums[1] + sums[2] + sums[3];
}

void VectorSum(benchmark::State& state)
{
    std::vector<std::uint64_t> const words(static_cast<std::size_t>(state.range(0)) / 8, 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(words.data());
        benchmark::DoNotOptimize(SumOf(words.data(), words.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

template<std::uint32_t (*Function)(Bytes const&)>
void Crc(benchmark::State& state)
{
    Bench::MeasureCrc(state, Function);
}

void Sizes(benchmark::internal::Benchmark* bench)
{
    for (long const size : {0L, 16L, 64L, 1024L, 65536L, 67108864L}) {
        bench->Arg(size);
    }
}

BENCHMARK(Crc<Quarn32>)->Name("crc32/quarn")->Apply(Sizes);
BENCHMARK(Crc<Zlib32>)->Name("crc32/zlib")->Apply(Sizes);
#ifdef QUARN_HAVE_LIBDEFLATE
BENCHMARK(Crc<Libdeflate32>)->Name("crc32/libdeflate")->Apply(Sizes);
#endif
#ifdef QUARN_HAVE_ISAL
BENCHMARK(Crc<Isal32>)->Name("crc32/ISA-L")->Apply(Sizes);
#endif
BENCHMARK(Crc<SlicingBy8>)->Name("crc32/slicing-by-8")->Apply(Sizes);
BENCHMARK(Crc<ByteTable32>)->Name("crc32/byte table")->Apply(Sizes);
BENCHMARK(VectorSum)->Name("crc32/limit: vector sum")->Apply(Sizes);

} // namespace
