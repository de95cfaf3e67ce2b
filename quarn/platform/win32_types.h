// The handle types that public headers name, without the system's header: a client's translation unit gets no
// system macros from the library. A client that calls the system itself includes platform/win32_api.h.
#pragma once

struct HKEY__;
using HKEY = HKEY__*;
