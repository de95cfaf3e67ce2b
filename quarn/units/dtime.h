// Quarn::DTime: a time interval with its unit, in single precision: how long something takes, as velocities
// give it. What the eight time units 0 to 7 stand for is the application's business; nothing here converts
// between them. It has no form of its own on a stream or in a listing. A plain value; one object belongs to
// one thread at a time.
#pragma once

#include "quarn/export.h"

#include <concepts>
#include <cstdint>

namespace Quarn {

// Only DTime<float> exists.
template<std::same_as<float> T>
struct DTime
{
    std::int32_t unit = 8; // a time unit; 8 until there is one
    T value = 0;           // how many of the unit
};

extern template struct QUARN_API DTime<float>;

} // namespace Quarn
