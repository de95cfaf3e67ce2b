// (private) Calls into the system that may fault on damaged data.
#pragma once

#include <type_traits>

namespace Quarn::detail {

// Calls operation(context); false when it touched memory that it must not, and was left at that point:
// objects that it had made by then are not destroyed. Elsewhere than on Windows nothing is caught; there the
// library's own functions are called, which stay inside their data.
bool CallGuarded(void (*operation)(void*), void* context);

template<typename Operation>
bool CallGuarded(Operation operation)
{
    return CallGuarded([](void* context) { (*static_cast<Operation*>(context))(); }, &operation);
}

} // namespace Quarn::detail
