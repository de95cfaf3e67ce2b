#include "quarn/platform/message.h"
#include "quarn/stream/crc32.h"

#include <array>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::CRC32;

// The definition, bit by bit, independent of the library's tables.
unsigned long BitwiseCrc(std::string const& bytes)
{
    unsigned long reg = 0xFFFFFFFFUL;
    for (char const c : bytes) {
        reg ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) {
            reg = (reg >> 1U) ^ ((reg & 1U) != 0 ? 0xEDB88320UL : 0UL);
        }
    }
    return reg ^ 0xFFFFFFFFUL;
}

unsigned long CrcOf(std::string const& bytes)
{
    CRC32 crc;
    crc.Add(bytes.data(), static_cast<unsigned long>(bytes.size()));
    return crc.GetValue();
}

std::string RandomBytes(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    for (char& c : bytes) {
        c = static_cast<char>(random());
    }
    return bytes;
}

TEST(CRC32, OfNothingIsZero)
{
    CRC32 crc;
    EXPECT_EQ(crc.GetValue(), 0UL);
    crc.Add(nullptr, 0UL);
    crc.Add(Quarn::string());
    EXPECT_EQ(crc.GetValue(), 0UL);
}

TEST(CRC32, GivesThePublishedValues)
{
    struct Row
    {
        char const* text;
        unsigned long crc;
    };
    // Check values as zlib, PNG and other users of this CRC publish them.
    Row const rows[] = {
        {"123456789", 0xCBF43926UL},
        {"a", 0xE8B7BE43UL},
        {"abc", 0x352441C2UL},
        {"message digest", 0x20159D7FUL},
        {"abcdefghijklmnopqrstuvwxyz", 0x4C2750BDUL},
        {"The quick brown fox jumps over the lazy dog", 0x414FA339UL},
        {"IEND", 0xAE426082UL},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(CrcOf(row.text), row.crc) << row.text;
    }
}

TEST(CRC32, AgreesWithTheBitwiseDefinitionForEveryShortLengthAndAlignment)
{
    std::string const bytes = RandomBytes(700, 1);
    for (std::size_t offset = 0; offset < 3; ++offset) {
        for (std::size_t n = 0; n + offset <= 600; ++n) {
            std::string const part = bytes.substr(offset, n);
            ASSERT_EQ(CrcOf(part), BitwiseCrc(part)) << n << " bytes from " << offset;
        }
    }
}

TEST(CRC32, AgreesWithTheBitwiseDefinitionForEverySingleByte)
{
    for (int value = 0; value < 256; ++value) {
        std::string const one(1, static_cast<char>(value));
        CRC32 crc;
        crc.Add(static_cast<unsigned char>(value));
        EXPECT_EQ(crc.GetValue(), BitwiseCrc(one));
        EXPECT_EQ(CrcOf(one), BitwiseCrc(one));
    }
}

TEST(CRC32, SplitAnywhereEqualsTheWhole)
{
    std::string const bytes = RandomBytes(400, 2);
    unsigned long const whole = CrcOf(bytes);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        CRC32 crc;
        crc.Add(bytes.data(), static_cast<unsigned long>(cut));
        crc.Add(bytes.data() + cut, static_cast<unsigned long>(bytes.size() - cut));
        ASSERT_EQ(crc.GetValue(), whole) << "cut at " << cut;
    }
}

TEST(CRC32, AgreesWithTheBitwiseDefinitionForLongInput)
{
    std::string const bytes = RandomBytes(1000003, 3);
    EXPECT_EQ(CrcOf(bytes), BitwiseCrc(bytes));
}

TEST(CRC32, NumbersCountTheirBytesLeastSignificantFirst)
{
    CRC32 shortNumber;
    shortNumber.Add(static_cast<unsigned short>(0x3231));
    EXPECT_EQ(shortNumber.GetValue(), BitwiseCrc("12"));
    CRC32 intNumber;
    intNumber.Add(0x34333231U);
    EXPECT_EQ(intNumber.GetValue(), BitwiseCrc("1234"));
    CRC32 longNumber;
    longNumber.Add(0x34333231UL);
    EXPECT_EQ(longNumber.GetValue(), BitwiseCrc("1234"));
}

TEST(CRC32, TextCountsItsBytesWithoutLengthAndTerminator)
{
    CRC32 crc;
    crc.Add(Quarn::string("12\0"
                          "34",
                          5));
    EXPECT_EQ(crc.GetValue(), BitwiseCrc(std::string("12\0"
                                                     "34",
                                                     5)));
}

int g_reports = 0;

TEST(CRC32, ALongThatNeedsMoreThan32BitsIsReportedAndCut)
{
    if constexpr (sizeof(unsigned long) > 4) {
        Quarn::MessageHandler const before =
            Quarn::SetMessageHandler([](char const*, char const*) { ++g_reports; });
        g_reports = 0;
        CRC32 crc;
        crc.Add(static_cast<unsigned long>(0x134333231ULL));
        Quarn::SetMessageHandler(before);
        EXPECT_EQ(g_reports, 1);
        EXPECT_EQ(crc.GetValue(), BitwiseCrc("1234"));
    } else {
        CRC32 crc;
        crc.Add(0xFFFFFFFFUL);
        EXPECT_EQ(crc.GetValue(), BitwiseCrc("\xFF\xFF\xFF\xFF"));
    }
}

TEST(CRC32, ComparesAndAssignsByWhatWasAdded)
{
    CRC32 a;
    CRC32 b;
    EXPECT_TRUE(a == b);
    a.Add("xyz", 3UL);
    EXPECT_TRUE(a != b);
    b.Add("x", 1UL);
    b.Add("yz", 2UL);
    EXPECT_TRUE(a == b);
    CRC32 c;
    c = a;
    a.Add("more", 4UL);
    EXPECT_TRUE(c == b);
    EXPECT_FALSE(c == a);
}

TEST(CRC32, ClearStartsAgain)
{
    CRC32 crc;
    crc.Add("xyz", 3UL);
    crc.Clear();
    EXPECT_EQ(crc.GetValue(), 0UL);
    EXPECT_TRUE(crc == CRC32());
}

} // namespace
