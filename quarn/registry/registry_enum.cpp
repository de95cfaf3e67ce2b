#include "quarn/registry/registry_enum.h"

#include "quarn/platform/win32_api.h"

namespace Win32Quarn {

namespace {

// Appends names until `enumerate` gives a code, which is the result.
template<typename Enumerate>
long ReadNames(Quarn::StringList& names, Enumerate enumerate)
{
    char name[512];
    for (DWORD index = 0;; ++index) {
        DWORD size = sizeof name;
        if (long const code = enumerate(index, name, &size)) {
            return code;
        }
        names.push_back(Quarn::string(name));
    }
}

} // namespace

bool RegistryKeyEnum::Read(Quarn::StringList& names) const
{
    long const code = ReadNames(names, [this](DWORD index, char* name, DWORD* size) {
        return ::RegEnumKeyExA(m_key.m_key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    });
    if (code != long{ERROR_NO_MORE_ITEMS}) {
        m_key.m_lastError = code;
    }
    return code == long{ERROR_NO_MORE_ITEMS};
}

bool RegistryValueEnum::Read(Quarn::StringList& names) const
{
    long const code = ReadNames(names, [this](DWORD index, char* name, DWORD* size) {
        return ::RegEnumValueA(m_key.m_key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    });
    if (code != long{ERROR_NO_MORE_ITEMS}) {
        m_key.m_lastError = code;
    }
    return code == long{ERROR_NO_MORE_ITEMS};
}

} // namespace Win32Quarn
