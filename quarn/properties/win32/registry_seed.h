// Seeding a store from the registry.
#pragma once

#include "quarn/platform/win32_types.h"
#include "quarn/text/string.h"

namespace Quarn {

class PropertyKey;

namespace detail {

enum class SeedResult
{
    Read,
    // The key was there and has not been read, or not all of it.
    Failed,
    // There is no key that could be opened for reading.
    NoKey,
};

// Adds what the registry key at `path` below `root` holds to `target`, and marks `store`, in which the target
// lies, dirty where there was anything to read from. Never throws; without memory the result is Failed.
SeedResult SeedFromRegistry(HKEY root, string const& path, PropertyKey& target, PropertyKey& store) noexcept;

} // namespace detail

} // namespace Quarn
