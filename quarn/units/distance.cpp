#include "quarn/units/distance.h"

#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"

#include <iterator>

namespace Quarn {

template struct Distance<float>;

namespace detail {

float MetersPerUnit(Distance<float>::Unit unit)
{
    static constexpr float factors[] = {
        1.0F,          // meter
        0.01F,         // centimeter
        0.001F,        // millimeter
        0.000001F,     // micron
        0.000000001F,  // nanometer
        0.0000000001F, // angstrom
        1000.0F,       // kilometer
        0.0000254F,    // mil
        0.0254F,       // inch
        0.3048F,       // foot
        0.9144F,       // yard
        1609.344F,     // mile
        1.0F,          // unknown
    };
    auto const index = static_cast<std::uint32_t>(unit);
    return index < std::size(factors) ? factors[index] : 1.0F;
}

} // namespace detail

ostream& operator<<(ostream& stream, Distance<float> const& distance)
{
    return stream << distance.value << static_cast<std::int32_t>(distance.unit);
}

istream& operator>>(istream& stream, Distance<float>& distance)
{
    float value = 0;
    std::int32_t unit = 0;
    stream >> value >> unit;
    distance = {static_cast<Distance<float>::Unit>(unit), value};
    return stream;
}

ostream& dump(ostream& stream, string const& label, Distance<float> const& distance)
{
    stream.dump(label);
    stream.dump("Value", distance.value);
    return stream.dump("Units", static_cast<std::int32_t>(distance.unit));
}

} // namespace Quarn
