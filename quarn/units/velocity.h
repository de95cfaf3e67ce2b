// Quarn::Velocity: a length per time with both units, in single precision, and the arithmetic of distances,
// velocities and intervals. No operation reports an error. A plain value; one object belongs to one thread at
// a time. On a stream: the value, the distance unit, the time unit, 4 bytes each, little-endian; in memory
// the units come first.
//
//     Quarn::Velocity<float> speed{{Quarn::Distance<float>::Kilometer, hours}, 30.0F};
//     Quarn::DTime<float> needed = Quarn::Distance<float>{Quarn::Distance<float>::Mile, 10.0F} / speed;
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"
#include "quarn/units/distance.h"
#include "quarn/units/dtime.h"

#include <concepts>
#include <cstdint>

namespace Quarn {

// Only Velocity<float> exists.
template<std::same_as<float> T>
struct Velocity
{
    // A length and a time: what one of the velocity is.
    struct Unit
    {
        typename Distance<T>::Unit distance = Distance<T>::Unknown; // the unit of length
        std::int32_t time = 8;                                      // a time unit; 8 until there is one
    };

    Unit unit;   // of the value
    T value = 0; // how many of the unit
};

extern template struct QUARN_API Velocity<float>;

// The time that the distance takes at the velocity, in the velocity's time unit. 0 where the velocity is not
// above 1.1920929e-7, negative ones included.
QUARN_API DTime<float> operator/(Distance<float> const& distance, Velocity<float> const& velocity);
// The interval's value, unchanged, as a distance in the unknown unit. The velocity has no part in it.
QUARN_API Distance<float> operator*(Velocity<float> const& velocity, DTime<float> const& time);

// Writes the value, the distance unit, the time unit.
QUARN_API ostream& operator<<(ostream& stream, Velocity<float> const& velocity);
// A record that ends inside the velocity throws what the stream throws, and `velocity` stays as it was.
QUARN_API istream& operator>>(istream& stream, Velocity<float>& velocity);

// In dump mode the label in a line of its own, then the lines "Value=%f", "DistUnit=%d" and "TimeUnit=%d", no
// further in than the depth says. In binary mode what operator<< stores.
QUARN_API ostream& dump(ostream& stream, string const& label, Velocity<float> const& velocity);

} // namespace Quarn
