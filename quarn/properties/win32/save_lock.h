// The lock of a settings file's savers.
#pragma once

#include "quarn/platform/win32_types.h"
#include "quarn/properties/win32/settings_path.h"

namespace Quarn::detail {

// Held by one saver of a file at a time, between processes too, for as long as the object lives; a process
// that dies gives it up. It is waited for a few seconds at most and is a courtesy: whoever does without it
// replaces the file whole all the same.
class SaveLock
{
public:
    // Throws std::bad_alloc.
    explicit SaveLock(SettingsPath const& path);
    SaveLock(SaveLock const&) = delete;
    SaveLock& operator=(SaveLock const&) = delete;
    ~SaveLock();

    bool IsOwned() const { return m_owned; }

private:
    HANDLE m_mutex;
    bool m_owned = false;
};

} // namespace Quarn::detail
