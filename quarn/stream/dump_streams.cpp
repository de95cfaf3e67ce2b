#include "quarn/stream/dump_streams.h"

#include "quarn/text/narrowing.h"

namespace Quarn {

sofdumpstream::~sofdumpstream() = default;

softextstream::~softextstream() = default;

ostream& softextstream::operator<<(std::string const& text)
{
    return output(reinterpret_cast<unsigned char const*>(text.data()), detail::NarrowCount(text.size()));
}

ostream& softextstream::operator<<(string const& text)
{
    return *this << static_cast<std::string const&>(text);
}

memorydumpstream::~memorydumpstream() = default;

statdumpstream::~statdumpstream() = default;

} // namespace Quarn
