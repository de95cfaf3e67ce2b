#include "quarn/platform/fault_guard.h"

namespace Quarn::detail {

bool CallGuarded(void (*operation)(void*), void* context)
{
    operation(context);
    return true;
}

} // namespace Quarn::detail
