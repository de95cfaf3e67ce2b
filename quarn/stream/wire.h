// The byte order of the record format: little-endian on every machine. Everything that the streams store goes
// through this pair of functions, in any thread.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Quarn::detail {

static_assert(std::endian::native == std::endian::little || std::endian::native == std::endian::big);
static_assert(sizeof(bool) == 1 && sizeof(short) == 2 && sizeof(int) == 4);
static_assert(sizeof(float) == 4 && std::numeric_limits<float>::is_iec559);
static_assert(sizeof(double) == 8 && std::numeric_limits<double>::is_iec559);

inline void FixByteOrder([[maybe_unused]] unsigned char* bytes, [[maybe_unused]] std::size_t count)
{
    if constexpr (std::endian::native == std::endian::big) {
        std::reverse(bytes, bytes + count);
    }
}

// Writes the sizeof(T) stored bytes of `value` to `bytes`.
template<typename T>
void ToWire(unsigned char* bytes, T value)
{
    std::memcpy(bytes, &value, sizeof value);
    FixByteOrder(bytes, sizeof value);
}

// The value whose stored bytes begin at `bytes`.
template<typename T>
T FromWire(unsigned char const* bytes)
{
    unsigned char copy[sizeof(T)];
    std::memcpy(copy, bytes, sizeof copy);
    FixByteOrder(copy, sizeof copy);
    T value;
    std::memcpy(&value, copy, sizeof value);
    return value;
}

} // namespace Quarn::detail
