// The entry point of the library on POSIX: functions that the dynamic loader calls.
#include "quarn/platform/module_state.h"
#include "quarn/platform/posix/modules.h"

namespace {

[[gnu::constructor]] void OnAttach()
{
    static char const anchor = 0;
    Quarn::detail::Attach(Quarn::detail::ModuleOf(&anchor));
}

[[gnu::destructor]] void OnDetach()
{
    Quarn::detail::Detach();
}

} // namespace
