#include "quarn/units/unit_enumerators.h"

namespace Quarn {

namespace {

constexpr auto g_end = static_cast<Distance<float>::Unit>(-1);
constexpr int g_distanceUnits = Distance<float>::Unknown; // that are one
constexpr int g_timeUnits = 8;

// The unit of a list of two.
Distance<float>::Unit OneOfTwo(int index, Distance<float>::Unit first, Distance<float>::Unit second)
{
    return index == 0 ? first : index == 1 ? second : g_end;
}

} // namespace

DistanceUnitEnumerator::~DistanceUnitEnumerator() = default;

VelocityUnitEnumerator::~VelocityUnitEnumerator() = default;

Distance<float>::Unit DistanceUnitEnumerator::Enumerate(int index)
{
    return index <= g_distanceUnits ? static_cast<Distance<float>::Unit>(index) : g_end;
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
    if (index / g_timeUnits >= g_distanceUnits) {
        return {g_end, -1};
    }
    return {static_cast<Distance<float>::Unit>(index / g_timeUnits), index % g_timeUnits};
}

Velocity<float>::Unit VelocityUnitEnumerator1::Enumerate(int index)
{
    Distance<float>::Unit const unit = OneOfTwo(index, Distance<float>::Foot, Distance<float>::Meter);
    return {unit, unit == g_end ? -1 : 0};
}

} // namespace Quarn
