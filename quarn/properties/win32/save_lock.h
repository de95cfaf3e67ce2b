// The lock of a settings file's savers.
#pragma once

#include "quarn/platform/win32_types.h"
#include "quarn/properties/win32/settings_path.h"

namespace Quarn::detail {

// Held by one saver of a file at a time, between processes too, for as long as the object lives; a process
// that dies gives it up. It is waited for a few seconds at most and is a courtesy: whoever does without it
// replaces the file whole all the same, and lets the owner see that there is somebody.
class SaveLock
{
public:
    // Throws std::bad_alloc.
    explicit SaveLock(SettingsPath const& path);
    SaveLock(SaveLock const&) = delete;
    SaveLock& operator=(SaveLock const&) = delete;
    ~SaveLock();

    bool IsOwned() const { return m_owned; }
    // For the owner: whether anybody, of another user's processes too, does without the lock now.
    bool IsDoneWithout() const;

private:
    string m_name;
    HANDLE m_mutex;
    HANDLE m_sign = nullptr; // of one that does without
    bool m_owned = false;
};

} // namespace Quarn::detail
