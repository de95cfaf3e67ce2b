// The lists of units, asked through their bases as a user interface does.
#include "quarn/units/unit_enumerators.h"

#include <climits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Distance = Quarn::Distance<float>;
using Velocity = Quarn::Velocity<float>;

// What a list offers up to its end marker.
std::vector<int> Offered(Quarn::DistanceUnitEnumerator&& units)
{
    std::vector<int> offered;
    for (int i = 0; units.Enumerate(i) != -1 && i < 1000; ++i) {
        offered.push_back(units.Enumerate(i));
    }
    return offered;
}

using Pairs = std::vector<std::pair<int, int>>;

Pairs Offered(Quarn::VelocityUnitEnumerator&& units)
{
    Pairs offered;
    for (int i = 0; units.Enumerate(i).distance != -1 && i < 1000; ++i) {
        Velocity::Unit const unit = units.Enumerate(i);
        offered.emplace_back(unit.distance, unit.time);
    }
    return offered;
}

TEST(UnitEnumerator, OfAllDistanceUnitsHasTheThirteenInOrder)
{
    EXPECT_EQ(Offered(Quarn::DistanceUnitEnumerator()),
              (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST(UnitEnumerator, OfLargeUnitsHasKilometerAndMile)
{
    EXPECT_EQ(Offered(Quarn::LargeDistanceUnitEnumerator()),
              (std::vector<int>{Distance::Kilometer, Distance::Mile}));
}

TEST(UnitEnumerator, OfMediumUnitsHasMeterAndFoot)
{
    EXPECT_EQ(Offered(Quarn::MediumDistanceUnitEnumerator()),
              (std::vector<int>{Distance::Meter, Distance::Foot}));
}

TEST(UnitEnumerator, OfSmallUnitsHasMillimeterAndInch)
{
    EXPECT_EQ(Offered(Quarn::SmallDistanceUnitEnumerator()),
              (std::vector<int>{Distance::Millimeter, Distance::Inch}));
}

TEST(UnitEnumerator, OfVelocitiesHasEachTimeUnitOfTheTwelveRealDistanceUnits)
{
    Pairs expected;
    for (int distance = 0; distance < 12; ++distance) {
        for (int time = 0; time < 8; ++time) {
            expected.emplace_back(distance, time);
        }
    }
    EXPECT_EQ(Offered(Quarn::VelocityUnitEnumerator()), expected);
    EXPECT_EQ(expected.size(), 96U);
}

TEST(UnitEnumerator, OfVelocities1HasFeetAndMeters)
{
    EXPECT_EQ(Offered(Quarn::VelocityUnitEnumerator1()), (Pairs{{Distance::Foot, 0}, {Distance::Meter, 0}}));
}

TEST(UnitEnumerator, BeyondTheListIsTheEndMarker)
{
    Quarn::DistanceUnitEnumerator all;
    Quarn::LargeDistanceUnitEnumerator large;
    Quarn::MediumDistanceUnitEnumerator medium;
    Quarn::SmallDistanceUnitEnumerator small;
    Quarn::VelocityUnitEnumerator velocities;
    Quarn::VelocityUnitEnumerator1 velocities1;
    for (int const index : {96, 97, 1000, INT_MAX}) {
        for (Quarn::DistanceUnitEnumerator* const units :
             std::initializer_list<Quarn::DistanceUnitEnumerator*>{&all, &large, &medium, &small}) {
            EXPECT_EQ(units->Enumerate(index), -1) << index;
        }
        EXPECT_EQ(velocities.Enumerate(index).distance, -1) << index;
        EXPECT_EQ(velocities.Enumerate(index).time, -1) << index;
        EXPECT_EQ(velocities1.Enumerate(index).distance, -1) << index;
    }
    EXPECT_EQ(all.Enumerate(13), -1);
    EXPECT_EQ(velocities1.Enumerate(2).time, -1);
}

TEST(UnitEnumerator, OfTwoUnitsHasNothingBelowItsStart)
{
    for (int const index : {-1, -2, INT_MIN}) {
        EXPECT_EQ(Quarn::LargeDistanceUnitEnumerator().Enumerate(index), -1) << index;
        EXPECT_EQ(Quarn::MediumDistanceUnitEnumerator().Enumerate(index), -1) << index;
        EXPECT_EQ(Quarn::SmallDistanceUnitEnumerator().Enumerate(index), -1) << index;
        EXPECT_EQ(Quarn::VelocityUnitEnumerator1().Enumerate(index).distance, -1) << index;
    }
}

TEST(UnitEnumerator, OfAllUnitsDeliberatelyCountsOnBelowItsStart)
{
    for (int const index : {-1, -2, -9, INT_MIN}) {
        EXPECT_EQ(Quarn::DistanceUnitEnumerator().Enumerate(index), index);
        Velocity::Unit const unit = Quarn::VelocityUnitEnumerator().Enumerate(index);
        EXPECT_EQ(unit.distance, index / 8);
        EXPECT_EQ(unit.time, index % 8);
    }
}

} // namespace
