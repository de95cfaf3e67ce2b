// CRC-32 of buffers of 16 bytes to 64 MiB, and what it takes to read them at all.
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>
#ifdef QUARN_HAVE_LIBDEFLATE
#include <libdeflate.h>
#endif
#ifdef QUARN_HAVE_ISAL
#include <isa-l/crc.h>
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

#ifdef QUARN_HAVE_ISAL
std::uint32_t Isal32(Bytes const& bytes)
{
    return ::crc32_gzip_refl(0, bytes.data(), bytes.size());
}
#endif

using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

Tables MakeTables()
{
    Tables tables{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t reg = i;
        for (int bit = 0; bit < 8; ++bit) {
            reg = (reg >> 1U) ^ ((reg & 1U) != 0 ? 0xEDB88320U : 0U);
        }
        tables[0][i] = reg;
    }
    for (std::size_t i = 0; i < 256; ++i) {
        for (std::size_t k = 1; k < tables.size(); ++k) {
            tables[k][i] = tables[0][tables[k - 1][i] & 0xFFU] ^ (tables[k - 1][i] >> 8U);
        }
    }
    return tables;
}

Tables const tables = MakeTables();

std::uint32_t ByteTable(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        reg = tables[0][(reg ^ data[i]) & 0xFFU] ^ (reg >> 8U);
    }
    return reg;
}

std::uint32_t ByteTable32(Bytes const& bytes)
{
    return ~ByteTable(0xFFFFFFFFU, bytes.data(), bytes.size());
}

std::uint32_t SlicingBy8(Bytes const& bytes)
{
    std::uint32_t reg = 0xFFFFFFFFU;
    std::size_t at = 0;
    for (; bytes.size() - at >= 8; at += 8) {
        std::uint32_t words[2];
        std::memcpy(words, bytes.data() + at, sizeof words);
        words[0] ^= reg;
        reg = tables[7][words[0] & 0xFFU] ^ tables[6][words[0] >> 8U & 0xFFU] ^
              tables[5][words[0] >> 16U & 0xFFU] ^ tables[4][words[0] >> 24U] ^ tables[3][words[1] & 0xFFU] ^
              tables[2][words[1] >> 8U & 0xFFU] ^ tables[1][words[1] >> 16U & 0xFFU] ^
              tables[0][words[1] >> 24U];
    }
    return ~ByteTable(reg, bytes.data() + at, bytes.size() - at);
}

// The limit: the sum of the buffer's words, with the widest vectors that the processor has.
__attribute__((target_clones("avx512f", "avx2", "default"), optimize("O3"))) std::uint64_t
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
#ifdef QUARN_HAVE_ISAL
BENCHMARK(Crc<Isal32>)->Name("crc32/ISA-L")->Apply(Sizes);
#endif
BENCHMARK(Crc<SlicingBy8>)->Name("crc32/slicing-by-8")->Apply(Sizes);
BENCHMARK(Crc<ByteTable32>)->Name("crc32/byte table")->Apply(Sizes);
BENCHMARK(VectorSum)->Name("crc32/limit: vector sum")->Apply(Sizes);

} // namespace
