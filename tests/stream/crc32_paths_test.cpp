// Each way of the CRC-32 update against the plain table, whichever this processor would choose.
#include "quarn/stream/crc32.h"
#include "quarn/stream/crc32_fold.h"
#include "quarn/stream/crc32_update.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace Quarn::detail;

std::vector<unsigned char> RandomBytes(std::size_t count)
{
    std::mt19937 random(4);
    std::vector<unsigned char> bytes(count);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    return bytes;
}

void ExpectEqualToPlain(Crc32Function update)
{
    std::vector<unsigned char> const bytes = RandomBytes(70000);
    for (std::uint32_t const reg : {0xFFFFFFFFU, 0U, 0x12345678U}) {
        for (std::size_t offset = 0; offset < 2; ++offset) {
            unsigned char const* const from = bytes.data() + offset;
            std::uint32_t plain = reg;
            for (std::size_t n = 0; n < 1100; ++n) {
                ASSERT_EQ(update(reg, from, n), plain) << n << " bytes from " << offset;
                plain = Crc32Step(plain, from[n]);
            }
        }
        std::uint32_t plain = Crc32Plain(reg, bytes.data() + 1, 65000);
        for (std::size_t n = 65000; n < 65100; ++n) {
            ASSERT_EQ(update(reg, bytes.data() + 1, n), plain) << n << " bytes";
            plain = Crc32Step(plain, bytes[1 + n]);
        }
    }
    // In two parts, cut anywhere, from any place in a line of memory.
    std::uint32_t const whole = Crc32Plain(0xFFFFFFFFU, bytes.data() + 7, 3000);
    for (std::size_t cut = 0; cut <= 3000; cut += 13) {
        std::uint32_t const first = update(0xFFFFFFFFU, bytes.data() + 7, cut);
        ASSERT_EQ(update(first, bytes.data() + 7 + cut, 3000 - cut), whole) << "cut at " << cut;
    }
    for (std::size_t offset = 0; offset < 64; ++offset) {
        unsigned char const* const from = bytes.data() + offset;
        ASSERT_EQ(update(0, from, 1024), Crc32Plain(0, from, 1024)) << "from " << offset;
    }
}

TEST(Crc32Paths, SlicedEqualsThePlainTable)
{
    ExpectEqualToPlain(Crc32Sliced);
}

TEST(Crc32Paths, TheChosenPathEqualsThePlainTable)
{
    ExpectEqualToPlain(Crc32Update);
}

TEST(Crc32Paths, FoldingEqualsThePlainTableWhereTheProcessorHasIt)
{
    ExpectEqualToPlain(HasCarrylessMultiply() ? Crc32Folding : Crc32Sliced);
}

TEST(Crc32Paths, VectorFoldingEqualsThePlainTableWhereTheProcessorHasIt)
{
    if (!HasVectorCarrylessMultiply()) {
        GTEST_SKIP() << "not on this processor; see crc32_vector_test.cpp";
    }
    ExpectEqualToPlain(Crc32VectorFolding);
}

// The remainder of x^exponent by the polynomial, by the register that a byte-wise CRC would step through.
std::uint64_t ReflectedRemainder(unsigned exponent)
{
    std::uint32_t reg = 0x80000000U; // 1, reflected
    for (unsigned i = 0; i < exponent; ++i) {
        reg = (reg >> 1U) ^ ((reg & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return std::uint64_t{reg} << 1U;
}

TEST(Crc32Paths, FoldConstantsAreRemaindersOfPowersOfX)
{
    for (unsigned blocks = 1; blocks < MaxFoldBlocks; ++blocks) {
        FoldPair const pair = FoldsToTheLast[MaxFoldBlocks - 1 - blocks];
        EXPECT_EQ(pair.low, ReflectedRemainder(128 * blocks + 32)) << blocks;
        EXPECT_EQ(pair.high, ReflectedRemainder(128 * blocks - 32)) << blocks;
    }
    EXPECT_EQ(FoldsToTheLast.back().low, 0);
    EXPECT_EQ(FoldsToTheLast.back().high, 0);
    for (unsigned const bits : {128U, 512U, 1024U, 2048U, 4096U}) {
        EXPECT_EQ(FoldBy(bits).low, ReflectedRemainder(bits + 32)) << bits;
        EXPECT_EQ(FoldBy(bits).high, ReflectedRemainder(bits - 32)) << bits;
    }
    EXPECT_EQ(FoldTo64, ReflectedRemainder(64));
}

// The quotient of x^64 by the polynomial, bit by bit from the highest power down.
TEST(Crc32Paths, BarrettConstantIsTheQuotientOfX64)
{
    std::uint64_t const plain = 0x104C11DB7; // highest power first
    std::uint64_t quotient = 0;
    std::uint64_t remainder = std::uint64_t{1} << 32U; // x^64 with the lower 32 bits still to come down
    for (int bit = 0; bit <= 32; ++bit) {
        bool const divides = (remainder >> 32U & 1U) != 0;
        quotient = quotient << 1U | (divides ? 1U : 0U);
        remainder = (remainder ^ (divides ? plain : 0U)) << 1U;
    }
    std::uint64_t reflectedQuotient = 0;
    std::uint64_t reflectedPolynomial = 0;
    for (unsigned bit = 0; bit <= 32; ++bit) {
        reflectedQuotient |= (quotient >> bit & 1U) << (32U - bit);
        reflectedPolynomial |= (plain >> bit & 1U) << (32U - bit);
    }
    EXPECT_EQ(Barrett, reflectedQuotient);
    EXPECT_EQ(Polynomial, reflectedPolynomial);
}

} // namespace
