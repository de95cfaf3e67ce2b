#include "quarn/stream/crc32_update.h"

#include "quarn/stream/crc32.h"

#include <array>
#include <atomic>
#include <bit>

#include <string.h>

namespace Quarn::detail {

namespace {

using Tables = std::array<std::array<std::uint32_t, 256>, 16>;

constexpr std::uint32_t ReflectedPolynomial = 0xEDB88320;

// Table 0 is the standard reflected table; table k advances an entry of table 0 by k more zero bytes.
constexpr Tables MakeTables()
{
    Tables tables{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t reg = i;
        for (int bit = 0; bit < 8; ++bit) {
            reg = (reg >> 1U) ^ ((reg & 1U) != 0 ? ReflectedPolynomial : 0U);
        }
        tables[0][i] = reg;
    }
    for (std::size_t k = 1; k < tables.size(); ++k) {
        for (std::size_t i = 0; i < 256; ++i) {
            std::uint32_t const before = tables[k - 1][i];
            tables[k][i] = tables[0][before & 0xFFU] ^ (before >> 8U);
        }
    }
    return tables;
}

constexpr Tables ByteTables = MakeTables();

static_assert(ByteTables[0][1] == 0x77073096 && ByteTables[0][128] == 0xEDB88320 &&
              ByteTables[0][255] == 0x2D02EF8D);

std::uint32_t LoadLittleEndian32(unsigned char const* p)
{
    static_assert(std::endian::native == std::endian::little);
    std::uint32_t word = 0;
    ::memcpy(&word, p, sizeof word);
    return word;
}

// Four bytes that `behind` more bytes of the same step follow.
std::uint32_t Advance(std::uint32_t word, std::size_t behind)
{
    return ByteTables[behind + 3][word & 0xFFU] ^ ByteTables[behind + 2][word >> 8U & 0xFFU] ^
           ByteTables[behind + 1][word >> 16U & 0xFFU] ^ ByteTables[behind][word >> 24U];
}

std::uint32_t UpdateForTheFirstTime(std::uint32_t reg, unsigned char const* data, std::size_t n);

// Any thread may find out; all find the same.
constinit std::atomic<Crc32Function> g_best = UpdateForTheFirstTime;

std::uint32_t UpdateForTheFirstTime(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    Crc32Function const best = HasVectorCarrylessMultiply() ? Crc32VectorFolding
                               : HasCarrylessMultiply()     ? Crc32Folding
                                                            : Crc32Sliced;
    g_best.store(best, std::memory_order_relaxed);
    return best(reg, data, n);
}

} // namespace

std::uint32_t Crc32Step(std::uint32_t reg, unsigned char byte)
{
    return ByteTables[0][(reg ^ byte) & 0xFFU] ^ (reg >> 8U);
}

std::uint32_t Crc32Plain(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        reg = Crc32Step(reg, data[i]);
    }
    return reg;
}

std::uint32_t Crc32Sliced(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    // What does not wait for the register of the step before comes first.
    for (; n >= 16; n -= 16, data += 16) {
        std::uint32_t const rest = Advance(LoadLittleEndian32(data + 12), 0) ^
                                   Advance(LoadLittleEndian32(data + 8), 4) ^
                                   Advance(LoadLittleEndian32(data + 4), 8);
        reg = Advance(LoadLittleEndian32(data) ^ reg, 12) ^ rest;
    }
    if (n >= 8) {
        reg = Advance(LoadLittleEndian32(data) ^ reg, 4) ^ Advance(LoadLittleEndian32(data + 4), 0);
        n -= 8;
        data += 8;
    }
    return Crc32Plain(reg, data, n);
}

std::uint32_t Crc32Update(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    // Below one block there is nothing to fold.
    constexpr std::size_t shortInput = 16;
    return n < shortInput ? Crc32Sliced(reg, data, n) : g_best.load(std::memory_order_relaxed)(reg, data, n);
}

} // namespace Quarn::detail
