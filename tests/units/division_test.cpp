// Distances, velocities and intervals: their layout, and what division and multiplication make of them.
#include "quarn/units/distance.h"
#include "quarn/units/dtime.h"
#include "quarn/units/inverse_distance.h"
#include "quarn/units/velocity.h"
#include "quarn/units/volume.h"

#include "tests/units/unit_of.h"

#include <bit>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Distance = Quarn::Distance<float>;
using DTime = Quarn::DTime<float>;
using InverseDistance = Quarn::InverseDistance<float>;
using Velocity = Quarn::Velocity<float>;

template<typename T>
concept EachExists = requires
{
    typename Quarn::Distance<T>;
    typename Quarn::InverseDistance<T>;
    typename Quarn::Velocity<T>;
    typename Quarn::DTime<T>;
};
template<typename T>
concept OneExists = requires
{
    typename Quarn::Distance<T>;
}
|| requires
{
    typename Quarn::InverseDistance<T>;
}
|| requires
{
    typename Quarn::Velocity<T>;
}
|| requires
{
    typename Quarn::DTime<T>;
};
static_assert(EachExists<float>);
static_assert(!OneExists<double> && !OneExists<int> && !OneExists<long double>);

static_assert(sizeof(Distance::Unit) == 4 && sizeof(Distance) == 8 && sizeof(InverseDistance) == 8 &&
              sizeof(DTime) == 8 && sizeof(Velocity::Unit) == 8 && sizeof(Velocity) == 12);
static_assert(offsetof(Distance, unit) == 0 && offsetof(Distance, value) == 4);
static_assert(offsetof(InverseDistance, unit) == 0 && offsetof(InverseDistance, value) == 4);
static_assert(offsetof(DTime, unit) == 0 && offsetof(DTime, value) == 4);
static_assert(offsetof(Velocity::Unit, distance) == 0 && offsetof(Velocity::Unit, time) == 4);
static_assert(offsetof(Velocity, unit) == 0 && offsetof(Velocity, value) == 8);
static_assert(std::is_trivially_copyable_v<Velocity> && std::is_empty_v<Quarn::Volume>);

static_assert(Distance::Meter == 0 && Distance::Centimeter == 1 && Distance::Millimeter == 2 &&
              Distance::Micron == 3 && Distance::Nanometer == 4 && Distance::Angstrom == 5 &&
              Distance::Kilometer == 6 && Distance::Mil == 7 && Distance::Inch == 8 && Distance::Foot == 9 &&
              Distance::Yard == 10 && Distance::Mile == 11 && Distance::Unknown == 12);

constexpr int UnitCount = 13;
// The length of each unit in units of 0.1 nanometers: whole numbers.
constexpr std::int64_t Lengths[UnitCount] = {
    10'000'000'000,
    100'000'000,
    10'000'000,
    10'000,
    10,
    1,
    10'000'000'000'000,
    254'000,
    254'000'000,
    3'048'000'000,
    9'144'000'000,
    16'093'440'000'000,
    10'000'000'000,
};

// The distance as a number of another unit.
float In(Distance::Unit unit, Distance const& distance)
{
    return (distance / Velocity{{unit, 0}, 1.0F}).value;
}

// Three roundings to float, and those of the two factors.
constexpr double SinglePrecision = 3 * 1.1920929e-7;

TEST(Quantity, HasNoUnitAtFirst)
{
    EXPECT_EQ(Distance().unit, Distance::Unknown);
    EXPECT_EQ(Distance().value, 0.0F);
    EXPECT_EQ(InverseDistance().unit, Distance::Unknown);
    EXPECT_EQ(InverseDistance().value, 0.0F);
    EXPECT_EQ(DTime().unit, 8);
    EXPECT_EQ(DTime().value, 0.0F);
    EXPECT_EQ(Velocity().unit.distance, Distance::Unknown);
    EXPECT_EQ(Velocity().unit.time, 8);
    EXPECT_EQ(Velocity().value, 0.0F);
}

TEST(Quantity, OfAVolumeIsNothing)
{
    Quarn::Volume first;
    Quarn::Volume const second;
    EXPECT_EQ(&(first = second), &first);
}

TEST(Division, GivesTheTimeInTheVelocitysTimeUnit)
{
    DTime const hour = Distance{Distance::Mile, 1.0F} / Velocity{{Distance::Mile, 5}, 60.0F};
    EXPECT_EQ(hour.unit, 5);
    EXPECT_EQ(hour.value, 1.0F / 60.0F);
    DTime const meters = Distance{Distance::Meter, 1609.344F} / Velocity{{Distance::Mile, 7}, 1.0F};
    EXPECT_EQ(meters.unit, 7);
    EXPECT_EQ(meters.value, 1.0F);
    DTime const feet = Distance{Distance::Foot, 3.0F} / Velocity{{Distance::Yard, 0}, 1.0F};
    EXPECT_EQ(feet.unit, 0);
    EXPECT_NEAR(feet.value, 1.0, SinglePrecision);
}

TEST(Division, TakesAnyNumberForATimeUnit)
{
    for (int const unit : {-1, 8, 9, INT_MIN, INT_MAX}) {
        EXPECT_EQ((Distance{Distance::Inch, 1.0F} / Velocity{{Distance::Inch, unit}, 1.0F}).unit, unit);
        EXPECT_EQ((Distance{Distance::Inch, 1.0F} / Velocity{{Distance::Inch, unit}, 0.0F}).unit, unit);
    }
}

TEST(Division, ConvertsBetweenEveryTwoUnitsAsTheirExactLengthsDo)
{
    for (int from = 0; from < UnitCount; ++from) {
        for (int to = 0; to < UnitCount; ++to) {
            for (float const value : {1.0F, -3.0F, 0.1F, 12345.678F}) {
                double const exact = static_cast<double>(value) * static_cast<double>(Lengths[from]) /
                                     static_cast<double>(Lengths[to]);
                EXPECT_NEAR(In(UnitOf(to), {UnitOf(from), value}), exact, std::abs(exact) * SinglePrecision)
                    << value << " of unit " << from << " in unit " << to;
            }
        }
    }
}

TEST(Division, LeavesTheValueAloneBetweenEqualUnits)
{
    for (int unit = -2; unit < UnitCount + 2; ++unit) {
        for (float const value : {0.1F, -7.7F, std::numeric_limits<float>::max(), 1.0e-45F}) {
            EXPECT_EQ(In(UnitOf(unit), {UnitOf(unit), value}), value) << unit;
        }
    }
}

TEST(Division, TakesANumberThatIsNoUnitForMeters)
{
    for (int const number : {12, 13, 14, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(In(Distance::Kilometer, {UnitOf(number), 500.0F}), 0.5F) << number;
        EXPECT_EQ(In(UnitOf(number), {Distance::Kilometer, 0.5F}), 500.0F) << number;
        EXPECT_EQ(In(UnitOf(number), {UnitOf(5000), 0.5F}), 0.5F) << number;
    }
}

TEST(Division, ByNothingIsDeliberatelyNoTimeAndNoError)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    float const infinity = std::numeric_limits<float>::infinity();
    for (float const speed : {0.0F, -0.0F, -60.0F, 1.0e-7F, 1.1920929e-7F, -infinity, nan}) {
        DTime const time = Distance{Distance::Meter, 100.0F} / Velocity{{Distance::Meter, 3}, speed};
        EXPECT_EQ(time.value, 0.0F) << speed;
        EXPECT_EQ(time.unit, 3) << speed;
    }
}

TEST(Division, ByLittleMoreThanNothingGivesATime)
{
    float const speed = std::nextafter(1.1920929e-7F, 1.0F);
    DTime const time = Distance{Distance::Meter, 100.0F} / Velocity{{Distance::Meter, 3}, speed};
    EXPECT_EQ(time.value, 100.0F / speed);
}

TEST(Division, IsInSinglePrecisionThroughout)
{
    float const infinity = std::numeric_limits<float>::infinity();
    // On the way through meters the number leaves the range, though the result would be in it.
    EXPECT_EQ(In(Distance::Mile, {Distance::Kilometer, 1.0e36F}), infinity);
    EXPECT_EQ(In(Distance::Mile, {Distance::Kilometer, -1.0e36F}), -infinity);
    EXPECT_EQ(In(Distance::Nanometer, {Distance::Angstrom, 1.0e-36F}), 0.0F);
    EXPECT_EQ((Distance{Distance::Meter, 1.0F} / Velocity{{Distance::Meter, 0}, infinity}).value, 0.0F);
    EXPECT_TRUE(std::isnan(In(Distance::Mile, {Distance::Meter, std::numeric_limits<float>::quiet_NaN()})));
}

// The factors to the nearest float, computed from the exact lengths; each step rounded to a float.
TEST(Division, RoundsEachStepForGeneratedValues)
{
    std::mt19937 random(61);
    std::uniform_real_distribution<float> values(-1.0e6F, 1.0e6F);
    std::uniform_real_distribution<float> speeds(0.001F, 1.0e4F);
    std::uniform_int_distribution<int> units(0, UnitCount - 1);
    for (int i = 0; i < 20000; ++i) {
        int const from = units(random);
        int const to = units(random);
        float const value = values(random);
        float const speed = speeds(random);
        auto const factor = [](int unit) {
            return static_cast<float>(static_cast<double>(Lengths[unit]) / 1e10);
        };
        float expected = value;
        if (from != to) {
            expected = expected * factor(from);
            expected = expected / factor(to);
        }
        expected = expected / speed;
        DTime const time = Distance{UnitOf(from), value} / Velocity{{UnitOf(to), 2}, speed};
        ASSERT_EQ(std::bit_cast<std::uint32_t>(time.value), std::bit_cast<std::uint32_t>(expected))
            << value << " of unit " << from << " at " << speed << " of unit " << to;
    }
}

TEST(Multiplication, DeliberatelyGivesTheTimesValueInTheUnknownUnit)
{
    for (float const speed : {0.0F, -2.0F, 60.0F}) {
        Distance const distance = Velocity{{Distance::Mile, 1}, speed} * DTime{4, 2.5F};
        EXPECT_EQ(distance.unit, Distance::Unknown);
        EXPECT_EQ(distance.value, 2.5F);
    }
    EXPECT_EQ((Velocity() * DTime()).value, 0.0F);
}

} // namespace
