// The byte order of records and registry numbers.
#pragma once

#include <cstdint>
#include <string>

namespace tool {

// The number in the first four bytes at `bytes`.
inline std::uint32_t FromLittleEndian(char const* bytes)
{
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

inline std::string ToLittleEndian(std::uint32_t number)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(number >> shift & 0xFF);
    }
    return bytes;
}

} // namespace tool
