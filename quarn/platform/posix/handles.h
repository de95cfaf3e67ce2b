// (private) The handles of the process. A handle value is used once, so a stale one is refused rather than
// taken for a newer object's.
#pragma once

#include "quarn/platform/posix/errors.h"

#include <memory>

namespace Quarn::detail {

// What a handle stands for. It lives until its last handle is closed and the last call with it has returned.
class HandleObject
{
public:
    HandleObject(HandleObject const&) = delete;
    HandleObject& operator=(HandleObject const&) = delete;
    virtual ~HandleObject() = default;

protected:
    HandleObject() = default;
};

// A new handle; throws std::bad_alloc.
HANDLE AddHandle(std::shared_ptr<HandleObject> object);

std::shared_ptr<HandleObject> FindObject(HANDLE handle);

// Forgets the handle; false when there is none.
bool RemoveHandle(HANDLE handle);

// The handle's object when it is of this kind; otherwise null, with ERROR_INVALID_HANDLE.
template<typename Kind>
std::shared_ptr<Kind> FindHandle(HANDLE handle)
{
    std::shared_ptr<Kind> object = std::dynamic_pointer_cast<Kind>(FindObject(handle));
    if (!object) {
        ::SetLastError(ERROR_INVALID_HANDLE);
    }
    return object;
}

} // namespace Quarn::detail
