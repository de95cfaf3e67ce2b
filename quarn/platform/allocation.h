// The library's allocation pair: memory that the library hands out for its caller to release is released with
// Quarn::free, whatever runtime library the caller itself uses. Any thread may call both.
#pragma once

#include "quarn/export.h"

#include <cstddef>

namespace Quarn {

// As the C library's malloc: uninitialised memory for any type, null when there is not enough. For size 0
// null or an address that only `free` may use.
QUARN_API void* malloc(std::size_t size);

// Releases what Quarn::malloc returned; null is allowed.
QUARN_API void free(void* memory);

} // namespace Quarn
