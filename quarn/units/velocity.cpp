#include "quarn/units/velocity.h"

#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"

#include <limits>

namespace Quarn {

template struct DTime<float>;
template struct Velocity<float>;

DTime<float> operator/(Distance<float> const& distance, Velocity<float> const& velocity)
{
    DTime<float> time;
    if (velocity.value > std::numeric_limits<float>::epsilon()) {
        time.value = distance.value;
        if (distance.unit != velocity.unit.distance) {
            time.value *= detail::MetersPerUnit(distance.unit);
            time.value /= detail::MetersPerUnit(velocity.unit.distance);
        }
        time.value /= velocity.value;
    }
    time.unit = velocity.unit.time;
    return time;
}

Distance<float> operator*(Velocity<float> const& /*velocity*/, DTime<float> const& time)
{
    return {Distance<float>::Unknown, time.value};
}

ostream& operator<<(ostream& stream, Velocity<float> const& velocity)
{
    return stream << velocity.value << static_cast<std::int32_t>(velocity.unit.distance)
                  << velocity.unit.time;
}

istream& operator>>(istream& stream, Velocity<float>& velocity)
{
    float value = 0;
    std::int32_t distanceUnit = 0;
    std::int32_t timeUnit = 0;
    stream >> value >> distanceUnit >> timeUnit;
    velocity = {{static_cast<Distance<float>::Unit>(distanceUnit), timeUnit}, value};
    return stream;
}

ostream& dump(ostream& stream, string const& label, Velocity<float> const& velocity)
{
    stream.dumpLabel(label);
    stream.dump("Value", velocity.value);
    stream.dump("DistUnit", static_cast<std::int32_t>(velocity.unit.distance));
    return stream.dump("TimeUnit", velocity.unit.time);
}

} // namespace Quarn
