// CRC-32 of buffers of 16 bytes to 64 MiB.
#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>
#ifdef QUARN_HAVE_LIBDEFLATE
#include <libdeflate.h>
#endif

#include "quarn/stream/crc32.h"

namespace {

using Bytes = std::vector<unsigned char>;

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

std::uint32_t Table32(Bytes const& bytes)
{
    static std::array<std::uint32_t, 256> const table = [] {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t reg = i;
            for (int bit = 0; bit < 8; ++bit) {
                reg = (reg >> 1U) ^ ((reg & 1U) != 0 ? 0xEDB88320U : 0U);
            }
            entries[i] = reg;
        }
        return entries;
    }();
    std::uint32_t reg = 0xFFFFFFFFU;
    for (unsigned char const byte : bytes) {
        reg = table[(reg ^ byte) & 0xFFU] ^ (reg >> 8U);
    }
    return ~reg;
}

template<std::uint32_t (*Function)(Bytes const&)>
void Crc(benchmark::State& state)
{
    Bytes bytes(static_cast<std::size_t>(state.range(0)));
    std::mt19937 random(1);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    if (Function(bytes) != Zlib32(bytes)) {
        state.SkipWithError("wrong checksum");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes.data());
        benchmark::DoNotOptimize(Function(bytes));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
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
BENCHMARK(Crc<Table32>)->Name("crc32/byte table")->Apply(Sizes);

} // namespace
