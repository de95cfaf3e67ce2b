// The entry point of the library on Windows.
#include "quarn/platform/module_state.h"
#include "quarn/platform/win32_api.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void* /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) {
        Quarn::detail::Attach(library);
    } else if (reason == DLL_PROCESS_DETACH) {
        Quarn::detail::Detach();
    }
    return TRUE;
}
