// Each way of the CRC-32 update against the plain table, whichever this processor would choose.
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
        for (std::size_t n = 0; n < 1100; ++n) {
            for (std::size_t offset = 0; offset < 2; ++offset) {
                ASSERT_EQ(update(reg, bytes.data() + offset, n), Crc32Plain(reg, bytes.data() + offset, n))
                    << n << " bytes from " << offset;
            }
        }
        for (std::size_t n = 65000; n < 65100; ++n) {
            ASSERT_EQ(update(reg, bytes.data() + 1, n), Crc32Plain(reg, bytes.data() + 1, n))
                << n << " bytes";
        }
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
    ExpectEqualToPlain(Crc32Folding() != nullptr ? Crc32Folding() : Crc32Sliced);
}

} // namespace
