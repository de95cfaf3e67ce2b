// Quarn::Distance: a length with its unit, in single precision. No operation reports an error: a unit outside
// the table counts as meters. A plain value; one object belongs to one thread at a time. On a stream: the
// value, then the unit, 4 bytes each, little-endian; in memory the unit comes first.
//
//     Quarn::Distance<float> road{Quarn::Distance<float>::Mile, 1.5F};
//     stream << road;                                   // 8 bytes
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <concepts>
#include <cstdint>

namespace Quarn {

class istream;
class ostream;

// Only Distance<float> exists.
template<std::same_as<float> T>
struct Distance
{
    // The numbers are what records hold. A record may bring any other number, too.
    enum Unit : std::int32_t
    {
        Meter = 0,
        Centimeter = 1,
        Millimeter = 2,
        Micron = 3,
        Nanometer = 4,
        Angstrom = 5,
        Kilometer = 6,
        Mil = 7, // a thousandth of an inch
        Inch = 8,
        Foot = 9,
        Yard = 10,
        Mile = 11, // the statute mile, 1609.344 m
        Unknown = 12,
    };

    Unit unit = Unknown; // of the value
    T value = 0;         // how many of the unit
};

extern template struct QUARN_API Distance<float>;

namespace detail {

// How many meters one of the unit is; 1 for the unknown unit and for numbers that are none.
float MetersPerUnit(Distance<float>::Unit unit);

} // namespace detail

// Writes the value, then the unit.
QUARN_API ostream& operator<<(ostream& stream, Distance<float> const& distance);
// A record that ends inside the distance throws what the stream throws, and `distance` stays as it was.
QUARN_API istream& operator>>(istream& stream, Distance<float>& distance);

// In dump mode the label in a line of its own, then the lines "Value=%f" and "Units=%d", no further in than
// the depth says. In binary mode the label too is stored, as a string: what this writes is not what the
// operators above write and read.
QUARN_API ostream& dump(ostream& stream, string const& label, Distance<float> const& distance);

} // namespace Quarn
