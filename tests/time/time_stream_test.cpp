#include "quarn/stream/stat_stream.h"
#include "quarn/time/time.h"

#include "tests/stream/bytes.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Quarn::TIME;
using Quarn::Time;

static_assert(sizeof(TIME) == 8 && offsetof(TIME, High) == 0 && offsetof(TIME, Low) == 4);
static_assert(sizeof(Time) == 8 && std::is_trivially_copyable_v<Time>);

TIME Words(Time const& time)
{
    return time;
}

TEST(Time, IsTheFirstDayOfYearZeroByDefault)
{
    EXPECT_EQ(Words(Time()).High, 4224U);
    EXPECT_EQ(Words(Time()).Low, 0U);
}

TEST(Time, ConvertsToThePlainFormAndBack)
{
    Time const time = TIME{0xFFFFFFFF, 0x80000001};
    TIME const words = time;
    EXPECT_EQ(words.High, 0xFFFFFFFFU);
    EXPECT_EQ(words.Low, 0x80000001U);
}

TEST(TimeStream, WritesTheGoldenFile)
{
    RunLengthCompressor compressor;
    FakeOutput stream;
    stream.SetCompressor(&compressor);
    EXPECT_EQ(&(stream << Time() << Time(TIME{2147471324, 4022312935})), &stream);
    EXPECT_EQ(stream.Taken(), Golden("time.bin"));
    EXPECT_EQ(stream.Calls(), (std::vector<std::size_t>{4, 4, 4, 4}));
    EXPECT_EQ(compressor.compressed, 0);
}

TEST(TimeStream, ReadsTheGoldenFile)
{
    Source streamSource(Golden("time.bin"));
    Quarn::memorystream& stream = streamSource;
    Time first = TIME{1, 1};
    Time second;
    EXPECT_EQ(&(stream >> first >> second), &stream);
    EXPECT_EQ(Words(first).High, 4224U);
    EXPECT_EQ(Words(first).Low, 0U);
    EXPECT_EQ(Words(second).High, 2147471324U);
    EXPECT_EQ(Words(second).Low, 4022312935U);
    EXPECT_EQ(stream.tellg(), stream.GetSize());
}

TEST(TimeStream, CutShortLeavesTheTargetAsItWas)
{
    Source streamSource("01 00 00 00 02 00");
    Quarn::memorystream& stream = streamSource;
    Time time = TIME{7, 8};
    EXPECT_EQ(ThrownText([&] { stream >> time; }), "Generic Read");
    EXPECT_EQ(Words(time).High, 7U);
    EXPECT_EQ(Words(time).Low, 8U);
}

TEST(TimeStream, TakesEightBytes)
{
    Quarn::statstream stream;
    stream << Time();
    EXPECT_EQ(stream.GetSize(), 8UL);
}

} // namespace
