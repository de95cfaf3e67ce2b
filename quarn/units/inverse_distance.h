// Quarn::InverseDistance: a number per length, such as lines per millimeter, in single precision. It can be
// listed; it has no form of its own on a stream. A plain value; one object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"
#include "quarn/units/distance.h"

#include <concepts>

namespace Quarn {

// Only InverseDistance<float> exists.
template<std::same_as<float> T>
struct InverseDistance
{
    typename Distance<T>::Unit unit = Distance<T>::Unknown; // of the length
    T value = 0;                                            // how many to one of the unit
};

extern template struct QUARN_API InverseDistance<float>;

// In dump mode the label in a line of its own, then the lines "Value=%f" and "Units=%d", no further in than
// the depth says. In binary mode the value and the unit alone, 4 bytes each.
QUARN_API ostream& dump(ostream& stream, string const& label, InverseDistance<float> const& inverse);

} // namespace Quarn
