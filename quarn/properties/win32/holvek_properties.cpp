#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/property_stores.h"
#include "quarn/properties/win32/registry_seed.h"

#include <new>

namespace Quarn::Win32 {

namespace {

constexpr char CommonKey[] = "Common";

} // namespace

Quarn::string const HolvekProperties::RootFileName = "Holvek40.xml";

HolvekProperties::HolvekProperties()
    : QuarnProperties(RootFileName, "Holvek", HKEY_LOCAL_MACHINE, R"(SOFTWARE\Tessary\Holvek)")
{
    AddSubKey(CommonKey);
}

HolvekProperties::~HolvekProperties() = default;

bool HolvekProperties::RemoveAllXML()
{
    return QuarnProperties::RemoveAllXML(RootFileName);
}

bool HolvekProperties::OnPopulateFromRegistry()
{
    try {
        return detail::SeedFromRegistry(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Tessary\Common)",
                                        *AddSubKey(CommonKey), *this) == detail::SeedResult::Read;
    } catch (std::bad_alloc const&) {
        return false;
    }
}

HolvekProperties& HolvekProps()
{
    static HolvekProperties properties;
    static bool loaded = false;
    if (!loaded) {
        loaded = true;
        properties.Populate();
    }
    return properties;
}

PropertyKey& CommonProps()
{
    return *HolvekProps().AddSubKey(CommonKey);
}

} // namespace Quarn::Win32
