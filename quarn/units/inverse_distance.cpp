#include "quarn/units/inverse_distance.h"

#include "quarn/stream/ostream.h"

namespace Quarn {

template struct InverseDistance<float>;

ostream& dump(ostream& stream, string const& label, InverseDistance<float> const& inverse)
{
    stream.dumpLabel(label);
    stream.dump("Value", inverse.value);
    return stream.dump("Units", static_cast<std::int32_t>(inverse.unit));
}

} // namespace Quarn
