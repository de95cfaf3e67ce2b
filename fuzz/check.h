// How a target says that a property does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

inline void Check(bool holds, char const* broken)
{
    if (!holds) {
        std::fprintf(stderr, "%s\n", broken);
        std::abort();
    }
}

} // namespace fuzz
