#include "quarn/units/unit_enumerators.h"

namespace Quarn {

namespace {

constexpr auto EndMarker = static_cast<Distance<float>::Unit>(-1);
constexpr int DistanceUnits = Distance<float>::Unknown; // that are one
constexpr int TimeUnits = 8;

// The unit of a list of two.
Distance<float>::Unit OneOfTwo(int index, Distance<float>::Unit first, Distance<float>::Unit second)
{
    return index == 0 ? first : index == 1 ? second : EndMarker;
}

} // namespace

DistanceUnitEnumerator::~DistanceUnitEnumerator() = default;

VelocityUnitEnumerator::~VelocityUnitEnumerator() = default;

Distance<float>::Unit DistanceUnitEnumerator::Enumerate(int index)
{
    return index <= DistanceUnits ? static_cast<Distance<float>::Unit>(index) : EndMarker;
}

Distance<float>::Unit LargeDistanceUnitEnumerator::Enumerate(int index)
{
    return OneOfTwo(index, Distance<float>::Kilometer, Distance<float>::Mile);
}

Distance<float>::Unit MediumDistanceUnitEnumerator::Enumerate(int index)
{
    return OneOfTwo(index, Distance<float>::Meter, Distance<float>::Foot);
}

Distance<float>::Unit SmallDistanceUnitEnumerator::Enumerate(int index)
{
    return OneOfTwo(index, Distance<float>::Millimeter, Distance<float>::Inch);
}

Velocity<float>::Unit VelocityUnitEnumerator::Enumerate(int index)
{
    if (index / TimeUnits >= DistanceUnits) {
        return {EndMarker, -1};
    }
    return {static_cast<Distance<float>::Unit>(index / TimeUnits), index % TimeUnits};
}

Velocity<float>::Unit VelocityUnitEnumerator1::Enumerate(int index)
{
    Distance<float>::Unit const unit = OneOfTwo(index, Distance<float>::Foot, Distance<float>::Meter);
    return {unit, unit == EndMarker ? -1 : 0};
}

} // namespace Quarn
