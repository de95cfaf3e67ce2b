// The CRC-32 register update behind Quarn::CRC32, in several speeds with one result. Which one Crc32Update
// (crc32.h) takes is decided once per process from what the processor has.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Quarn::detail {

using Crc32Function = std::uint32_t (*)(std::uint32_t reg, unsigned char const* data, std::size_t n);

// One byte, by the reflected table.
std::uint32_t Crc32Step(std::uint32_t reg, unsigned char byte);

// The plain definition: one table step a byte. Every other path is tested against it.
std::uint32_t Crc32Plain(std::uint32_t reg, unsigned char const* data, std::size_t n);

// Sixteen bytes at a time by sixteen tables, on any processor: "slicing-by-8" (M. Kounavis and F. Berry,
// 2005) with twice the tables.
std::uint32_t Crc32Sliced(std::uint32_t reg, unsigned char const* data, std::size_t n);

// By the carry-less multiplication of 64 bits (crc32_clmul.cpp), on processors that have it, and by that of
// whole vectors (crc32_vector.cpp).
bool HasCarrylessMultiply();
std::uint32_t Crc32Folding(std::uint32_t reg, unsigned char const* data, std::size_t n);
bool HasVectorCarrylessMultiply();
std::uint32_t Crc32VectorFolding(std::uint32_t reg, unsigned char const* data, std::size_t n);

} // namespace Quarn::detail
