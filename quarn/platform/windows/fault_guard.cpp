// A guard against access faults by a vectored handler: the compiler has no __try.
#include "quarn/platform/fault_guard.h"

#include "quarn/platform/win32_api.h"

namespace Quarn::detail {

namespace {

struct Guard
{
    CONTEXT context; // where to go on after a fault
    bool volatile faulted = false;
};

thread_local Guard* t_guard = nullptr;

LONG CALLBACK HandleFault(EXCEPTION_POINTERS* exception)
{
    Guard* const guard = t_guard;
    if (guard == nullptr || exception->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    guard->faulted = true;
    *exception->ContextRecord = guard->context;
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

bool CallGuarded(void (*operation)(void*), void* context)
{
    Guard guard;
    void* const handler = ::AddVectoredExceptionHandler(1, HandleFault);
    // After a fault this call returns a second time.
    ::RtlCaptureContext(&guard.context);
    if (!guard.faulted) {
        t_guard = &guard;
        operation(context);
    }
    t_guard = nullptr;
    ::RemoveVectoredExceptionHandler(handler);
    return !guard.faulted;
}

} // namespace Quarn::detail
