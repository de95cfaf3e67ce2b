// Finds stored strings in a file of which nothing is known: marker, length and check word that agree, at any
// offset.
#pragma once

#include "file_bytes.h"
#include "progress.h"

#include <cstdint>
#include <functional>

namespace tool {

struct StoredString
{
    static constexpr std::uint64_t HeadSize = 12; // marker, length, check word

    std::uint64_t Body() const { return offset + HeadSize; }

    std::uint64_t offset = 0; // of the marker
    std::uint32_t length = 0;
    bool isWhole = true; // the file holds all of its characters
};

// Gives all of them, in the order of their offsets, to `take`, those that lie in the characters of another
// one too. Of heads that share bytes the first is meant, and where bytes of 255 stand before a marker, the
// last that can be the marker: a number -1 in front of a string looks like one. What claims 4294967295
// characters is no string.
void FindStrings(FileBytes& file, Progress& progress,
                 std::function<void(StoredString const& found)> const& take);

} // namespace tool
