// (private) How the parts of the registry report to its functions.
#pragma once

#include "quarn/platform/win32_api.h"

namespace Quarn::detail {

// Thrown inside; every function of the seam catches it and returns the code.
struct RegistryFailure
{
    LONG code;
};

[[noreturn]] inline void Refuse(DWORD code)
{
    throw RegistryFailure{static_cast<LONG>(code)};
}

} // namespace Quarn::detail
