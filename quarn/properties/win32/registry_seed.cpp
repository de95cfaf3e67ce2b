#include "quarn/properties/win32/registry_seed.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_key.h"
#include "quarn/properties/win32/registry_persist.h"

namespace Quarn::detail {

SeedResult SeedFromRegistry(HKEY root, string const& path, PropertyKey& target, PropertyKey& store) noexcept
{
    HKEY key = nullptr;
    if (::RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != 0) {
        return SeedResult::NoKey;
    }
    SeedResult result = SeedResult::Failed;
    try {
        Win32::RegistryPropPersist const registry(key);
        if (registry.Exists()) {
            store.SetDirty();
            result = registry.Populate(&target) ? SeedResult::Read : SeedResult::Failed;
        }
    } catch (...) {
        result = SeedResult::Failed;
    }
    ::RegCloseKey(key);
    return result;
}

} // namespace Quarn::detail
