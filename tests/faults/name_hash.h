// What the library makes of names for locks and temporary files.
#pragma once

#include <cctype>
#include <cstdint>
#include <string_view>

// FNV-1a, without case.
inline std::uint64_t NameHash(std::string_view text)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (char const c : text) {
        hash = (hash ^ static_cast<unsigned char>(std::tolower(c))) * 0x100000001B3;
    }
    return hash;
}
