// (private) What the library knows of itself as a module.
#pragma once

#include "quarn/platform/win32_types.h"

namespace Quarn::detail {

// For the entry point: the work at attach and at detach. Other threads may be gone at detach, and objects of
// the library may be used afterwards, so nothing is freed.
void Attach(HINSTANCE library);
void Detach();

// The mutex under which companion libraries are loaded, one for all processes: made at attach, without
// waiting, and kept as long as the process lives. Null where it cannot be made.
HANDLE LoadingMutex();

// The module of the library's own texts: the language module, where one is loaded, else the library.
HINSTANCE ResourceModule();

} // namespace Quarn::detail
