// The units that a user interface offers, one list a class. A caller asks for index 0, 1, 2 and so on up to
// the end marker, -1 in place of a distance unit. The objects have no state; any thread may ask.
//
//     Quarn::MediumDistanceUnitEnumerator units;
//     for (int i = 0; units.Enumerate(i) != -1; ++i) {
//         list.push_back(Win32Quarn::GetUnitsName(units.Enumerate(i)));   // meter, foot
//     }
#pragma once

#include "quarn/export.h"
#include "quarn/units/distance.h"
#include "quarn/units/velocity.h"

namespace Quarn {

// All of them, the unknown unit included, each at its own number. Below 0 the number itself.
class QUARN_API DistanceUnitEnumerator
{
public:
    DistanceUnitEnumerator() = default;
    DistanceUnitEnumerator(DistanceUnitEnumerator const& other) = default;
    DistanceUnitEnumerator& operator=(DistanceUnitEnumerator const& other) = default;

    // The unit at an index of the list.
    virtual Distance<float>::Unit Enumerate(int index);

    virtual ~DistanceUnitEnumerator();
};

// Kilometer, mile. In these three every index but those of the units gives the end marker.
class QUARN_API LargeDistanceUnitEnumerator : public DistanceUnitEnumerator
{
public:
    Distance<float>::Unit Enumerate(int index) override;
};

// Meter, foot.
class QUARN_API MediumDistanceUnitEnumerator : public DistanceUnitEnumerator
{
public:
    Distance<float>::Unit Enumerate(int index) override;
};

// Millimeter, inch.
class QUARN_API SmallDistanceUnitEnumerator : public DistanceUnitEnumerator
{
public:
    Distance<float>::Unit Enumerate(int index) override;
};

// Every distance unit but the unknown one, with each of the eight time units. The end marker has -1 as its
// time unit too. Below 0 what division and remainder by 8 give.
class QUARN_API VelocityUnitEnumerator
{
public:
    VelocityUnitEnumerator() = default;
    VelocityUnitEnumerator(VelocityUnitEnumerator const& other) = default;
    VelocityUnitEnumerator& operator=(VelocityUnitEnumerator const& other) = default;

    // The unit at an index of the list.
    virtual Velocity<float>::Unit Enumerate(int index);

    virtual ~VelocityUnitEnumerator();
};

// Feet and meters, both per time unit 0; every other index gives the end marker.
class QUARN_API VelocityUnitEnumerator1 : public VelocityUnitEnumerator
{
public:
    Velocity<float>::Unit Enumerate(int index) override;
};

} // namespace Quarn
