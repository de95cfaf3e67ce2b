// How a stream stores times and durations. The streams declare the operations of Time and know no more of it.
#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/time/time.h"
#include "quarn/time/time_value.h"

namespace Quarn {

ostream& ostream::operator<<(Time const& time)
{
    TIME const words = time;
    return *this << words.High << words.Low;
}

istream& istream::operator>>(Time& time)
{
    TIME words = {0, 0};
    *this >> words.High >> words.Low;
    time = words;
    return *this;
}

istream& operator>>(istream& stream, TimeValue& value)
{
    TIMEVALUE words = {0, 0};
    stream >> words.Minutes >> words.Fraction;
    value = words;
    return stream;
}

} // namespace Quarn
