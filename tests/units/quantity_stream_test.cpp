// Quantities on streams: stored and read, listed.
#include "quarn/stream/dump_indent.h"
#include "quarn/stream/dump_streams.h"
#include "quarn/units/distance.h"
#include "quarn/units/dtime.h"
#include "quarn/units/inverse_distance.h"
#include "quarn/units/velocity.h"
#include "quarn/units/volume.h"

#include "tests/stream/bytes.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"
#include "tests/units/unit_of.h"

#include <bit>
#include <climits>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Distance = Quarn::Distance<float>;
using DTime = Quarn::DTime<float>;
using InverseDistance = Quarn::InverseDistance<float>;
using Velocity = Quarn::Velocity<float>;

constexpr Distance Mile{Distance::Mile, 1.5F};
constexpr Velocity Speed{{Distance::Foot, 3}, -0.25F};
constexpr InverseDistance Lines{Distance::Millimeter, 1609.344F};

void ExpectSame(Distance const& left, Distance const& right)
{
    EXPECT_EQ(left.unit, right.unit);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(left.value), std::bit_cast<std::uint32_t>(right.value));
}

void ExpectSame(Velocity const& left, Velocity const& right)
{
    EXPECT_EQ(left.unit.distance, right.unit.distance);
    EXPECT_EQ(left.unit.time, right.unit.time);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(left.value), std::bit_cast<std::uint32_t>(right.value));
}

TEST(QuantityStream, WritesTheGoldenFile)
{
    RunLengthCompressor compressor;
    FakeOutput stream;
    stream.SetCompressor(&compressor);
    EXPECT_EQ(&(stream << Mile), &stream);
    EXPECT_EQ(&(stream << Speed), &stream);
    EXPECT_EQ(stream.Taken(), Golden("quantities.bin"));
    EXPECT_EQ(stream.Calls(), (std::vector<std::size_t>{4, 4, 4, 4, 4}));
    EXPECT_EQ(compressor.compressed, 0);
}

TEST(QuantityStream, ReadsTheGoldenFile)
{
    Source source(Golden("quantities.bin"));
    Quarn::memorystream& stream = source;
    Distance distance;
    Velocity velocity;
    EXPECT_EQ(&(stream >> distance), &stream);
    EXPECT_EQ(&(stream >> velocity), &stream);
    ExpectSame(distance, Mile);
    ExpectSame(velocity, Speed);
    EXPECT_EQ(stream.tellg(), stream.GetSize());
}

TEST(QuantityStream, TakesEightBytesForADistanceAndTwelveForAVelocity)
{
    Quarn::statstream stream;
    stream << Distance();
    EXPECT_EQ(stream.GetSize(), 8UL);
    stream << Velocity();
    EXPECT_EQ(stream.GetSize(), 20UL);
}

TEST(QuantityStream, CutShortAnywhereLeavesTheTargetAsItWas)
{
    Bytes const golden = Golden("quantities.bin");
    for (std::ptrdiff_t size = 0; size < 8; ++size) {
        FakeInput stream(Bytes(golden.begin(), golden.begin() + size));
        Distance distance{Distance::Inch, 7.0F};
        EXPECT_EQ(ThrownText([&] { stream >> distance; }), "Generic Read") << size;
        ExpectSame(distance, {Distance::Inch, 7.0F});
    }
    for (std::ptrdiff_t size = 0; size < 12; ++size) {
        Source source(Bytes(golden.begin() + 8, golden.begin() + 8 + size));
        Quarn::memorystream& stream = source;
        Velocity velocity{{Distance::Inch, 6}, 7.0F};
        EXPECT_EQ(ThrownText([&] { stream >> velocity; }), "Generic Read") << size;
        ExpectSame(velocity, {{Distance::Inch, 6}, 7.0F});
    }
}

TEST(QuantityStream, WhatDoesNotFitIsRefusedBehindWhatDid)
{
    FakeOutput distance(false, 6);
    EXPECT_EQ(ThrownText([&] { distance << Mile; }), "Generic Write");
    FakeOutput velocity(false, 11);
    EXPECT_EQ(ThrownText([&] { velocity << Speed; }), "Generic Write");
    EXPECT_EQ(velocity.Taken().size(), 11U);
}

TEST(QuantityStream, KeepsNumbersThatAreNoUnit)
{
    for (std::int32_t const number : {12, 13, 14, -1, INT_MIN, INT_MAX}) {
        Quarn::memorystream stream(20);
        stream << Distance{UnitOf(number), 1.0F} << Velocity{{UnitOf(number), number}, 1.0F};
        stream.seekg(0);
        Distance distance;
        Velocity velocity;
        stream >> distance >> velocity;
        ExpectSame(distance, {UnitOf(number), 1.0F});
        ExpectSame(velocity, {{UnitOf(number), number}, 1.0F});
    }
}

TEST(QuantityStream, BringsBackGeneratedQuantitiesBitByBit)
{
    std::mt19937 random(62);
    for (int i = 0; i < 2000; ++i) {
        Distance const distance{UnitOf(static_cast<std::int32_t>(random())),
                                std::bit_cast<float>(static_cast<std::uint32_t>(random()))};
        Velocity const velocity{{distance.unit, static_cast<std::int32_t>(random())}, distance.value};
        Quarn::memorystream stream(20);
        stream << velocity << distance;
        stream.seekg(0);
        Velocity velocityBack;
        Distance distanceBack;
        stream >> velocityBack >> distanceBack;
        ExpectSame(velocityBack, velocity);
        ExpectSame(distanceBack, distance);
    }
}

template<typename T>
concept Stores = requires(Quarn::ostream& stream, T const& value)
{
    stream << value;
};
template<typename T>
concept Lists = requires(Quarn::ostream& stream, T const& value)
{
    Quarn::dump(stream, "Label", value);
};
static_assert(Stores<Distance> && Stores<Velocity>);
static_assert(!Stores<InverseDistance> && !Stores<DTime> && !Stores<Quarn::Volume>);
static_assert(Lists<Distance> && Lists<InverseDistance> && Lists<Velocity>);
static_assert(!Lists<DTime> && !Lists<Quarn::Volume>);

// ---- listings

// One function for the record and its listing.
void Save(Quarn::ostream& stream)
{
    Quarn::dump(stream, "Mile", Mile);
    Quarn::dump(stream, "Speed", Speed);
    Quarn::DumpStreamIndent const indent(stream, 4);
    Quarn::dump(stream, "Lines", Lines);
    Quarn::dump(stream, "Nothing", Distance());
    Quarn::dump(stream, "Standstill", Velocity());
    Quarn::dump(stream, "End", Distance{UnitOf(-1), 0.0F});
}

std::string TextOf(Bytes const& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

TEST(QuantityDump, GivesTheGoldenListing)
{
    FakeOutput stream(true);
    Save(stream);
    EXPECT_EQ(TextOf(stream.Taken()), TextOf(Golden("quantities.txt")));
}

TEST(QuantityDump, OfADistanceDeliberatelyStoresTheLabelToo)
{
    FakeOutput stream;
    EXPECT_EQ(&Quarn::dump(stream, "Mile", Mile), &stream);
    EXPECT_EQ(stream.Taken(), Hex("FF FF FF FF 04 00 00 00 FB FF FF FF 4D 69 6C 65 "
                                  "00 00 C0 3F 0B 00 00 00"));
}

TEST(QuantityDump, OfTheOthersStoresTheFieldsAlone)
{
    FakeOutput velocity;
    EXPECT_EQ(&Quarn::dump(velocity, "Speed", Speed), &velocity);
    FakeOutput stored;
    stored << Speed;
    EXPECT_EQ(velocity.Taken(), stored.Taken());

    FakeOutput inverse;
    EXPECT_EQ(&Quarn::dump(inverse, "Lines", Lines), &inverse);
    EXPECT_EQ(inverse.Taken(), Hex("02 2B C9 44 02 00 00 00"));
}

TEST(QuantityDump, ShowsNumbersThatAreNoUnit)
{
    FakeOutput stream(true);
    Quarn::dump(stream, "", Velocity{{UnitOf(INT_MIN), INT_MAX}, 0.0F});
    EXPECT_EQ(TextOf(stream.Taken()), "\nValue=0.000000\nDistUnit=-2147483648\nTimeUnit=2147483647\n");
}

TEST(QuantityDump, TakesALabelOfAMebibyte)
{
    std::string const label(1U << 20U, 'x');
    FakeOutput stream(true);
    Quarn::dump(stream, label, Mile);
    EXPECT_EQ(TextOf(stream.Taken()), label + "\nValue=1.500000\nUnits=11\n");
}

} // namespace
