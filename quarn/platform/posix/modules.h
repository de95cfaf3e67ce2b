// (private) Module handles. The dynamic loader's handle of a module is its link map.
#pragma once

#include "quarn/platform/win32_api.h"

#include <link.h>

namespace Quarn::detail {

inline ::link_map* LinkMap(HMODULE module)
{
    return reinterpret_cast<::link_map*>(module);
}

// The handle of the module that holds this code or datum; null where no module does. It counts no reference.
HMODULE ModuleOf(void const* address);

} // namespace Quarn::detail
