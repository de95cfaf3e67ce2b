// How a stream stores a time. The streams declare these operations and know no more of the type.
#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/time/time.h"

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

} // namespace Quarn
