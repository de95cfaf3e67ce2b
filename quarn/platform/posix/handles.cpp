#include "quarn/platform/posix/handles.h"

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include <pthread.h>

namespace Quarn::detail {

namespace {

struct HandleTable
{
    std::mutex lock;
    std::unordered_map<HANDLE, std::shared_ptr<HandleObject>> objects;
    std::uintptr_t last = 0;
};

HandleTable& Table()
{
    // Never destroyed: objects with static lifetime may close handles at exit.
    static HandleTable& table = *[] {
        auto* const made = new HandleTable;
        ::pthread_atfork([] { Table().lock.lock(); }, [] { Table().lock.unlock(); },
                         [] { Table().lock.unlock(); });
        return made;
    }();
    return table;
}

} // namespace

HANDLE AddHandle(std::shared_ptr<HandleObject> object)
{
    HandleTable& table = Table();
    std::lock_guard const guard(table.lock);
    table.last += 4;
    auto* const handle = reinterpret_cast<HANDLE>(table.last);
    table.objects.emplace(handle, std::move(object));
    return handle;
}

std::shared_ptr<HandleObject> FindObject(HANDLE handle)
{
    HandleTable& table = Table();
    std::lock_guard const guard(table.lock);
    auto const found = table.objects.find(handle);
    return found == table.objects.end() ? nullptr : found->second;
}

bool RemoveHandle(HANDLE handle)
{
    HandleTable& table = Table();
    std::shared_ptr<HandleObject> object; // destroyed without the lock
    std::lock_guard const guard(table.lock);
    auto const found = table.objects.find(handle);
    if (found == table.objects.end()) {
        return false;
    }
    object = std::move(found->second);
    table.objects.erase(found);
    return true;
}

} // namespace Quarn::detail

using namespace Quarn::detail;

BOOL CloseHandle(HANDLE handle)
{
    return RemoveHandle(handle) ? TRUE : Fail(ERROR_INVALID_HANDLE);
}
