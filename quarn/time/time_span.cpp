#include "quarn/time/time_span.h"

#include "quarn/time/time.h"

namespace Quarn {

namespace {

// The time of such seconds; the sum or difference behind them counts modulo 2^64.
Time FromLocalSeconds(std::uint64_t seconds)
{
    return {static_cast<std::int64_t>(seconds), false};
}

std::uint64_t Seconds(Time const& time)
{
    return static_cast<std::uint64_t>(time.Get_time_t());
}

std::uint64_t Seconds(TimeSpan const& span)
{
    return static_cast<std::uint64_t>(span.Get_time_t());
}

} // namespace

Time Time::operator+(TimeSpan const& span) const
{
    return FromLocalSeconds(Seconds(*this) + Seconds(span));
}

Time Time::operator-(TimeSpan const& span) const
{
    return FromLocalSeconds(Seconds(*this) - Seconds(span));
}

TimeSpan Time::operator-(Time const& other) const
{
    return Get_time_t() - other.Get_time_t();
}

TimeSpan Time::operator+(Time const& other) const
{
    return Get_time_t() + other.Get_time_t();
}

} // namespace Quarn
