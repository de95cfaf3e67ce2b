#include "quarn/properties/win32/registry_persist.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_key.h"

#include <vector>

namespace Quarn::Win32 {

namespace {

constexpr DWORD NameSize = 512;
constexpr DWORD DataSize = 8192;

// A key opened for reading, closed at the end.
class ReadKey
{
public:
    ReadKey(HKEY parent, char const* name)
    {
        if (::RegOpenKeyExA(parent, name, 0, KEY_READ, &m_key) != 0) {
            m_key = nullptr;
        }
    }
    ReadKey(ReadKey const&) = delete;
    ReadKey& operator=(ReadKey const&) = delete;
    ~ReadKey()
    {
        if (m_key != nullptr) {
            ::RegCloseKey(m_key);
        }
    }

    HKEY Get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

} // namespace

bool RegistryPropPersist::Exists() const
{
    return ReadKey(m_key, nullptr).Get() != nullptr;
}

bool RegistryPropPersist::Populate(PropertyKey* target) const
{
    return Exists() && PopulatePropKey(target, m_key);
}

void RegistryPropPersist::PopulateValues(PropertyKey* target, HKEY key)
{
    std::vector<char> name(NameSize);
    std::vector<unsigned char> bytes(DataSize);
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = NameSize;
        DWORD size = DataSize;
        DWORD type = 0;
        if (::RegEnumValueA(key, index, name.data(), &nameSize, nullptr, &type, bytes.data(), &size) != 0) {
            break;
        }
        PropertyData data;
        if (CreatePropertyData(type, bytes.data(), size, &data)) {
            target->SetValue(name.data(), data, true);
        }
    }
}

// NOLINTNEXTLINE(misc-no-recursion): the registry's own depth is bounded
bool RegistryPropPersist::PopulatePropKey(PropertyKey* target, HKEY key)
{
    PopulateValues(target, key);
    std::vector<char> name(NameSize);
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = NameSize;
        LONG const code =
            ::RegEnumKeyExA(key, index, name.data(), &nameSize, nullptr, nullptr, nullptr, nullptr);
        if (code != 0) {
            return code == static_cast<LONG>(ERROR_NO_MORE_ITEMS);
        }
        ReadKey const subKey(key, name.data());
        if (subKey.Get() == nullptr) {
            return false;
        }
        // What the sub-key's reading says does not count.
        PopulatePropKey(target->AddSubKey(name.data()), subKey.Get());
    }
}

bool RegistryPropPersist::CreatePropertyData(unsigned long type, unsigned char* bytes, unsigned long size,
                                             PropertyData* out)
{
    switch (type) {
    case REG_SZ:
        out->Assign(PropertyData::TypeString, bytes, size);
        return true;
    case REG_BINARY:
        out->Assign(PropertyData::TypeBinary, bytes, size);
        return true;
    case REG_DWORD:
        out->Assign(PropertyData::TypeInt32, bytes, size);
        return true;
    default:
        return false;
    }
}

} // namespace Quarn::Win32
