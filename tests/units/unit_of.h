// A unit by its number, as a record stores it: one that no unit has, too.
#pragma once

#include "quarn/units/distance.h"

inline Quarn::Distance<float>::Unit UnitOf(int number)
{
    return static_cast<Quarn::Distance<float>::Unit>(number);
}
