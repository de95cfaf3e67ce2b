// How a stream stores and dumps times and durations. The streams declare the operations of Time and know no
// more of it.
#include "quarn/stream/dump_indent.h"
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

ostream& ostream::dump(string const& label, Time const& time)
{
    if (!m_dumpMode) {
        return *this << time;
    }
    string line;
    line.Format("%s=%s)\n", label.c_str(), time.Format("%x %X").c_str());
    return DumpLine(line);
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

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface
ostream& dump(ostream& stream, string label, TimeValue const& value)
{
    stream.dumpLabel(label);
    DumpStreamIndent const indent(stream, 4);
    stream.dump("Mantissa", static_cast<unsigned long>(value.GetMinutes()));
    return stream.dump("Fraction", static_cast<unsigned long>(value.GetFraction()));
}

} // namespace Quarn
