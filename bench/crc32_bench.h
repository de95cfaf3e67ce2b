// The CRC-32 by tables that the library's own is measured beside, and how each is measured.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>

namespace Bench {

using Bytes = std::vector<unsigned char>;
using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

inline Tables MakeTables()
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

inline Tables const tables = MakeTables();

inline std::uint32_t ByteTable(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        reg = tables[0][(reg ^ data[i]) & 0xFFU] ^ (reg >> 8U);
    }
    return reg;
}

inline std::uint32_t SlicingBy8(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    for (; n >= 8; n -= 8, data += 8) {
        std::uint32_t words[2];
        std::memcpy(words, data, sizeof words);
        words[0] ^= reg;
        reg = tables[7][words[0] & 0xFFU] ^ tables[6][words[0] >> 8U & 0xFFU] ^
              tables[5][words[0] >> 16U & 0xFFU] ^ tables[4][words[0] >> 24U] ^ tables[3][words[1] & 0xFFU] ^
              tables[2][words[1] >> 8U & 0xFFU] ^ tables[1][words[1] >> 16U & 0xFFU] ^
              tables[0][words[1] >> 24U];
    }
    return ByteTable(reg, data, n);
}

// Measures `crc(bytes)` of as many random bytes as the benchmark's argument says.
template<typename Crc>
void MeasureCrc(benchmark::State& state, Crc crc)
{
    Bytes bytes(static_cast<std::size_t>(state.range(0)));
    std::mt19937 random(1);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    if (crc(bytes) != ::crc32_z(0, bytes.data(), bytes.size())) {
        state.SkipWithError("wrong checksum");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes.data());
        benchmark::DoNotOptimize(crc(bytes));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

} // namespace Bench
